// SPDX-License-Identifier: MIT
// The directory of stored files: finding an entry, making one, writing one back, emptying a file. Callers hold the
// package's mutex. Entries are named by their index here; a handle keeps the entry number, the index plus 1.
#pragma once

#include <cstdint>

#include "vlt/block_store.h"

/// Which entries a lookup finds.
enum class vlt_lookup {
    files,   // stored files
    in_use,  // also entries of another maker
};

inline constexpr std::int32_t vlt_no_entry = -1;

/// Stores the lowest entry of that name, `vlt_no_entry` when there is none. False when memory runs out.
template <typename Char>
bool vlt_dir_find(vlt_store& store, const Char* name, vlt_lookup lookup, std::int32_t* index);

/// Makes the entry of a new file in the lowest free entry, growing the directory when there is none. Returns its
/// index, or `vlt_no_entry`; an entry whose writing failed stays in the image.
template <typename Char>
std::int32_t vlt_dir_add(vlt_store& store, const Char* name);

/// Writes one entry through. When that fails the image keeps it.
bool vlt_dir_put(vlt_store& store, std::int32_t index);

/// Frees an entry in the image; its other bytes stay until it is used again.
void vlt_dir_free(vlt_store& store, std::int32_t index);

/// Makes a file empty and frees its blocks. The entry is written first: a file never names a block that is free.
bool vlt_file_empty(vlt_store& store, std::int32_t index);

/// Compares every derived structure of the package with its images.
void vlt_check_store(vlt_store& store);

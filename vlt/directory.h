// SPDX-License-Identifier: MIT
// The directory of stored files: finding an entry, making one, freeing one, writing one back. Callers hold the
// package's mutex. Entries are named by their index here; a handle keeps the entry number, the index plus 1.
#pragma once

#include <cstdint>

#include "vlt/store.h"

namespace vlt {

/// Which entries a lookup finds.
enum class Lookup {
    files,   // stored files
    in_use,  // also entries of another maker
};

inline constexpr std::int32_t no_entry = -1;

/// Stores the lowest entry of that name, `no_entry` when there is none. False when memory runs out.
template <typename Char>
bool vlt_dir_find(Store& store, const Char* name, Lookup lookup, std::int32_t* index);

/// Makes the entry of a new file in the lowest free entry, growing the directory when there is none. Returns its
/// index, or `no_entry`; an entry whose writing failed stays in the image.
template <typename Char>
std::int32_t vlt_dir_add(Store& store, const Char* name);

/// Writes one entry through. When that fails the image keeps it.
bool vlt_dir_put(Store& store, std::int32_t index);

/// Writes one entry through unless it is not `changed` and its bytes are in the host file already.
bool vlt_dir_put_if(Store& store, std::int32_t index, bool changed);

/// Notes that a stamp of reading is kept in the image alone.
void keep_stamp_here(Store& store, std::int32_t index);

/// Frees an entry in the image; its other bytes stay until it is used again.
void free_entry(Store& store, std::int32_t index);

/// Gets a directory that has just been read ready for use; false when memory runs out.
[[nodiscard]] bool begin_directory(Store& store);

}  // namespace vlt

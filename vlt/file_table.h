// SPDX-License-Identifier: MIT
// The open files of one package handle.
#pragma once

#include <cstdint>

#include "base/array.h"
#include "base/index_set.h"
#include "vlt/block_store.h"

inline constexpr std::int32_t VLT_FILE_TABLE_STEP = 128;
inline constexpr std::int32_t VLT_FILE_SLOTS_MAX = 65535;  // a file handle has 16 bits for the slot number

/// One open file; all zero bytes when the slot is free.
struct vlt_file {
    std::uint32_t mode;
    std::uint8_t exclusive;
    std::int64_t append_floor;  // append mode: writes below this position are refused
    std::int64_t position;      // of the next read or write
    std::int32_t entry_number;  // index of the directory entry plus 1; 0 in a free slot

    bool writes() const { return mode == VLT_MODE_WRITE || mode == VLT_MODE_APPEND; }
    bool free() const { return entry_number < 1; }
};

/// Slots are numbered from 1, and keep their number while they are open.
class vlt_file_table {
public:
    std::int32_t capacity() const { return static_cast<std::int32_t>(slots_.size()); }

    /// The slot of a number, free or not; null for a number outside the table.
    vlt_file* at(std::int32_t number) {
        return number >= 1 && number <= capacity() ? &slots_[static_cast<std::size_t>(number) - 1] : nullptr;
    }

    /// Makes sure that there is a free slot; false when the table is full or memory runs out.
    [[nodiscard]] bool provide();

    /// Takes the lowest free slot for a directory entry and returns its number. There must be one, and room for the
    /// entry among the store's open files.
    std::int32_t vlt_file_slot_take(vlt_store& store, std::int32_t entry_index, std::uint32_t mode, bool exclusive);

    /// Frees a slot; one that is free already stays so.
    void release(vlt_store& store, std::int32_t number);

    /// Frees every slot.
    void release_all(vlt_store& store);

private:
    Array<vlt_file> slots_;
    IndexSet free_;  // slot numbers minus 1
};

/// Whether a file may be opened in that way beside the opens that it has, over all handles of the package.
bool vlt_file_check_share(vlt_store& store, std::int32_t entry_index, std::uint32_t mode, bool exclusive);

// SPDX-License-Identifier: MIT
// The open files of one package handle.
#pragma once

#include <cstdint>

#include "base/array.h"
#include "base/index_set.h"
#include "vlt/store.h"

namespace vlt {

inline constexpr std::int32_t VLT_FILE_TABLE_STEP = 128;
inline constexpr std::int32_t VLT_FILE_SLOTS_MAX = 65535;  // a file handle has 16 bits for the slot number

/// One open file; all zero bytes when the slot is free.
struct vlt_file {
    std::uint32_t mode;
    std::uint8_t exclusive;
    std::int64_t append_floor;  // append mode: writes below this position are refused
    std::int64_t position;      // of the next read or write
    std::int32_t entry_number;  // number of the directory entry; 0 in a free slot

    bool writes() const { return mode == VLT_MODE_WRITE || mode == VLT_MODE_APPEND; }
    bool free() const { return entry_number < 1; }
    std::int32_t entry_index() const { return entry_number - 1; }
};

/// Slots are numbered from 1, and keep their number while they are open.
class FileTable {
public:
    std::int32_t capacity() const { return static_cast<std::int32_t>(slots_.size()); }

    /// The slot of a number, free or not; null for a number outside the table.
    vlt_file* at(std::int32_t number) {
        return number >= 1 && number <= capacity() ? &slots_[static_cast<std::size_t>(number) - 1] : nullptr;
    }

    /// Makes sure that there is a free slot; false when the table is full or memory runs out.
    [[nodiscard]] bool reserve_slot();

    /// Takes the lowest free slot for a directory entry and returns its number. The slot and an open of the entry
    /// must have been reserved.
    std::int32_t take_slot(Store& store, std::int32_t entry_index, std::uint32_t mode, bool exclusive);

    /// Frees a slot; one that is free already stays so.
    void release(Store& store, std::int32_t number);

    /// Frees every slot.
    void release_all(Store& store);

private:
    Array<vlt_file> slots_;
    IndexSet free_;  // slot numbers minus 1
};

}  // namespace vlt

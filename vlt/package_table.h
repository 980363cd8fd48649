// SPDX-License-Identifier: MIT
// The process-wide table of open packages. A package handle is a slot index plus 1.
//
// A slot is free, or a base slot, which owns a package, or a shared slot, which leans on a base slot opened on the
// same path. Access mode and open files belong to each slot; everything else to the package, which is a `Store`.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vlt/file_table.h"
#include "vlt/store.h"

namespace vlt {

inline constexpr std::int32_t VLT_TABLE_STEP = 64;

struct vlt_package {
    std::int32_t read_only;  // access through this handle: 0 read/write, 1 read-only
    std::uint8_t exclusive;  // no further opening is allowed; base slots only: beside others a handle never is
    std::int32_t base_slot;  // 0 in a base slot; in a shared slot the handle, not the index, of its base
    Store* store;            // the package (base slots only)
    FileTable* files;        // this handle's open files
    char* path;              // as passed to the open call; null in a free slot

    bool free() const { return path == nullptr; }
};

/// The slots; none until the first opening. It needs no destruction: unloading closes the packages at a moment of its
/// own, before or after the destructors of static objects ran.
class PackageTable {
public:
    std::int32_t count() const { return count_; }
    vlt_package& operator[](std::int32_t index) { return slots_[index]; }
    vlt_package* begin() { return slots_; }
    vlt_package* end() { return slots_ + count_; }

    /// Adds VLT_TABLE_STEP free slots; the others move, and handles stay valid. False when memory runs out.
    [[nodiscard]] bool grow();
    void clear();

private:
    vlt_package* slots_ = nullptr;
    std::int32_t count_ = 0;
};

extern PackageTable vlt_package_table;

/// The slot of a handle in use, null for any other number.
vlt_package* package_at(std::int32_t handle);

/// The base slot that a slot leans on: itself, or that of the handle in `base_slot`.
vlt_package& base_of(vlt_package& slot);

/// Finds the first free slot, growing the table when there is none, and the base slot that has the path open, both as
/// indexes, -1 for none. False when memory runs out.
bool vlt_slot_find(const char* path, std::int32_t* free_slot, std::int32_t* base_index);

}  // namespace vlt

// SPDX-License-Identifier: MIT
// The process-wide table of open packages. A package handle is a slot index plus 1.
//
// A slot is free, or a base slot, which owns a package, or a shared slot, which leans on a base slot opened on the
// same path. Access mode and open files belong to each slot; everything else to the package.
#pragma once

#include <cstdint>

#include "base/array.h"
#include "platform/mutex.h"
#include "vlt/block_store.h"
#include "vlt/file_table.h"

inline constexpr std::int32_t VLT_TABLE_STEP = 64;

struct vlt_package {
    std::int32_t read_only;  // access through this handle: 0 read/write, 1 read-only
    std::uint8_t exclusive;  // no further opening is allowed (base slots only)
    std::int32_t base_slot;  // 0 in a base slot; in a shared slot the handle of its base
    vlt_store* store;        // the package (base slots only)
    vlt_file_table* files;   // this handle's open files
    char* path;              // as passed to the open call; null in a free slot

    bool free() const { return path == nullptr; }
};

/// The slots, and how many there are; none until the first opening. Growing moves them, handles stay valid.
extern Array<vlt_package>& vlt_package_table;

/// The slot of a handle in use, null for any other number.
vlt_package* vlt_package_at(std::int32_t handle);

/// The base slot that a slot leans on: itself, or that of the handle in `base_slot`.
vlt_package& vlt_package_base(vlt_package& slot);

/// Finds the first free slot, growing the table when there is none, and the base slot that has the path open, -1 for
/// none. False when memory runs out.
bool vlt_slot_find(const char* path, std::int32_t* free_slot, std::int32_t* base_slot);

/// Holds the package of a slot for one operation on its files: its mutex is locked for the length of a scope.
class vlt_package_hold {
public:
    explicit vlt_package_hold(vlt_package& slot);
    ~vlt_package_hold();
    vlt_package_hold(const vlt_package_hold&) = delete;
    vlt_package_hold& operator=(const vlt_package_hold&) = delete;

    vlt_store& store() { return *base_.store; }

    /// The base slot may not write: stamps of reading stay in memory.
    bool base_read_only() const { return base_.read_only != 0; }

private:
    vlt_package& base_;
    MutexHold hold_;
};

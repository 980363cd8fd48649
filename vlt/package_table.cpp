// SPDX-License-Identifier: MIT
#include "vlt/package_table.h"

#include <cstring>

#include "base/ascii_case.h"
#include "base/heap.h"

namespace vlt {

constinit PackageTable vlt_package_table;

bool PackageTable::grow() {
    const std::size_t old_bytes = static_cast<std::size_t>(count_) * sizeof(vlt_package);
    constexpr std::size_t more_bytes = VLT_TABLE_STEP * sizeof(vlt_package);
    void* grown = heap_resize(slots_, old_bytes + more_bytes);
    if (!grown) return false;
    std::memset(static_cast<char*>(grown) + old_bytes, 0, more_bytes);
    slots_ = static_cast<vlt_package*>(grown);
    count_ += VLT_TABLE_STEP;
    return true;
}

void PackageTable::clear() {
    heap_free(slots_);
    slots_ = nullptr;
    count_ = 0;
}

vlt_package* package_at(std::int32_t handle) {
    if (handle < 1 || handle > vlt_package_table.count()) return nullptr;
    vlt_package& slot = vlt_package_table[handle - 1];
    return slot.free() ? nullptr : &slot;
}

vlt_package& base_of(vlt_package& slot) {
    return slot.base_slot > 0 ? vlt_package_table[slot.base_slot - 1] : slot;
}

bool vlt_slot_find(const char* path, std::int32_t* free_slot, std::int32_t* base_index) {
    *free_slot = *base_index = -1;
    const std::int32_t count = vlt_package_table.count();
    for (std::int32_t i = 0; i < count; ++i) {
        const vlt_package& slot = vlt_package_table[i];
        if (slot.free()) {
            if (*free_slot < 0) *free_slot = i;
        } else if (*base_index < 0 && slot.base_slot == 0 && equals_fold(slot.path, path)) {
            *base_index = i;
        }
    }
    if (*free_slot >= 0) return true;
    *free_slot = count;
    return vlt_package_table.grow();
}

}  // namespace vlt

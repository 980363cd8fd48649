// SPDX-License-Identifier: MIT
#include "vlt/package_table.h"

#include <new>

#include "base/ascii_case.h"
#include "base/check.h"
#include "platform/module.h"
#include "vlt/directory.h"

namespace {

// Never destroyed: unloading closes the packages at a moment of its own, before or after static destructors ran.
alignas(Array<vlt_package>) unsigned char table_room[sizeof(Array<vlt_package>)];

std::int32_t vlt_load_count = 0;

}  // namespace

Array<vlt_package>& vlt_package_table = *::new (table_room) Array<vlt_package>;

vlt_package* vlt_package_at(std::int32_t handle) {
    if (handle < 1 || static_cast<std::size_t>(handle) > vlt_package_table.size()) return nullptr;
    vlt_package& slot = vlt_package_table[static_cast<std::size_t>(handle) - 1];
    return slot.free() ? nullptr : &slot;
}

vlt_package& vlt_package_base(vlt_package& slot) {
    return slot.base_slot > 0 ? vlt_package_table[static_cast<std::size_t>(slot.base_slot) - 1] : slot;
}

bool vlt_slot_find(const char* path, std::int32_t* free_slot, std::int32_t* base_slot) {
    *free_slot = *base_slot = -1;
    const auto count = static_cast<std::int32_t>(vlt_package_table.size());
    for (std::int32_t i = 0; i < count; ++i) {
        const vlt_package& slot = vlt_package_table[static_cast<std::size_t>(i)];
        if (slot.free()) {
            if (*free_slot < 0) *free_slot = i;
        } else if (*base_slot < 0 && slot.base_slot == 0 && equals_fold(slot.path, path)) {
            *base_slot = i;
        }
    }
    if (*free_slot >= 0) return true;
    *free_slot = count;
    return vlt_package_table.resize(static_cast<std::size_t>(count) + VLT_TABLE_STEP);
}

vlt_package_hold::vlt_package_hold(vlt_package& slot) : base_(vlt_package_base(slot)), hold_(base_.store->mutex) {}

vlt_package_hold::~vlt_package_hold() {
    if constexpr (check_derived) vlt_check_store(*base_.store);
}

void vlt_module_loaded() {
    ++vlt_load_count;
}

void vlt_module_unloaded() {
    if (vlt_load_count > 0 && --vlt_load_count < 1) vlt_package_close_all();
}

// SPDX-License-Identifier: MIT
#include "vlt/package_table.h"

namespace {

/// The first slot that leans on a base, null when none does.
vlt_package* first_share(std::int32_t base_handle, std::int32_t* handle) {
    for (std::size_t i = 0; i < vlt_package_table.size(); ++i) {
        vlt_package& slot = vlt_package_table[i];
        if (slot.free() || slot.base_slot != base_handle) continue;
        *handle = static_cast<std::int32_t>(i) + 1;
        return &slot;
    }
    return nullptr;
}

/// Makes another slot the base of the package; the host file stays open, and the mutex stays with the package.
void hand_over(vlt_package& base, std::int32_t base_handle, vlt_package& successor, std::int32_t successor_handle) {
    successor.store = base.store;
    successor.base_slot = 0;
    base.store = nullptr;
    for (vlt_package& slot : vlt_package_table)
        if (!slot.free() && slot.base_slot == base_handle) slot.base_slot = successor_handle;
}

}  // namespace

std::int32_t vlt_package_close(std::int32_t package) {
    vlt_package* slot = vlt_package_at(package);
    if (!slot) return 0;
    slot->files->release_all(*vlt_package_base(*slot).store);
    std::int32_t successor_handle = 0;
    if (slot->base_slot == 0)
        if (vlt_package* successor = first_share(package, &successor_handle))
            hand_over(*slot, package, *successor, successor_handle);
    Owned<vlt_store>{slot->store};
    Owned<vlt_file_table>{slot->files};
    heap_free(slot->path);
    *slot = {};
    return 1;
}

void vlt_package_close_all() {
    for (std::int32_t handle = 1; static_cast<std::size_t>(handle) <= vlt_package_table.size(); ++handle)
        vlt_package_close(handle);
    vlt_package_table.clear();
}

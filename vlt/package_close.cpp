// SPDX-License-Identifier: MIT
#include "base/owned.h"
#include "vlt/package_table.h"

namespace vlt {

namespace {

/// The handle of the first slot that leans on a base, 0 when none does.
std::int32_t first_share(std::int32_t base_handle) {
    for (std::int32_t i = 0; i < vlt_package_table.count(); ++i)
        if (!vlt_package_table[i].free() && vlt_package_table[i].base_slot == base_handle) return i + 1;
    return 0;
}

/// Makes another slot the base of the package; the host file stays open, and the mutex stays with the package.
void hand_over(vlt_package& base, std::int32_t base_handle, std::int32_t successor_handle) {
    vlt_package& successor = vlt_package_table[successor_handle - 1];
    successor.store = base.store;
    successor.base_slot = 0;
    base.store = nullptr;
    for (vlt_package& slot : vlt_package_table)
        if (!slot.free() && slot.base_slot == base_handle) slot.base_slot = successor_handle;
}

void close_slot(vlt_package& slot, std::int32_t handle) {
    slot.files->release_all(*base_of(slot).store);
    const std::int32_t successor = slot.base_slot == 0 ? first_share(handle) : 0;
    if (successor != 0) hand_over(slot, handle, successor);
    destroy(slot.store);
    destroy(slot.files);
    heap_free(slot.path);
    slot = {};
}

}  // namespace

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL vlt_package_close(std::int32_t package) {
    vlt_package* slot = package_at(package);
    if (!slot) return 0;
    close_slot(*slot, package);
    return 1;
}

VLT_API void VLT_CALL vlt_package_close_all() {
    for (std::int32_t handle = 1; handle <= vlt_package_table.count(); ++handle) vlt_package_close(handle);
    vlt_package_table.clear();
}

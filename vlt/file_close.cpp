// SPDX-License-Identifier: MIT
#include "vlt/file_handle.h"
#include "vlt/package_hold.h"

VLT_API std::int32_t VLT_CALL vlt_file_close(std::uint32_t file) {
    vlt::vlt_package* slot = vlt::package_of_file(file);
    if (!slot) return 0;
    vlt::PackageHold hold(*slot);
    const std::int32_t number = vlt::slot_of_file(file);
    if (!slot->files->at(number)) return 0;
    slot->files->release(hold.store(), number);
    return 1;
}

// SPDX-License-Identifier: MIT
// What the operations on a file that is named, not opened, have in common.
#pragma once

#include <cstdint>

#include "vlt/directory.h"
#include "vlt/name_width.h"
#include "vlt/package_hold.h"
#include "vlt/stored_name.h"

namespace vlt {

/// Runs `use` on the store and the entry of a name with the package held, and returns what it returns; 0 when the
/// package is refused or no entry has the name.
template <typename Char, typename Use>
std::int32_t with_named_file(std::int32_t package, const Char* name, Lookup lookup, Use use) {
    vlt_package* slot = package_of_width<Char>(package);
    if (!slot || !name || name_length(name) > VLT_NAME_MAX) return 0;
    PackageHold hold(*slot);
    std::int32_t index = no_entry;
    if (!vlt_dir_find(hold.store(), name, lookup, &index) || index == no_entry) return 0;
    return use(hold.store(), index) ? 1 : 0;
}

}  // namespace vlt

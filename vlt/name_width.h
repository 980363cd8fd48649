// SPDX-License-Identifier: MIT
// Which functions serve which packages: those with narrow names, or those with wide ones.
#pragma once

#include <cstdint>

#include "vlt/package_table.h"

namespace vlt {

/// The package slot of a handle if it stores names of that width, else null.
template <typename Char>
vlt_package* package_of_width(std::int32_t package) {
    vlt_package* slot = package_at(package);
    return slot && base_of(*slot).store->images.wide_names == (sizeof(Char) > 1) ? slot : nullptr;
}

}  // namespace vlt

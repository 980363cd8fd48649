// SPDX-License-Identifier: MIT
// The package getting larger.
#pragma once

#include <cstdint>

#include "vlt/store.h"

namespace vlt {

/// Makes the package larger until `wanted` blocks are free. False when the host file fails or the block numbers are
/// used up; blocks added until then stay.
bool vlt_package_grow(Store& store, std::int32_t wanted);

}  // namespace vlt

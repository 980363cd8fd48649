// SPDX-License-Identifier: MIT
// The directory getting larger.
#pragma once

#include "vlt/store.h"

namespace vlt {

/// Adds one zero block to the directory chain and image.
bool vlt_dir_extend(Store& store);

}  // namespace vlt

// SPDX-License-Identifier: MIT
// Builds with VLT_CHECK_DERIVED compare what is kept beside the images with the images after every operation, in
// packages that are not large.
#pragma once

#include "vlt/store.h"

namespace vlt {

/// Ends the process when a derived structure of a package has left the truth.
void check_store(Store& store);

}  // namespace vlt

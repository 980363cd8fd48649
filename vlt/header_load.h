// SPDX-License-Identifier: MIT
// Reading the header and directory of a package that is being opened.
#pragma once

#include "vlt/store.h"

namespace vlt {

/// Reads and checks both chains. The host file of the store is open; this counts its blocks and sets the images.
/// False when the host file is not a package, cannot be read, or memory runs out.
bool vlt_header_load(Store& store);

}  // namespace vlt

// SPDX-License-Identifier: MIT
// Reading the header and directory of a package that is being opened.
#pragma once

#include "vlt/block_store.h"

/// Reads and checks both chains. `fd` and `base_offset` of the store are set; this sets `wide_names`, the block
/// count, the images and what is known of the two chains. False when the host file is not a package, cannot be read,
/// or memory runs out.
bool vlt_header_load(vlt_store& store);

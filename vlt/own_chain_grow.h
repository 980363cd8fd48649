// SPDX-License-Identifier: MIT
// The header and the directory getting longer.
#pragma once

#include <cstdint>

#include "vlt/store.h"

namespace vlt {

/// Appends a zero block of the host file to a chain of the package's own and to its image, or leaves both as they
/// were. The block's own word is written before the link to it: until the link is written, nothing of it is in use.
/// False when the host file fails or memory runs out.
bool append_own_block(Store& store, OwnChain& own, std::int32_t block);

}  // namespace vlt

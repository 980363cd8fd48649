// SPDX-License-Identifier: MIT
// Emptying a stored file, for a truncating open and for deletion.
#pragma once

#include <cstdint>

#include "vlt/store.h"

namespace vlt {

/// Makes a file empty and frees its blocks. The entry is written first: a file never names a block that is free.
bool vlt_file_empty(Store& store, std::int32_t index);

}  // namespace vlt

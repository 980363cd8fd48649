// SPDX-License-Identifier: MIT
// The block map in the host file.
#pragma once

#include <cstdint>

#include "vlt/store.h"

namespace vlt {

/// Writes the map words of consecutive blocks through. Words side by side are one piece of the header run.
bool write_map_words(Store& store, std::int32_t block, std::int32_t count);

}  // namespace vlt

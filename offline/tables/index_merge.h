// SPDX-License-Identifier: MIT
// New records in an index that need not be sorted for them.
#pragma once

#include <cstdint>

#include "offline/tables/index.h"

namespace vlt {

/// Inserts the records that an exact index without equal values does not hold yet. The array has room for them.
/// False, with nothing changed, when one would tie, when sorting anew is cheaper, or when memory runs out.
bool index_merge_new(const KOfflineTable* table, std::int32_t field);

}  // namespace vlt

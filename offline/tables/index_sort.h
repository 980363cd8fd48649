// SPDX-License-Identifier: MIT
// The order of an index: which record stands where, equal values included.
#pragma once

#include <cstdint>

#include "offline/tables/index.h"

namespace vlt {

/// Comparator for KArray_Sort, over two entries of an index, with an IndexContext.
int KOfflineTable_CompareRecs(const void* left, const void* right, void* context);

/// Fills `order` with the records 0 to `count` - 1 as KArray_Sort leaves them from ascending record numbers. Returns
/// how many different values there are. Without memory for the fast way it sorts in place, and the result is the
/// same.
std::int32_t index_order(const IndexContext& context, std::int32_t* order, std::int32_t count);

/// The same by the definition: every comparison made, no memory used.
void index_order_plain(const IndexContext& context, std::int32_t* order, std::int32_t count);

}  // namespace vlt

// SPDX-License-Identifier: MIT
// Building an index, and bringing it up to date after records were added or changed.
#pragma once

#include "offline/tables/index.h"

namespace vlt {

/// Builds the index of a field, in the place of the old one if there is one; a table without room for records gets
/// none. False when memory runs out, and nothing has changed.
bool index_build(KOfflineTable* table, std::int32_t field);

/// Makes every index of a table current when they may be stale. False when memory runs out; the table stays stale.
bool KOfflineTable_RefreshIndexes(KOfflineTable* table);

}  // namespace vlt

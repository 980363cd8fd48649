// SPDX-License-Identifier: MIT
#include "bom/index.h"

namespace bom {

std::span<const std::int32_t> sorted_records(KOfflineTable* table, std::int32_t field) {
    // After a change an index stays as it was until a search makes it current.
    KOfflineTable_Search(table, field, "", nullptr, 0);
    const std::int32_t* sorted = KOfflineTable_GetIndexRecs(table, field);
    if (!sorted) return {};
    return {sorted, static_cast<std::size_t>(KOfflineTable_GetRecsCount(table))};
}

}  // namespace bom

// SPDX-License-Identifier: MIT
#include "bom/links.h"

#include <utility>

namespace bom {

ItemLinks ItemLinks::drawings(KOfflineDb* db) {
    return {db, KOfflineDb_GetTable_BITDWG(db), KOfflineDb_GetTable_BDWG(db)};
}

ItemLinks ItemLinks::plans(KOfflineDb* db) {
    return {db, KOfflineDb_GetTable_BITCAP(db), KOfflineDb_GetTable_BCAPP(db)};
}

ItemLinks::ItemLinks(KOfflineDb* db, KOfflineTable* links, KOfflineTable* targets) {
    KOfflineTable* items = KOfflineDb_GetTable_BITM(db);
    begin_.resize(static_cast<std::size_t>(KOfflineTable_GetRecsCount(items)) + 1);
    if (KOfflineTable_GetRecsCount(links) == 0) return;
    const NidMap item_nids(items, KOfflineTable_GetFldIndex(items, "NID"));
    const NidMap target_nids(targets, KOfflineTable_GetFldIndex(targets, "NID"));
    const std::int32_t parent = KOfflineTable_GetFldIndex(links, "NPID");
    const std::int32_t child = KOfflineTable_GetFldIndex(links, "NCID");
    std::vector<std::pair<std::size_t, std::int32_t>> pairs;
    for (std::int32_t link = 0; link < KOfflineTable_GetRecsCount(links); ++link) {
        const Item item = item_nids.find(KOfflineTable_GetFldValue(links, link, parent));
        const std::int32_t target = target_nids.find(KOfflineTable_GetFldValue(links, link, child));
        if (item != kNone && target != kNone) pairs.emplace_back(item, target);
    }
    for (const auto& [item, target] : pairs) ++begin_[item + 1];
    for (std::size_t i = 1; i < begin_.size(); ++i) begin_[i] += begin_[i - 1];
    records_.resize(pairs.size());
    std::vector<std::int32_t> next(begin_.begin(), begin_.end() - 1);
    for (const auto& [item, target] : pairs) records_[static_cast<std::size_t>(next[item]++)] = target;
}

}  // namespace bom

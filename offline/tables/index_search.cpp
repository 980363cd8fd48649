// SPDX-License-Identifier: MIT
#include "offline/tables/index_search.h"

#include <algorithm>

#include "base/ascii_case.h"
#include "offline/tables/caller_changes.h"
#include "offline/tables/index_refresh.h"
#include "offline/tables/plain_truth.h"
#include "offline/tables/search_aid.h"

namespace vlt {

namespace {

constexpr std::int32_t kSmallIndex = 64;  // no faster with a search aid

IndexMatches find_by_halving(const IndexContext& context, const std::int32_t* index, std::int32_t count,
                             const char* key) {
    const std::int32_t first = index_bound(context, index, count, key, false);
    if (first == count || !equals_fold(context.value(index[first]), key)) return {};
    return {index + first, 1 + index_bound(context, index + first + 1, count - first - 1, key, true)};
}

/// Makes the search aid of an index once the searches since its last change would have paid for it.
const SearchAid* aid_of(const IndexContext& context, const std::int32_t* index, IndexHead* head) {
    if (head->aid || head->held < kSmallIndex || head->aid_refused) return head->aid;
    if (++head->searches <= static_cast<std::uint32_t>(head->held) / 64) return nullptr;
    head->searches = 0;
    bool refused;
    head->aid = search_aid_make(context, index, *head, &refused);
    head->aid_refused = refused;
    return head->aid;
}

/// A caller may have cleared the flag that says the indexes are stale.
bool make_current(KOfflineTable* table, std::int32_t field) {
    if (index_is_current(table, field)) return true;
    table->indexes_stale = 1;
    return KOfflineTable_RefreshIndexes(table);
}

std::int32_t store_matches(const IndexMatches& found, std::int32_t* recs, std::int32_t capacity) {
    const std::int32_t stored = std::min(found.count(), capacity);
    for (std::int32_t i = 0; i < stored; ++i) recs[i] = found[i];
    return found.count();
}

std::int32_t scan(const IndexContext& context, const char* key, std::int32_t* recs, std::int32_t capacity) {
    std::int32_t count = 0;
    for (std::int32_t record = 0; record < context.table->record_count; ++record) {
        if (!equals_fold(context.value(record), key)) continue;
        if (count < capacity) recs[count] = record;
        ++count;
    }
    return count;
}

}  // namespace

std::int32_t index_bound(const IndexContext& context, const std::int32_t* index, std::int32_t count, const char* key,
                         bool above) {
    std::int32_t begin = 0;
    while (count > 0) {
        const std::int32_t half = count / 2;
        const int order = compare_fold(context.value(index[begin + half]), key);
        const bool right = above ? order <= 0 : order < 0;
        if (right) begin += half + 1;
        count = right ? count - half - 1 : half;
    }
    return begin;
}

IndexMatches index_find(const KOfflineTable* table, std::int32_t field, const char* key) {
    const IndexContext context{table, field};
    std::int32_t* index = table->fields[field].index;
    IndexHead* head = Index::head(index);
    const SearchAid* aid = aid_of(context, index, head);
    const IndexMatches found =
        aid ? search_aid_find(*aid, context, index, key) : find_by_halving(context, index, head->held, key);
    check_found(context, index, key, found);
    return found;
}

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL KOfflineTable_Search(KOfflineTable* table, std::int32_t field, const char* key,
                                                   std::int32_t* recs, std::int32_t capacity) {
    if (!table) return -1;
    take_over_changes(table);
    if (!table_has_field(table, field)) return -1;
    if (!key) key = "";
    if (!recs || capacity < 1) capacity = 0;
    if (!table->fields[field].index || !make_current(table, field)) {
        return scan({table, field}, key, recs, capacity);
    }
    const IndexMatches found = index_find(table, field, key);
    return found.count() ? store_matches(found, recs, capacity) : -1;
}

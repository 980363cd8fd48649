// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>

#include "base/ascii_case.h"
#include "base/check.h"
#include "offline/tables/index.h"
#include "offline/tables/record_store.h"
#include "offline/tables/search_aid.h"
#include "offline/tables/sort.h"
#include "offline/tables/table.h"

namespace {

constexpr std::int32_t kSmallIndex = 64;  // no faster with a search aid

IndexMatches find_by_halving(const IndexContext& context, const std::int32_t* index, std::int32_t count,
                             const char* key) {
    const std::int32_t first = index_bound(context, index, count, key, false);
    if (first == count || !equals_fold(context.value(index[first]), key)) return {nullptr, 0};
    return {index + first, 1 + index_bound(context, index + first + 1, count - first - 1, key, true)};
}

/// Makes the search aid of an index once the searches since its last change would have paid for it.
SearchAid* aid_of(const IndexContext& context, const std::int32_t* index, IndexHead* head) {
    if (head->aid || head->held < kSmallIndex) return head->aid;
    if (++head->searches <= static_cast<std::uint32_t>(head->held) / 64) return nullptr;
    head->searches = 0;
    return head->aid = search_aid_make(context, index, *head);
}

/// Compares what was found with what the plain search finds.
void check_found(IndexContext context, std::int32_t* index, std::int32_t held, const char* key,
                 const IndexMatches& found) {
    void* first;
    void* last;
    KArray_SearchRange(key, index, held, sizeof *index, &first, &last, KOfflineTable_CompareKey, &context);
    const auto* begin = static_cast<const std::int32_t*>(first);
    const std::ptrdiff_t count = first ? static_cast<std::int32_t*>(last) - begin + 1 : 0;
    check_truth(found.count == count && std::equal(begin, begin + count, found.first));
}

std::int32_t store_matches(const IndexMatches& found, std::int32_t* recs, std::int32_t capacity) {
    const std::int32_t stored = std::min(found.count, capacity);
    for (std::int32_t i = 0; i < stored; ++i) recs[i] = found.first[i];  // mostly one, or a few
    return found.count;
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

IndexMatches index_find(const KOfflineTable* table, std::int32_t field, const char* key, std::int32_t* single) {
    const IndexContext context{table, field};
    std::int32_t* index = table->fields[field].index;
    IndexHead* head = Index::head(index);
    const SearchAid* aid = aid_of(context, index, head);
    const IndexMatches found =
        aid ? search_aid_find(aid, context, index, key, single) : find_by_halving(context, index, head->held, key);
    if (check_derived) check_found(context, index, head->held, key, found);
    return found;
}

int32_t VLT_CALL KOfflineTable_Search(KOfflineTable* table, int32_t field, const char* key, int32_t* recs,
                                      int32_t capacity) {
    if (!table_has_field(table, field)) return -1;
    if (!key) key = "";
    if (!recs || capacity < 1) capacity = 0;
    if (!table->fields[field].index || (table->indexes_stale && !KOfflineTable_RefreshIndexes(table))) {
        return scan({table, field}, key, recs, capacity);
    }
    int32_t single;
    const IndexMatches found = index_find(table, field, key, &single);
    return found.count ? store_matches(found, recs, capacity) : -1;
}

// SPDX-License-Identifier: MIT
#include "offline/tables/plain_truth.h"

#include <algorithm>
#include <cstddef>

#include "base/ascii_case.h"
#include "offline/tables/index_sort.h"
#include "offline/tables/tie_order_sort.h"

namespace vlt {

namespace {

// What checks cost is bounded: larger indexes are taken as they are.
constexpr std::int32_t kMostSorted = 600;
constexpr std::int32_t kMostSearched = 4096;

std::uint64_t sum_of(const std::int32_t* index, std::int32_t held) {
    std::uint64_t sum = 0;
    for (std::int32_t i = 0; i < held; ++i) sum = sum * 31 + static_cast<std::uint32_t>(index[i]);
    return sum;
}

bool can_be_checked(std::int32_t* index, std::int32_t most) {
    const IndexHead* head = Index::head(index);
    return head->held <= most && head->sum == sum_of(index, head->held);
}

}  // namespace

int KOfflineTable_CompareKey(const void* key, const void* entry, void* context) {
    const auto* own = static_cast<const IndexContext*>(context);
    return compare_fold(static_cast<const char*>(key), own->value(*static_cast<const std::int32_t*>(entry)));
}

namespace plain_truth {

void note_entries(std::int32_t* index) {
    IndexHead* head = Index::head(index);
    head->sum = sum_of(index, head->held);
}

void check_exact(const IndexContext& context) {
    std::int32_t* index = context.table->fields[context.field].index;
    if (!index || !can_be_checked(index, kMostSorted)) return;
    std::int32_t plain[kMostSorted];
    index_order_plain(context, plain, context.table->record_count);
    check_truth(std::equal(index, index + context.table->record_count, plain));
}

void check_found(const IndexContext& context, std::int32_t* index, const char* key, const IndexMatches& found) {
    if (!can_be_checked(index, kMostSearched)) return;
    IndexContext own = context;
    void* first;
    void* last;
    KArray_SearchRange(key, index, Index::head(index)->held, sizeof *index, &first, &last, KOfflineTable_CompareKey,
                       &own);
    const auto* begin = static_cast<const std::int32_t*>(first);
    const std::ptrdiff_t count = first ? static_cast<std::int32_t*>(last) - begin + 1 : 0;
    check_truth(found.count() == count);
    for (std::int32_t i = 0; i < found.count(); ++i) check_truth(found[i] == begin[i]);
}

}  // namespace plain_truth

}  // namespace vlt

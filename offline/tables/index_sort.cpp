// SPDX-License-Identifier: MIT
#include "offline/tables/index_sort.h"

#include <cstring>
#include <numeric>

#include "base/ascii_case.h"
#include "base/heap.h"
#include "offline/tables/key_sort.h"
#include "offline/tables/rank_sort.h"
#include "offline/tables/tie_order_sort.h"

namespace vlt {

namespace {

constexpr std::int32_t kFastFrom = 32;  // fewer records are not worth three arrays

std::int32_t count_distinct(const IndexContext& context, const std::int32_t* order, std::int32_t count) {
    std::int32_t distinct = 1;
    for (std::int32_t i = 1; i < count; ++i) {
        distinct += !equals_fold(context.value(order[i - 1]), context.value(order[i]));
    }
    return distinct;
}

std::size_t count_distinct(const KeyEntry* entries, std::size_t count) {
    std::size_t distinct = count;
    for (std::size_t i = 0; i < count; ++i) distinct -= entries[i].is_repeated;
    return distinct;
}

/// Gives every record the rank of its value, and counts the records before each rank.
void rank_records(const KeyEntry* entries, std::size_t count, RankedItem* items, std::uint32_t* before) {
    std::uint32_t rank = 0;
    before[0] = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (i && !entries[i].is_repeated) before[++rank] = static_cast<std::uint32_t>(i);
        const auto record = static_cast<std::uint32_t>(entries[i].record);
        items[record] = ranked_item(rank, record);
    }
    before[rank + 1] = static_cast<std::uint32_t>(count);
}

/// Orders sorted entries with equal values among them; false when memory runs out. `scratch` is as large as the
/// entries are, and more than large enough for the items.
bool order_ties(const KeyEntry* entries, KeyEntry* scratch, std::size_t count, std::size_t distinct,
                std::int32_t* order) {
    static_assert(sizeof(KeyEntry) >= sizeof(RankedItem) && alignof(KeyEntry) % alignof(RankedItem) == 0);
    auto before = HeapBlock<std::uint32_t>::of(distinct + 1);
    if (!before) return false;
    auto* items = reinterpret_cast<RankedItem*>(scratch);
    rank_records(entries, count, items, before.get());
    rank_sort(items, count, before.get(), static_cast<std::uint32_t>(distinct));
    for (std::size_t i = 0; i < count; ++i) order[i] = static_cast<std::int32_t>(items[i] & 0xffffffff);
    return true;
}

/// 0 when memory runs out.
std::size_t order_fast(const IndexContext& context, std::int32_t* order, std::size_t count) {
    auto entries = HeapBlock<KeyEntry>::of(count);
    auto scratch = HeapBlock<KeyEntry>::of(count);
    if (!entries || !scratch) return 0;
    key_sort(context, entries.get(), scratch.get(), count);
    const std::size_t distinct = count_distinct(entries.get(), count);
    if (distinct == count) {
        for (std::size_t i = 0; i < count; ++i) order[i] = entries[i].record;
        return distinct;
    }
    return order_ties(entries.get(), scratch.get(), count, distinct, order) ? distinct : 0;
}

}  // namespace

int KOfflineTable_CompareRecs(const void* left, const void* right, void* context) {
    const auto* own = static_cast<const IndexContext*>(context);
    return compare_fold(own->value(*static_cast<const std::int32_t*>(left)),
                        own->value(*static_cast<const std::int32_t*>(right)));
}

void index_order_plain(const IndexContext& context, std::int32_t* order, std::int32_t count) {
    std::iota(order, order + count, 0);
    IndexContext own = context;
    KArray_Sort(order, count, sizeof *order, KOfflineTable_CompareRecs, nullptr, &own);
}

std::int32_t index_order(const IndexContext& context, std::int32_t* order, std::int32_t count) {
    if (count < 1) return 0;
    if (count >= kFastFrom) {
        const std::size_t distinct = order_fast(context, order, static_cast<std::size_t>(count));
        if (distinct) return static_cast<std::int32_t>(distinct);
    }
    index_order_plain(context, order, count);
    return count_distinct(context, order, count);
}

}  // namespace vlt

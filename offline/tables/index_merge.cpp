// SPDX-License-Identifier: MIT
#include "offline/tables/index_merge.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "base/ascii_case.h"
#include "base/heap.h"
#include "offline/tables/index_search.h"
#include "offline/tables/plain_truth.h"

namespace vlt {

namespace {

// A new record costs two dozen comparisons, scattered over the table; beyond this many, sorting all is cheaper.
constexpr std::int32_t most_new(std::int32_t held) {
    return 64 + held / 16;
}

/// A record and the position of the entry that it goes in front of.
struct NewEntry {
    std::int32_t record;
    std::int32_t place;
};

/// Fills in and sorts the new entries; false when two values tie, or when the index is not in order because a caller
/// has written into it.
bool place_entries(const IndexContext& context, const std::int32_t* index, std::int32_t held, NewEntry* entries,
                   std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) entries[i].record = held + static_cast<std::int32_t>(i);
    std::sort(entries, entries + count, [&](const NewEntry& a, const NewEntry& b) {
        return compare_fold(context.value(a.record), context.value(b.record)) < 0;
    });
    for (std::size_t i = 0; i < count; ++i) {
        const char* value = context.value(entries[i].record);
        const std::int32_t place = index_bound(context, index, held, value, false);
        if (place < held && equals_fold(context.value(index[place]), value)) return false;
        if (i && equals_fold(context.value(entries[i - 1].record), value)) return false;
        if (i && place < entries[i - 1].place) return false;
        entries[i].place = place;
    }
    return true;
}

/// From the back, so that every old entry moves once.
void merge(std::int32_t* index, std::int32_t held, const NewEntry* entries, std::size_t count) {
    std::int32_t end = held;
    while (count-- > 0) {
        std::int32_t* from = index + entries[count].place;
        std::memmove(from + count + 1, from, static_cast<std::size_t>(end - entries[count].place) * sizeof *from);
        from[count] = entries[count].record;
        end = entries[count].place;
    }
}

}  // namespace

bool index_merge_new(const KOfflineTable* table, std::int32_t field) {
    std::int32_t* index = table->fields[field].index;
    IndexHead* head = Index::head(index);
    const std::int32_t added = table->record_count - head->held;
    if (head->has_ties || added < 1 || added > most_new(head->held)) return false;
    NewEntry few[8];
    HeapBlock<NewEntry> many;
    const auto count = static_cast<std::size_t>(added);
    if (count > std::size(few)) many = HeapBlock<NewEntry>::of(count);
    NewEntry* entries = count > std::size(few) ? many.get() : few;
    if (!entries || !place_entries({table, field}, index, head->held, entries, count)) return false;
    index_entries_change(head);
    merge(index, head->held, entries, count);
    head->held += added;
    head->distinct = head->held;
    note_entries(index);
    return true;
}

}  // namespace vlt

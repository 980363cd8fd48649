// SPDX-License-Identifier: MIT
// The sorted index of a field: record numbers in ascending order of the value, A to Z folded, no value as the empty
// text. What order equal values have is fixed: the one KArray_Sort leaves when it starts from the record numbers in
// ascending order.
//
// An index is built anew only when that can change it. In front of the array stands what is known about it, so a
// stale index that is still exact is left alone, one without equal values takes new records at their places, and
// everything else is sorted again. Callers cannot tell the difference: the entries are the same.
#pragma once

#include <cstdint>

#include "include/offline.h"
#include "offline/tables/headed.h"
#include "offline/tables/record_bytes.h"

namespace vlt {

struct SearchAid;

enum class IndexOrder : std::int32_t {
    exact,    // what sorting the records it holds anew would give
    mended,   // sorted, but equal values may stand otherwise since a record among them was deleted
    outdated  // a value has changed since
};

struct IndexHead {
    std::uint64_t sum;      // of the entries as the library left them, in builds that check derived structures
    std::int32_t slots;     // entries there is room for
    std::int32_t held;      // entries there are, for the records 0 to held - 1
    std::int32_t distinct;  // different values among them, or more after deletions
    IndexOrder order;
    SearchAid* aid;            // null, or made for the entries as they are
    std::uint32_t searches;    // since the entries last changed
    std::int16_t has_ties;     // 1 when two of the entries may have equal values
    std::int16_t aid_refused;  // 1 when the entries as they are cannot have an aid
};

using Index = Headed<IndexHead, std::int32_t>;

/// Where values come from: a field of a table. Also the context of the two comparators.
struct IndexContext {
    const KOfflineTable* table;
    std::int32_t field;

    /// The empty text for a number that no record has: callers may have written into an index.
    const char* value(std::int32_t record) const {
        if (static_cast<std::uint32_t>(record) >= static_cast<std::uint32_t>(table->record_count)) return kNoText;
        return record_text_or_empty(table->records[record], table->field_count, field);
    }
};

/// Whether an index serves searches as it is: nothing has changed but by deletions, which it was mended for.
inline bool index_is_current(const KOfflineTable* table, std::int32_t field) {
    const IndexHead* head = Index::head(table->fields[field].index);
    return !table->indexes_stale && head->held == table->record_count && head->order != IndexOrder::outdated;
}

/// Notes that a value of a record has changed in more than letter case.
void index_value_changed(KOfflineField* field, std::int32_t record);

/// Records at the end were deleted: the index is refreshed before it serves again.
void index_records_gone(KOfflineField* field);

/// Removes the entry of a record that was deleted and decrements the higher record numbers.
void index_remove(KOfflineField* field, std::int32_t record);

/// Drops what is derived from the entries, which are about to change.
void index_entries_change(IndexHead* head);

void index_free(KOfflineField* field);

}  // namespace vlt

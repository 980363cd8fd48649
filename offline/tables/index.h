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
#include "offline/tables/record.h"

struct SearchAid;

enum class IndexOrder : std::int32_t {
    exact,    ///< what sorting the records it holds anew would give
    mended,   ///< sorted, but equal values may stand otherwise since a record among them was deleted
    outdated  ///< a value has changed since
};

struct IndexHead {
    std::int32_t slots;     ///< entries there is room for
    std::int32_t held;      ///< entries there are, for the records 0 to held - 1
    std::int32_t distinct;  ///< different values among them, or more after deletions
    IndexOrder order;
    SearchAid* aid;          ///< null, or made for the entries as they are
    std::uint32_t searches;  ///< since the entries last changed
    std::int32_t has_ties;   ///< 1 when two of the entries may have equal values
};

using Index = Headed<IndexHead, std::int32_t>;

/// Where values come from: a field of a table. Also the context of the two comparators.
struct IndexContext {
    const KOfflineTable* table;
    std::int32_t field;

    const char* value(std::int32_t record) const {
        return record_text_or_empty(table->records[record], table->field_count, field);
    }
};

/// Comparators for KArray_Sort, over two entries, and for KArray_SearchRange, over a text and an entry.
int KOfflineTable_CompareRecs(const void* left, const void* right, void* context);
int KOfflineTable_CompareKey(const void* key, const void* entry, void* context);

/// Builds the index of a field, in the place of the old one if there is one; a table without room for records gets
/// none. False when memory runs out, and nothing has changed.
bool index_build(KOfflineTable* table, std::int32_t field);

/// Makes every index of a table current when they may be stale. False when memory runs out; the table stays stale.
bool KOfflineTable_RefreshIndexes(KOfflineTable* table);

/// A value of a record has changed in more than letter case.
void index_value_changed(KOfflineField* field, std::int32_t record);

/// A record was deleted and those after it have moved down: its entry goes, higher numbers are lowered by one.
void index_remove(KOfflineField* field, std::int32_t record);

/// The entries are about to change: drops what was made for them as they were.
void index_entries_change(IndexHead* head);

void index_free(KOfflineField* field);

/// The entries that equal a key, in index order.
struct IndexMatches {
    const std::int32_t* first;
    std::int32_t count;
};

/// Looks a key up in a current index; the result may point to `single`.
IndexMatches index_find(const KOfflineTable* table, std::int32_t field, const char* key, std::int32_t* single);

/// The position of the first of `count` sorted entries that is not below the key, or, for `above`, is above it.
std::int32_t index_bound(const IndexContext& context, const std::int32_t* index, std::int32_t count, const char* key,
                         bool above);

/// Takes the records that an exact index without ties does not hold yet in at their places. The array has room for
/// them. False, with nothing changed, when one would tie, when sorting anew is cheaper, or when memory runs out.
bool index_insert_new(const KOfflineTable* table, std::int32_t field);

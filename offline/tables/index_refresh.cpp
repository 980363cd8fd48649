// SPDX-License-Identifier: MIT
#include "offline/tables/index_refresh.h"

#include <algorithm>

#include "offline/tables/index_merge.h"
#include "offline/tables/index_sort.h"
#include "offline/tables/plain_truth.h"

namespace vlt {

namespace {

/// Makes room for as many entries as the table has for records; what is new is zero.
bool reserve(const KOfflineTable* table, KOfflineField* field) {
    const std::int32_t have = field->index ? Index::head(field->index)->slots : 0;
    const std::int32_t wanted = table->record_capacity;
    if (wanted <= have) return true;
    std::int32_t* grown = Index::resize(field->index, static_cast<std::size_t>(wanted));
    if (!grown) return false;
    std::fill(grown + have, grown + wanted, 0);
    Index::head(grown)->slots = wanted;
    field->index = grown;
    return true;
}

void sort_entries(const KOfflineTable* table, std::int32_t field) {
    std::int32_t* index = table->fields[field].index;
    IndexHead* head = Index::head(index);
    index_entries_change(head);
    head->held = std::max(table->record_count, 0);
    head->distinct = index_order({table, field}, index, head->held);
    head->has_ties = head->distinct < head->held;
    head->order = IndexOrder::exact;
    std::fill(index + head->held, index + head->slots, 0);
    note_entries(index);
}

/// Whether an index is what a sort of the present records would give, or could be made so without one.
bool is_exact(const KOfflineTable* table, std::int32_t field) {
    const IndexHead* head = Index::head(table->fields[field].index);
    if (head->order != IndexOrder::exact) return false;
    return head->held == table->record_count || index_merge_new(table, field);
}

bool refresh(KOfflineTable* table, std::int32_t field) {
    if (!reserve(table, &table->fields[field])) return false;
    if (!is_exact(table, field)) sort_entries(table, field);
    check_exact({table, field});
    return true;
}

}  // namespace

bool index_build(KOfflineTable* table, std::int32_t field) {
    if (table->record_capacity < 1) {
        index_free(&table->fields[field]);
        return true;
    }
    if (!reserve(table, &table->fields[field])) return false;
    sort_entries(table, field);
    check_exact({table, field});
    return true;
}

bool KOfflineTable_RefreshIndexes(KOfflineTable* table) {
    if (!table->indexes_stale) return true;
    for (std::int32_t field = 0; field < table->field_count; ++field) {
        if (!table->fields[field].index || refresh(table, field)) continue;
        KOfflineDb_SetError(table->db, Failure::memory);
        return false;
    }
    table->indexes_stale = 0;
    return true;
}

}  // namespace vlt

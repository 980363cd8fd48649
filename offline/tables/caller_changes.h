// SPDX-License-Identifier: MIT
// Callers own the storage of a table and may write into its public fields, though the interface tells them not to.
// Every exported function of a table begins by taking over what they wrote as far as it can be true, so that nothing
// behind it looks where there is nothing: a count that was lowered cuts off what lies behind it, any other becomes
// what it was.
#pragma once

#include "offline/tables/fields.h"
#include "offline/tables/record_pointers.h"

namespace vlt {

/// Whether the counts of a table are as the library left them.
inline bool counts_are_ours(const KOfflineTable* table) {
    const std::int32_t fields = table->fields ? Fields::head(table->fields)->count : 0;
    if (table->field_count != fields) return false;
    if (!table->records) return table->record_count == 0 && table->record_capacity == 0;
    const RecordsHead* head = Records::head(table->records);
    return table->record_count == head->count && table->record_capacity == head->capacity;
}

void take_over_counts(KOfflineTable* table);

inline void take_over_changes(KOfflineTable* table) {
    if (!counts_are_ours(table)) take_over_counts(table);
}

}  // namespace vlt

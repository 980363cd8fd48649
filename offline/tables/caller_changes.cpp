// SPDX-License-Identifier: MIT
#include "offline/tables/caller_changes.h"

#include <algorithm>

#include "offline/tables/index.h"

namespace vlt {

namespace {

void take_over_record_count(KOfflineTable* table) {
    const std::int32_t there = table->records ? Records::head(table->records)->count : 0;
    table->record_capacity = table->records ? Records::head(table->records)->capacity : 0;
    table->record_count = std::clamp(table->record_count, 0, there);
    if (table->record_count == there) return;
    store_truncate(table, table->record_count);
    const std::int32_t fields = table->fields ? Fields::head(table->fields)->count : 0;
    for (std::int32_t i = 0; i < fields; ++i) index_records_gone(&table->fields[i]);
}

void take_over_field_count(KOfflineTable* table) {
    const std::int32_t there = table->fields ? Fields::head(table->fields)->count : 0;
    table->field_count = std::clamp(table->field_count, 0, there);
    if (table->field_count == there) return;
    truncate_fields(table, table->field_count);
    store_narrow(table, there, table->field_count);
}

}  // namespace

void take_over_counts(KOfflineTable* table) {
    take_over_record_count(table);
    take_over_field_count(table);
}

}  // namespace vlt

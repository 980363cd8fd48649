// SPDX-License-Identifier: MIT
#include "offline/tables/table.h"

#include <algorithm>
#include <cstring>

#include "base/ascii_case.h"
#include "offline/tables/error_state.h"
#include "offline/tables/index.h"
#include "offline/tables/nid.h"
#include "offline/tables/record_store.h"

namespace {

/// Makes a record that is complete but for its NID part of the table; on failure it is given back.
std::int32_t add_record(KOfflineTable* table, KOfflineRecord* record, std::int32_t nid_field, bool new_nid) {
    const std::int32_t watermark = table->nid_watermark;
    std::int32_t failure = KOfflineTable_AssignNID(table, nid_field, &record, new_nid);
    if (!failure && !store_append(table, record)) failure = KOFFLINE_ERR_MEMORY;
    if (failure) {
        table->nid_watermark = watermark;
        record_free(record);
        return failure;
    }
    table->indexes_stale = 1;
    return KOFFLINE_ERR_NONE;
}

}  // namespace

LineReader::LineReader(KOfflineTable* into, const char* separator, RecordArena* room)
    : table(into), format(separator), nid_field(::nid_field(into)), arena(room) {}

std::int32_t table_add_line(const LineReader& reader, const char* line, std::size_t length) {
    KOfflineTable* table = reader.table;
    const std::int32_t fields = std::max(table->field_count, 0);
    KOfflineRecord* record = nullptr;
    std::int32_t failure = record_from_line(line, length, fields, reader.format, reader.arena, &record);
    if (!failure) failure = add_record(table, record, reader.nid_field, false);
    if (failure) KOfflineDb_SetError(table->db, failure);
    return failure;
}

void VLT_CALL KOfflineTable_Constructor(KOfflineTable* table, KOfflineDb* db, const char* name) {
    if (!table) return;
    std::memset(table, 0, sizeof *table);
    table->db = db;
    table->nid_watermark = -1;
    if (name) std::memcpy(table->table_name, name, ::strnlen(name, sizeof table->table_name - 1));
}

void VLT_CALL KOfflineTable_Destructor(KOfflineTable* table) {
    if (!table) return;
    KOfflineTable_Clear(table);
    free_fields(table);
}

void VLT_CALL KOfflineTable_Clear(KOfflineTable* table) {
    if (!table) return;
    for (int32_t field = 0; field < table->field_count; ++field) index_free(&table->fields[field]);
    store_clear(table);
}

KOfflineDb* VLT_CALL KOfflineTable_GetOfflineDb(KOfflineTable* table) {
    return table ? table->db : nullptr;
}

const char* VLT_CALL KOfflineTable_GetTblName(KOfflineTable* table) {
    return table ? table->table_name : nullptr;
}

int32_t VLT_CALL KOfflineTable_GetRecsCount(KOfflineTable* table) {
    if (!table) return 0;
    table->record_count = std::max(table->record_count, 0);
    return table->record_count;
}

int32_t VLT_CALL KOfflineTable_AddRec(KOfflineTable* table, const char* line, const char* separator) {
    if (!table) return -1;
    if (!line) line = "";
    const int32_t failure = table_add_line(LineReader(table, separator, nullptr), line, std::strlen(line));
    return failure ? -1 : table->record_count - 1;
}

int32_t VLT_CALL KOfflineTable_SetFldValue(KOfflineTable* table, int32_t rec, int32_t field, const char* value) {
    if (!table_has_field(table, field) || !store_has(table, rec)) return 0;
    if (!value) value = "";
    KOfflineRecord** record = &table->records[rec];
    KOfflineField* indexed = table->fields[field].index ? &table->fields[field] : nullptr;
    const bool moves = indexed && !equals_fold(record_text_or_empty(*record, table->field_count, field), value);
    const int32_t failure = record_set_value(record, table->field_count, field, value);
    if (failure) {
        KOfflineDb_SetError(table->db, failure);
        return 0;
    }
    if (indexed) table->indexes_stale = 1;
    if (moves) index_value_changed(indexed, rec);
    return 1;
}

const char* VLT_CALL KOfflineTable_GetFldValue(KOfflineTable* table, int32_t rec, int32_t field) {
    if (!table_has_field(table, field) || !store_has(table, rec)) return nullptr;
    return record_value(table->records[rec], table->field_count, field);
}

int32_t VLT_CALL KOfflineTable_DelRec(KOfflineTable* table, int32_t rec) {
    if (!store_has(table, rec)) return 0;
    if (table->nid_watermark < 0) KOfflineTable_NextNIDBase(table);
    store_remove(table, rec);
    for (int32_t field = 0; field < table->field_count; ++field) index_remove(&table->fields[field], rec);
    return 1;
}

int32_t VLT_CALL KOfflineTable_CopyRec(KOfflineTable* table, int32_t rec) {
    if (!store_has(table, rec)) return -1;
    KOfflineRecord* copy = record_copy(table->records[rec], table->field_count);
    const int32_t failure = copy ? add_record(table, copy, nid_field(table), true) : KOFFLINE_ERR_MEMORY;
    if (failure) KOfflineDb_SetError(table->db, failure);
    return failure ? -1 : table->record_count - 1;
}

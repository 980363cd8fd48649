// SPDX-License-Identifier: MIT
#include "offline/tables/table.h"

#include <cstring>

#include "base/ascii_case.h"
#include "offline/tables/caller_changes.h"
#include "offline/tables/fields.h"
#include "offline/tables/index.h"
#include "offline/tables/nid.h"
#include "offline/tables/record_pointers.h"

namespace vlt {

namespace {

/// Makes a record that is complete but for its NID part of the table; on failure it is given back.
Failure add_record(KOfflineTable* table, NewRecord made, std::int32_t nid_field, bool new_nid, RecordArena* arena) {
    const std::int32_t watermark = table->nid_watermark;
    Failure failure = KOfflineTable_AssignNID(table, nid_field, &made.record, new_nid);
    if (!failed(failure) && arena && !record_commit(&made, table->field_count, arena)) failure = Failure::memory;
    if (!failed(failure) && !store_append(table, made.record)) failure = Failure::memory;
    if (failed(failure)) {
        table->nid_watermark = watermark;
        record_free(made.record);
        return failure;
    }
    table->indexes_stale = 1;
    return Failure::none;
}

}  // namespace

LineReader::LineReader(KOfflineTable* into, const char* separator, RecordArena* room)
    : table(into), format(separator), nid_field(vlt::nid_field(into)), arena(room) {}

Failure table_add_line(const LineReader& reader, const char* line, std::size_t length) {
    KOfflineTable* table = reader.table;
    NewRecord made;
    Failure failure = record_from_line(line, length, table->field_count, reader.format, reader.arena, &made);
    if (!failed(failure)) failure = add_record(table, made, reader.nid_field, false, reader.arena);
    if (failed(failure)) KOfflineDb_SetError(table->db, failure);
    return failure;
}

}  // namespace vlt

using namespace vlt;

VLT_API void VLT_CALL KOfflineTable_Constructor(KOfflineTable* table, KOfflineDb* db, const char* name) {
    if (!table) return;
    std::memset(table, 0, sizeof *table);
    table->db = db;
    table->nid_watermark = -1;
    if (name) text_copy_cut(table->table_name, sizeof table->table_name, name);
}

VLT_API void VLT_CALL KOfflineTable_Destructor(KOfflineTable* table) {
    if (!table) return;
    KOfflineTable_Clear(table);
    free_fields(table);
}

VLT_API void VLT_CALL KOfflineTable_Clear(KOfflineTable* table) {
    if (!table) return;
    take_over_changes(table);
    for (std::int32_t field = 0; field < table->field_count; ++field) index_free(&table->fields[field]);
    store_clear(table);
}

VLT_API KOfflineDb* VLT_CALL KOfflineTable_GetOfflineDb(KOfflineTable* table) {
    return table ? table->db : nullptr;
}

VLT_API const char* VLT_CALL KOfflineTable_GetTblName(KOfflineTable* table) {
    return table ? table->table_name : nullptr;
}

VLT_API std::int32_t VLT_CALL KOfflineTable_GetRecsCount(KOfflineTable* table) {
    if (!table) return 0;
    take_over_changes(table);
    return table->record_count;
}

VLT_API std::int32_t VLT_CALL KOfflineTable_AddRec(KOfflineTable* table, const char* line, const char* separator) {
    if (!table) return -1;
    take_over_changes(table);
    if (!line) line = "";
    const Failure failure = table_add_line(LineReader(table, separator, nullptr), line, std::strlen(line));
    return failed(failure) ? -1 : table->record_count - 1;
}

VLT_API std::int32_t VLT_CALL KOfflineTable_SetFldValue(KOfflineTable* table, std::int32_t rec, std::int32_t field,
                                                        const char* value) {
    if (!table) return 0;
    take_over_changes(table);
    if (!table_has_field(table, field) || !store_has(table, rec)) return 0;
    if (!value) value = "";
    KOfflineRecord** record = &table->records[rec];
    KOfflineField* indexed = table->fields[field].index ? &table->fields[field] : nullptr;
    const bool moves = indexed && !equals_fold(record_text_or_empty(*record, table->field_count, field), value);
    const Failure failure = record_set_value(record, table->field_count, field, value);
    if (failed(failure)) {
        KOfflineDb_SetError(table->db, failure);
        return 0;
    }
    if (indexed) table->indexes_stale = 1;
    if (moves) index_value_changed(indexed, rec);
    return 1;
}

VLT_API const char* VLT_CALL KOfflineTable_GetFldValue(KOfflineTable* table, std::int32_t rec, std::int32_t field) {
    if (!table) return nullptr;
    take_over_changes(table);
    if (!table_has_field(table, field) || !store_has(table, rec)) return nullptr;
    return record_value(table->records[rec], table->field_count, field);
}

VLT_API std::int32_t VLT_CALL KOfflineTable_DelRec(KOfflineTable* table, std::int32_t rec) {
    if (!table) return 0;
    take_over_changes(table);
    if (!store_has(table, rec)) return 0;
    if (table->nid_watermark < 0) KOfflineTable_NextNIDBase(table);
    store_remove(table, rec);
    for (std::int32_t field = 0; field < table->field_count; ++field) index_remove(&table->fields[field], rec);
    return 1;
}

VLT_API std::int32_t VLT_CALL KOfflineTable_CopyRec(KOfflineTable* table, std::int32_t rec) {
    if (!table) return -1;
    take_over_changes(table);
    if (!store_has(table, rec)) return -1;
    KOfflineRecord* copy = record_copy(table->records[rec], table->field_count);
    const Failure failure = copy ? add_record(table, {copy, 0}, nid_field(table), true, nullptr) : Failure::memory;
    if (failed(failure)) KOfflineDb_SetError(table->db, failure);
    return failed(failure) ? -1 : table->record_count - 1;
}

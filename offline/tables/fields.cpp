// SPDX-License-Identifier: MIT
#include "offline/tables/fields.h"

#include <cstring>

#include "base/ascii_case.h"
#include "offline/tables/caller_changes.h"
#include "offline/tables/index.h"
#include "offline/tables/record_pointers.h"
#include "offline/tables/text.h"

namespace vlt {

namespace {

bool reserve_field(KOfflineTable* table) {
    const auto count = static_cast<std::size_t>(table->field_count);
    const std::size_t have = table->fields ? Fields::head(table->fields)->slots : 0;
    if (count < have) return true;
    const std::size_t slots = have + have / 2 + 8;
    KOfflineField* grown = Fields::resize(table->fields, slots);
    if (!grown) return false;
    Fields::head(grown)->slots = slots;
    table->fields = grown;
    return true;
}

void set_count(KOfflineTable* table, std::int32_t count) {
    table->field_count = Fields::head(table->fields)->count = count;
}

/// The name of a field, which is ended here: a caller may have written over its end.
const char* field_name(KOfflineField* field) {
    field->field_name[kFieldNameMax] = 0;
    return field->field_name;
}

}  // namespace

Failure append_field_alone(KOfflineTable* table, const char* name) {
    KOfflineField field{};
    text_copy_cut(field.field_name, sizeof field.field_name, name);
    take_over_changes(table);
    // Growing moves the fields, and a name that a caller has from them.
    if (!reserve_field(table)) return Failure::memory;
    table->fields[table->field_count] = field;
    set_count(table, table->field_count + 1);
    return Failure::none;
}

Failure lay_out_records(KOfflineTable* table, std::int32_t old_count) {
    if (store_widen(table, old_count, table->field_count - old_count)) return Failure::none;
    set_count(table, old_count);
    return Failure::memory;
}

Failure append_field(KOfflineTable* table, const char* name) {
    const Failure failure = append_field_alone(table, name);
    return failed(failure) ? failure : lay_out_records(table, table->field_count - 1);
}

void truncate_fields(KOfflineTable* table, std::int32_t count) {
    for (std::int32_t i = count; i < Fields::head(table->fields)->count; ++i) index_free(&table->fields[i]);
    set_count(table, count);
}

void free_fields(KOfflineTable* table) {
    Fields::free(table->fields);
    table->fields = nullptr;
    table->field_count = 0;
}

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL KOfflineTable_AddFld(KOfflineTable* table, const char* name) {
    if (!table || !name || *name == 0) return -1;
    const std::int32_t existing = KOfflineTable_GetFldIndex(table, name);
    if (existing >= 0) return existing;
    if (std::strlen(name) > kFieldNameMax) return -1;
    const Failure failure = append_field(table, name);
    if (failed(failure)) KOfflineDb_SetError(table->db, failure);
    return failed(failure) ? -1 : table->field_count - 1;
}

VLT_API std::int32_t VLT_CALL KOfflineTable_GetFldsCount(KOfflineTable* table) {
    if (!table) return 0;
    take_over_changes(table);
    return table->field_count;
}

VLT_API std::int32_t VLT_CALL KOfflineTable_GetFldIndex(KOfflineTable* table, const char* name) {
    if (!table || !name) return -1;
    take_over_changes(table);
    const char* key = text_name_key(name);
    for (std::int32_t field = 0; field < table->field_count; ++field) {
        if (equals_fold(text_name_key(field_name(&table->fields[field])), key)) return field;
    }
    return -1;
}

VLT_API std::int32_t VLT_CALL KOfflineTable_GetFldName(KOfflineTable* table, std::int32_t field, char* name) {
    if (name) *name = 0;
    if (!table) return 0;
    take_over_changes(table);
    if (!table_has_field(table, field)) return 0;
    if (name) std::strcpy(name, field_name(&table->fields[field]));
    return 1;
}

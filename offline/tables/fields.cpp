// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstring>

#include "base/ascii_case.h"
#include "offline/tables/error_state.h"
#include "offline/tables/headed.h"
#include "offline/tables/index.h"
#include "offline/tables/record_store.h"
#include "offline/tables/table.h"
#include "offline/tables/text.h"

namespace {

struct FieldsHead {
    std::size_t slots;  ///< fields the array has room for; a schema may declare very many, one by one
};

using Fields = Headed<FieldsHead, KOfflineField>;

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

}  // namespace

bool append_field_alone(KOfflineTable* table, const char* name) {
    KOfflineField field{};
    std::memcpy(field.field_name, name, ::strnlen(name, kFieldNameMax));
    table->field_count = std::max(table->field_count, 0);
    if (!reserve_field(table)) {  // which moves the fields, and a name that a caller has from them
        KOfflineDb_SetError(table->db, KOFFLINE_ERR_MEMORY);
        return false;
    }
    table->fields[table->field_count++] = field;
    return true;
}

bool lay_out_records(KOfflineTable* table, std::int32_t old_count) {
    if (store_widen(table, old_count, table->field_count - old_count)) return true;
    KOfflineDb_SetError(table->db, KOFFLINE_ERR_MEMORY);
    table->field_count = old_count;
    return false;
}

bool append_field(KOfflineTable* table, const char* name) {
    return append_field_alone(table, name) && lay_out_records(table, table->field_count - 1);
}

void free_fields(KOfflineTable* table) {
    Fields::free(table->fields);
    table->fields = nullptr;
    table->field_count = 0;
}

int32_t VLT_CALL KOfflineTable_AddFld(KOfflineTable* table, const char* name) {
    if (!table || !name || *name == 0) return -1;
    const int32_t existing = KOfflineTable_GetFldIndex(table, name);
    if (existing >= 0) return existing;
    if (std::strlen(name) > kFieldNameMax || !append_field(table, name)) return -1;
    return table->field_count - 1;
}

int32_t VLT_CALL KOfflineTable_GetFldsCount(KOfflineTable* table) {
    if (!table) return 0;
    table->field_count = std::max(table->field_count, 0);
    return table->field_count;
}

int32_t VLT_CALL KOfflineTable_GetFldIndex(KOfflineTable* table, const char* name) {
    if (!table || !name) return -1;
    const char* key = text_name_key(name);
    for (int32_t field = 0; field < table->field_count; ++field) {
        if (equals_fold(text_name_key(table->fields[field].field_name), key)) return field;
    }
    return -1;
}

int32_t VLT_CALL KOfflineTable_GetFldName(KOfflineTable* table, int32_t field, char* name) {
    if (name) *name = 0;
    if (!table_has_field(table, field)) return 0;
    if (name) std::memcpy(name, table->fields[field].field_name, std::strlen(table->fields[field].field_name) + 1);
    return 1;
}

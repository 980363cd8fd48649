// SPDX-License-Identifier: MIT
#include <initializer_list>

#include "offline/db/database.h"
#include "offline/db/error_state.h"
#include "offline/db/field_list.h"
#include "offline/db/file_names.h"
#include "offline/db/schema_read.h"
#include "offline/db/stream.h"
#include "offline/tables/data_file.h"
#include "offline/tables/fields.h"
#include "platform/disk_path.h"

namespace vlt {

namespace {

/// The fields that a table gets which the schema does not declare, in the order in which the tables get them.
constexpr struct {
    TableSlot table;
    const char* fields[4];
} kDefaultFields[] = {
    {TABLE_BDWG, {"BDWG.NID", "BDWG.CCODE", "BDWG.CNAME", "BDWG.CSRC"}},
    {TABLE_BITDWG, {"BITDWG.NID", "BITDWG.NPID", "BITDWG.NCID"}},
    {TABLE_BCAPP, {"BCAPP.NID", "BCAPP.CCODE", "BCAPP.CNAME", "BCAPP.CSRC"}},
    {TABLE_BITCAP, {"BITCAP.NID", "BITCAP.NPID", "BITCAP.NCID"}},
};

bool fail(KOfflineDb* db, Failure failure) {
    KOfflineDb_SetError(db, failure);
    return false;
}

bool fail(KOfflineDb* db, Failure failure, const char* text) {
    KOfflineDb_SetError(db, failure, text);
    return false;
}

bool open_source(KOfflineDb* db, const char* path) {
    close_package(db);
    return KOfflineDb_OpenPackage(db, path);
}

bool load_schema(KOfflineDb* db, const char* path, KOfflineDb_SchemaState* state) {
    char name[kFileNameSize];
    if (!form_file_name(path, kSchemaFile, name)) return fail(db, Failure::file, name);
    return read_schema(db, name, state);
}

bool require_tables(KOfflineDb* db, const KOfflineDb_SchemaState& state) {
    for (const TableSlot table : {TABLE_BITM, TABLE_BBOM}) {
        if (!state.declared[table]) return fail(db, Failure::table, kTableNames[table]);
    }
    return true;
}

/// Appends a field under a name as it stands, without looking for one of that name; a name over 32 bytes is cut, for
/// dropping the field would shift the columns after it.
Failure KOfflineDb_AppendSchemaField(KOfflineTable* table, const char* name) {
    return append_field(table, name);
}

bool add_default_fields(KOfflineDb* db, const KOfflineDb_SchemaState& state) {
    for (const auto& missing : kDefaultFields) {
        if (state.declared[missing.table]) continue;
        for (const char* field : missing.fields) {
            if (!field) continue;
            const Failure failure = KOfflineDb_AppendSchemaField(&db->tables[missing.table], field);
            if (failed(failure)) return fail(db, failure);
        }
    }
    return true;
}

bool require_separator(KOfflineDb* db) {
    return db->separator[0] || fail(db, Failure::separator);
}

bool resolve_field(KOfflineDb* db, const WellKnownField& field, std::int32_t* slot) {
    KOfflineTable* table = &db->tables[field.table];
    *slot = KOfflineTable_GetFldIndex(table, field.name);
    if (*slot < 0 && field.rule == FieldRule::added) {
        const Failure failure = KOfflineDb_AppendSchemaField(table, field.full_name);
        if (failed(failure)) return fail(db, failure);
        *slot = KOfflineTable_GetFldIndex(table, field.name);
    }
    if (*slot >= 0 || field.rule == FieldRule::optional) return true;
    return fail(db, Failure::field, field.full_name);
}

bool resolve_fields(KOfflineDb* db) {
    for (int slot = 0; slot < SLOT_COUNT; ++slot) {
        if (!resolve_field(db, kWellKnownFields[slot], &db->field_slots[slot])) return false;
    }
    return true;
}

/// Whether a data file is there, even if it does not open now: taken for missing it would be an empty table, which
/// the next save would write over it.
bool is_there(KOfflineDb* db, const char* path) {
    if (KOfflineDb_FileExists(db, path)) return true;
    if (db->package < 1) return disk_path_kind(path) == PathKind::file;
    std::uint32_t kind = 0;
    return vlt_file_get_info(db->package, last_component(path), &kind, nullptr, nullptr, nullptr, nullptr) == 1 &&
           kind == VLT_ENTRY_FILE;
}

bool read_tables(KOfflineDb* db, const char* path) {
    for (int table = 0; table < TABLE_COUNT; ++table) {
        char name[kFileNameSize];
        if (!form_file_name(path, kDataFiles[table], name)) return fail(db, Failure::file, name);
        const bool optional = table != TABLE_BITM && table != TABLE_BBOM;
        if (optional && !is_there(db, name)) continue;
        if (!KOfflineTable_ReadFile(&db->tables[table], name, db->separator)) return false;
    }
    return true;
}

bool build_indexes(KOfflineDb* db) {
    for (const WellKnownField& field : kWellKnownFields) {
        if (field.rule != FieldRule::required) continue;
        if (!KOfflineTable_LoadIdx(&db->tables[field.table], field.name)) return false;
    }
    return true;
}

void find_root(KOfflineDb* db, const char* code) {
    if (*code) db->root_nid = KOfflineDb_GetNIDByCCODE(db, code);
}

}  // namespace

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL KOfflineDb_Load(KOfflineDb* db, const char* path) {
    if (!db) return 0;
    if (!path) path = "";
    db->root_nid = -1;
    db->error_code = KOFFLINE_ERR_NONE;
    end_texts(db);
    KOfflineDb_SchemaState state;
    if (!open_source(db, path) || !load_schema(db, path, &state)) return 0;
    if (!require_tables(db, state) || !add_default_fields(db, state) || !require_separator(db)) return 0;
    if (!resolve_fields(db) || !read_tables(db, path) || !build_indexes(db)) return 0;
    find_root(db, state.root_code);
    keep_path(db, path);
    return 1;
}

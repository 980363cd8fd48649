// SPDX-License-Identifier: MIT
#include "offline/db/database.h"
#include "offline/db/field_list.h"
#include "offline/db/file_names.h"
#include "offline/db/schema.h"
#include "offline/tables/error_state.h"

namespace {

bool write_schema(KOfflineDb* db, const char* path) {
    char name[kFileNameSize];
    if (form_file_name(path, kSchemaFile, name)) return KOfflineDb_WriteSchema(db, name);
    KOfflineDb_SetErrorText(db, KOFFLINE_ERR_FILE, name);
    return false;
}

bool write_tables(KOfflineDb* db, const char* path) {
    for (int table = 0; table < TABLE_COUNT; ++table) {
        char name[kFileNameSize];
        form_file_name(path, kDataFiles[table], name);  // it fits: the schema's name has as many characters or more
        if (!KOfflineTable_WriteFile(&db->tables[table], name, db->separator)) return false;
    }
    return true;
}

}  // namespace

std::int32_t KOfflineDb_SaveAs(KOfflineDb* db, const char* path) {
    if (!db || !path || *path == 0) return 0;
    if (!write_schema(db, path) || !write_tables(db, path)) return 0;
    keep_path(db, path);
    return 1;
}

std::int32_t KOfflineDb_Save(KOfflineDb* db) {
    return db ? KOfflineDb_SaveAs(db, db->path) : 0;
}

// SPDX-License-Identifier: MIT
#include <cstring>

#include "offline/db/database.h"
#include "offline/db/error_state.h"
#include "offline/db/field_list.h"
#include "offline/db/file_names.h"
#include "offline/db/schema_write.h"

namespace vlt {

namespace {

/// The name of a file to be saved; inside a package only its last component counts, whatever the path.
bool form_target_name(const KOfflineDb* db, const char* path, const char* file, char* name) {
    if (form_file_name(path, file, name)) return true;
    if (db->package < 1) return false;
    std::strcpy(name, file);
    return true;
}

bool write_schema(KOfflineDb* db, const char* path) {
    char name[kFileNameSize];
    if (form_target_name(db, path, kSchemaFile, name)) return KOfflineDb_WriteSchema(db, name);
    KOfflineDb_SetError(db, Failure::file, name);
    return false;
}

bool write_tables(KOfflineDb* db, const char* path) {
    for (int table = 0; table < TABLE_COUNT; ++table) {
        char name[kFileNameSize];
        form_target_name(db, path, kDataFiles[table],
                         name);  // it fits: the schema's name has as many characters or more
        if (!KOfflineTable_WriteFile(&db->tables[table], name, db->separator)) return false;
    }
    return true;
}

}  // namespace

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL KOfflineDb_SaveAs(KOfflineDb* db, const char* path) {
    if (!db || !path || *path == 0) return 0;
    end_texts(db);
    if (!write_schema(db, path) || !write_tables(db, path)) return 0;
    keep_path(db, path);
    return 1;
}

VLT_API std::int32_t VLT_CALL KOfflineDb_Save(KOfflineDb* db) {
    char path[sizeof(KOfflineDb::path)];
    KOfflineDb_GetPath(db, path);
    return KOfflineDb_SaveAs(db, path);
}

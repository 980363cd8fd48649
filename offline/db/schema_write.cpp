// SPDX-License-Identifier: MIT
#include "offline/db/schema_write.h"

#include <cstring>
#include <initializer_list>

#include "offline/db/lookups.h"
#include "offline/db/separator.h"
#include "offline/db/stream_writer.h"

namespace vlt {

namespace {

/// Failed writes go unnoticed; as a rule the data files that are written next meet the same full disk and report it.
void put_line(StreamWriter* writer, std::initializer_list<const char*> parts) {
    for (const char* part : parts) writer->put(part, std::strlen(part));
    writer->put("\r\n", 2);
}

bool write_table(StreamWriter* writer, KOfflineDb* db, int table) {
    put_line(writer, {"1, table, ", kSchemaNames[table]});
    KOfflineTable* fields = &db->tables[table];
    const std::int32_t count = KOfflineTable_GetFldsCount(fields);
    for (std::int32_t i = 0; i < count; ++i) {
        char name[sizeof(KOfflineField::field_name)];
        if (!KOfflineTable_GetFldName(fields, i, name)) return false;
        put_line(writer, {"1.1, field, ", name});
    }
    return true;
}

bool write_settings(StreamWriter* writer, KOfflineDb* db) {
    put_line(writer, {"1, ini"});
    char names[kSeparatorNamesSize];
    if (!KOfflineDb_ConvertSeparator(db->separator, names, 0)) return false;
    put_line(writer, {"1.1, separator, ", names});
    if (db->root_nid < 1) return true;
    const char* code = code_by_nid(db, TABLE_BITM, db->root_nid);
    if (!code) return false;
    put_line(writer, {"1.1, root, ", code});
    return true;
}

bool write_lines(StreamWriter* writer, KOfflineDb* db) {
    for (int table = 0; table < TABLE_COUNT; ++table) {
        if (!write_table(writer, db, table)) return false;
    }
    return write_settings(writer, db);
}

}  // namespace

bool KOfflineDb_WriteSchema(KOfflineDb* db, const char* path) {
    KOfflineStream stream;
    if (!KOfflineStream_Open(db, path, 1, &stream)) {
        KOfflineDb_SetError(db, Failure::file, path);
        return false;
    }
    StreamWriter writer(&stream);
    const bool composed = write_lines(&writer, db);
    (void)writer.finish();
    KOfflineStream_Close(db, &stream);
    if (!composed) KOfflineDb_SetError(db, Failure::schema_write);
    return composed;
}

}  // namespace vlt

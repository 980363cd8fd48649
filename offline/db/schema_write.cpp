// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstring>

#include "offline/db/accessors.h"
#include "offline/db/schema.h"
#include "offline/db/stream.h"
#include "offline/tables/error_state.h"

namespace {

/// Collects the lines of a schema and writes them in few calls. Failed writes go unnoticed: the data files that are
/// written next meet the same full disk and report it.
class SchemaFile {
public:
    SchemaFile(KOfflineDb* db, const KOfflineStream& stream) : db_(db), stream_(stream) {}
    SchemaFile(const SchemaFile&) = delete;
    SchemaFile& operator=(const SchemaFile&) = delete;
    ~SchemaFile() {
        flush();
        KOfflineStream_Close(db_, &stream_);
    }

    void line(const char* start, const char* rest = "") {
        put(start);
        put(rest);
        put("\r\n");
    }

private:
    void put(const char* text) {
        std::size_t left = std::strlen(text);
        while (left) {
            if (used_ == sizeof pending_) flush();
            const std::size_t taken = std::min(left, sizeof pending_ - used_);
            std::memcpy(pending_ + used_, text, taken);
            used_ += taken;
            text += taken;
            left -= taken;
        }
    }

    void flush() {
        KOfflineStream_Write(pending_, static_cast<std::int32_t>(used_), &stream_);
        used_ = 0;
    }

    KOfflineDb* db_;
    KOfflineStream stream_;
    std::size_t used_ = 0;
    char pending_[8192];
};

constexpr const char* kTableLines[TABLE_COUNT] = {"1, table, bitm",   "1, table, bbom",  "1, table, bdwg",
                                                  "1, table, bitdwg", "1, table, bcapp", "1, table, bitcap"};

bool write_table(SchemaFile& file, KOfflineDb* db, int table) {
    file.line(kTableLines[table]);
    KOfflineTable* fields = &db->tables[table];
    const std::int32_t count = KOfflineTable_GetFldsCount(fields);
    for (std::int32_t i = 0; i < count; ++i) {
        char name[sizeof(KOfflineField::field_name)];
        if (!KOfflineTable_GetFldName(fields, i, name)) return false;
        file.line("1.1, field, ", name);
    }
    return true;
}

bool write_settings(SchemaFile& file, KOfflineDb* db) {
    file.line("1, ini");
    char names[kSeparatorNamesSize];
    if (!KOfflineDb_ConvertSeparator(db->separator, names, 0)) return false;
    file.line("1.1, separator, ", names);
    if (db->root_nid < 1) return true;
    const char* code = code_by_nid(db, TABLE_BITM, db->root_nid);
    if (!code) return false;
    file.line("1.1, root, ", code);
    return true;
}

bool write_lines(SchemaFile& file, KOfflineDb* db) {
    for (int table = 0; table < TABLE_COUNT; ++table) {
        if (!write_table(file, db, table)) return false;
    }
    return write_settings(file, db);
}

}  // namespace

std::int32_t KOfflineDb_WriteSchema(KOfflineDb* db, const char* path) {
    KOfflineStream stream;
    if (!KOfflineStream_Open(db, path, 1, &stream)) {
        KOfflineDb_SetErrorText(db, KOFFLINE_ERR_FILE, path);
        return 0;
    }
    SchemaFile file(db, stream);
    if (write_lines(file, db)) return 1;
    KOfflineDb_SetError(db, KOFFLINE_ERR_SCHEMA_WRITE);
    return 0;
}

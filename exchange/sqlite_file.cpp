// SPDX-License-Identifier: MIT
#include "exchange/sqlite_file.h"

#include "exchange/error.h"
#include "exchange/text.h"

namespace exchange {

SqliteFile::SqliteFile(const std::string& path, bool write) {
    const int flags = write ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READONLY;
    if (sqlite3_open_v2(path.c_str(), &handle_, flags, nullptr) == SQLITE_OK) return;
    const std::string reason = sqlite3_errmsg(handle_);
    sqlite3_close(handle_);
    throw Error("cannot be opened by SQLite: " + reason);
}

SqliteFile::~SqliteFile() {
    sqlite3_close(handle_);
}

void SqliteFile::run(const std::string& sql) {
    if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw Error(std::string("SQLite: ") + sqlite3_errmsg(handle_));
}

SqliteStatement::SqliteStatement(SqliteFile& file, const std::string& sql) : handle_(file.handle()) {
    check(sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement_, nullptr));
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(statement_);
}

void SqliteStatement::check(int code) {
    if (code != SQLITE_OK) throw Error(std::string("SQLite: ") + sqlite3_errmsg(handle_));
}

void SqliteStatement::bind(int number, const char* value) {
    if (!value) return check(sqlite3_bind_null(statement_, number));
    const std::string_view text = value;
    if (is_utf8(text))
        return check(sqlite3_bind_text64(statement_, number, value, text.size(), nullptr, SQLITE_UTF8));
    check(sqlite3_bind_blob64(statement_, number, value, text.size(), nullptr));
}

void SqliteStatement::bind(int number, std::int64_t value) {
    check(sqlite3_bind_int64(statement_, number, value));
}

bool SqliteStatement::step() {
    const int code = sqlite3_step(statement_);
    if (code == SQLITE_ROW) return true;
    check(sqlite3_reset(statement_));
    return false;
}

std::string SqliteStatement::column_name(int column) const {
    return sqlite3_column_name(statement_, column);
}

std::string_view SqliteStatement::column(int column, bool& missing) {
    missing = sqlite3_column_type(statement_, column) == SQLITE_NULL;
    if (missing) return {};
    const void* const bytes = sqlite3_column_blob(statement_, column);
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

}  // namespace exchange

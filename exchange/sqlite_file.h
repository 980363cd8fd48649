// SPDX-License-Identifier: MIT
// A database file of SQLite, and statements on it; every failure is an `Error` with SQLite's own words.
#pragma once

#include <sqlite3.h>

#include <string>
#include <string_view>

namespace exchange {

class SqliteFile {
public:
    /// Opens a file; one that is to be written is made, and must not exist yet.
    SqliteFile(const std::string& path, bool write);
    ~SqliteFile();
    SqliteFile(const SqliteFile&) = delete;
    SqliteFile& operator=(const SqliteFile&) = delete;

    void run(const std::string& sql);
    sqlite3* handle() const { return handle_; }

private:
    sqlite3* handle_ = nullptr;
};

class SqliteStatement {
public:
    SqliteStatement(SqliteFile& file, const std::string& sql);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    /// Binds parameter `number`, from 1: a text, or bytes where it is no UTF-8; a null value as NULL. The value must
    /// stay until the next step.
    void bind(int number, const char* value);
    void bind(int number, std::int64_t value);

    /// Goes to the next row; false after the last, and the statement can be bound and stepped anew.
    bool step();

    int columns() const { return sqlite3_column_count(statement_); }
    std::string column_name(int column) const;
    /// The value of a column as text; `missing` tells NULL. Valid until the next step.
    std::string_view column(int column, bool& missing);

private:
    void check(int code);

    sqlite3* handle_;
    sqlite3_stmt* statement_ = nullptr;
};

}  // namespace exchange

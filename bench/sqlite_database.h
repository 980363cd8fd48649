// SPDX-License-Identifier: MIT
// A product database in SQLite, in memory, with the indexes that the library builds.
#pragma once

#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "measure.h"
#include "plain_loader.h"
#include "product_data.h"

namespace bench {

/// The same data in SQLite, in memory.
class Sqlite {
public:
    Sqlite() { need(sqlite3_open(":memory:", &db_) == SQLITE_OK, "sqlite3_open"); }
    ~Sqlite() {
        for (sqlite3_stmt* s : statements_) sqlite3_finalize(s);
        sqlite3_close(db_);
    }
    void load(const std::filesystem::path& path) {
        run("BEGIN");
        for (int t = 0; t < 6; ++t) load_table(path, t);
        run("COMMIT");
    }
    sqlite3_stmt* prepare(const std::string& sql) {
        sqlite3_stmt* s = nullptr;
        need(sqlite3_prepare_v2(db_, sql.c_str(), -1, &s, nullptr) == SQLITE_OK, sql.c_str());
        statements_.push_back(s);
        return s;
    }
    void step(sqlite3_stmt* s) {
        need(sqlite3_step(s) == SQLITE_DONE, "an insert");
        sqlite3_reset(s);
    }
    void run(const std::string& sql) {
        need(sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, sql.c_str());
    }
    int count(sqlite3_stmt* s, const char* key) {
        int rows = 0;
        sqlite3_bind_text(s, 1, key, -1, SQLITE_STATIC);
        while (sqlite3_step(s) == SQLITE_ROW) ++rows;
        sqlite3_reset(s);
        return rows;
    }

private:
    void load_table(const std::filesystem::path& path, int t) {
        const std::string table = schema_tables[t];
        const auto& fields = schema_fields[t];
        std::string columns, marks;
        for (const char* f : fields) columns += std::string(f) + " TEXT COLLATE NOCASE,", marks += "?,";
        columns.pop_back(), marks.pop_back();
        run("CREATE TABLE " + table + "(" + columns + ")");
        insert(prepare("INSERT INTO " + table + " VALUES(" + marks + ")"), path / (table + ".txt"),
               static_cast<int>(fields.size()));
        for (const std::string f : fields)
            if (f == "NID" || f == "NPID" || f == "NCID" || f == "CCODE")
                run("CREATE INDEX " + table + f + " ON " + table + "(" + f + ")");
    }
    /// Inserts the records of a data file.
    void insert(sqlite3_stmt* statement, const std::filesystem::path& data, int fields) {
        PlainTable table;
        table.load(data, fields);
        int column = 0;
        for (const std::string_view value : table.values) {
            sqlite3_bind_text(statement, ++column, value.data(), static_cast<int>(value.size()), SQLITE_STATIC);
            if (column < fields) continue;
            step(statement);
            column = 0;
        }
    }

    sqlite3* db_ = nullptr;
    std::vector<sqlite3_stmt*> statements_;
};

}  // namespace bench

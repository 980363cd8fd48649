// SPDX-License-Identifier: MIT
#include "exchange/export.h"
#include "exchange/export_sql.h"
#include "exchange/sqlite_file.h"

namespace exchange {

namespace {

void fill_schema(SqliteFile& file, const Schema& schema) {
    file.run(kSqlCreateSchema);
    SqliteStatement insert(file, "INSERT INTO vlt_schema(kind, table_name, value) VALUES(?,?,?)");
    for (const SchemaRow& row : schema_rows(schema)) {
        insert.bind(1, row.kind.c_str());
        insert.bind(2, row.table.c_str());
        insert.bind(3, row.value.c_str());
        insert.step();
    }
}

void fill_table(SqliteFile& file, KOfflineTable* table, const std::string& name, const std::function<void()>& tick) {
    const std::int32_t records = KOfflineTable_GetRecsCount(table), fields = KOfflineTable_GetFldsCount(table);
    std::string sql = "INSERT INTO " + name + " VALUES(?";
    for (std::int32_t f = 0; f < fields; ++f) sql += ",?";
    SqliteStatement insert(file, sql + ")");
    for (std::int32_t r = 0; r < records; ++r) {
        insert.bind(1, std::int64_t{r} + 1);
        for (std::int32_t f = 0; f < fields; ++f) insert.bind(f + 2, KOfflineTable_GetFldValue(table, r, f));
        insert.step();
        if (r % 1024 == 0) tick();
    }
}

}  // namespace

void export_sqlite(KOfflineDb* db, const std::string& path, const std::function<void()>& tick) {
    const Schema schema = schema_of(db);
    const SqlTables tables = sql_tables(db, schema);
    SqliteFile file(path, true);
    // The file is new and worth nothing until it is whole, so no journal is kept.
    file.run("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA foreign_keys = OFF; BEGIN");
    fill_schema(file, schema);
    for (std::size_t t = 0; t < kTableCount; ++t) {
        file.run(sql_create(tables, t));
        fill_table(file, table_of(db, t), tables[t].name, tick);
    }
    for (const std::string& statement : sql_finish(tables)) file.run(statement);
    file.run("COMMIT");
}

}  // namespace exchange

// SPDX-License-Identifier: MIT
#include "exchange/error.h"
#include "exchange/export_sql.h"
#include "exchange/import_rows.h"
#include "exchange/sqlite_file.h"
#include "exchange/text.h"

namespace exchange {

namespace {

bool has_table(SqliteFile& file, const std::string& name) {
    SqliteStatement query(file, "SELECT 1 FROM sqlite_master WHERE type = 'table' AND lower(name) = ?");
    query.bind(1, name.c_str());
    return query.step();
}

/// Records come in the order of their numbers, or else as they stand in the file.
std::string query_of(SqliteFile& file, std::size_t table) {
    std::string all = "SELECT * FROM " + sql_table_name(table);
    SqliteStatement columns(file, all);
    for (int c = 0; c < columns.columns(); ++c)
        if (upper(columns.column_name(c)) == kSqlRecord) return all + " ORDER BY RECORD";
    return all;
}

class SqliteRows : public Rows {
public:
    SqliteRows(SqliteFile& file, std::size_t table, const std::function<void()>& tick)
        : query_(file, query_of(file, table)), tick_(tick) {
        for (int c = 0; c < query_.columns(); ++c) columns_.push_back(query_.column_name(c));
    }

    const std::vector<std::string>& columns() const override { return columns_; }

    bool next(std::vector<std::string_view>& values) override {
        if (++rows_ % 1024 == 0) tick_();
        if (!query_.step()) return false;
        values.clear();
        for (int c = 0; c < query_.columns(); ++c) {
            bool missing = false;
            values.push_back(query_.column(c, missing));
            if (values.back().find('\0') != std::string_view::npos)
                throw Error("row " + std::to_string(rows_) + ": a value holds a zero byte");
        }
        return true;
    }

private:
    SqliteStatement query_;
    const std::function<void()>& tick_;
    std::vector<std::string> columns_;
    std::int64_t rows_ = 0;
};

std::vector<SchemaRow> read_schema(SqliteFile& file) {
    SqliteStatement query(file, "SELECT kind, table_name, value FROM vlt_schema ORDER BY position");
    std::vector<SchemaRow> rows;
    for (bool missing; query.step();)
        rows.push_back({std::string(query.column(0, missing)), std::string(query.column(1, missing)),
                        std::string(query.column(2, missing))});
    return rows;
}

}  // namespace

void import_sqlite(const std::string& path, const OpenEmpty& open_empty, const std::function<void()>& tick) {
    SqliteFile file(path, false);
    RowSource source;
    if (has_table(file, kSqlSchemaTable)) source.schema = read_schema(file);
    for (std::size_t t = 0; t < kTableCount; ++t)
        if (has_table(file, sql_table_name(t))) source.tables[t] = std::make_unique<SqliteRows>(file, t, tick);
    import_rows(std::move(source), kSqlReserved, open_empty);
}

}  // namespace exchange

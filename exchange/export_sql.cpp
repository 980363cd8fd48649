// SPDX-License-Identifier: MIT
#include "exchange/export_sql.h"

#include <unordered_set>

#include "exchange/export.h"
#include "exchange/text.h"

namespace exchange {

namespace {

constexpr int kRowsOfStatement = 200;

/// Which table the NPID and the NCID of a link name; kTableCount for a table that is no link.
struct LinkEnds {
    std::size_t parent = kTableCount, child = kTableCount;
};
LinkEnds ends_of(std::size_t table) {
    if (table == kBbom) return {kBitm, kBitm};
    if (table == kBitdwg) return {kBitm, kBdwg};
    if (table == kBitcap) return {kBitm, kBcapp};
    return {};
}

bool nids_differ(KOfflineTable* table) {
    const std::int32_t field = KOfflineTable_GetFldIndex(table, "NID"), records = KOfflineTable_GetRecsCount(table);
    std::unordered_set<std::string_view> seen;
    seen.reserve(static_cast<std::size_t>(records));
    for (std::int32_t r = 0; r < records; ++r) {
        const char* const nid = KOfflineTable_GetFldValue(table, r, field);
        if (nid && !seen.insert(nid).second) return false;
    }
    return field >= 0;
}

std::string reference(const SqlTables& tables, std::size_t to) {
    if (to == kTableCount || !tables[to].has_key) return {};
    return " REFERENCES " + tables[to].name + "(" + tables[to].nid + ")";
}

std::string index_statement(const char* create, const SqlTable& table, const std::string& column) {
    return create + sql_name(table.name + "_" + column.substr(1, column.size() - 2)) + " ON " + table.name + "(" +
           column + ")";
}

std::string view_statement(const SqlTable& items, const SqlTable& lines) {
    const auto of = [](const char* alias, const std::string& column) {
        return column.empty() ? "NULL" : alias + ("." + column);
    };
    const auto join = [&](const char* alias, const std::string& end) {
        return std::string(" LEFT JOIN ") + items.name + " " + alias + " ON " + of(alias, items.nid) + " = " +
               of("line", end);
    };
    return "CREATE VIEW bom AS SELECT line.RECORD AS record, " + of("parent", items.code) + " AS parent_code, " +
           of("parent", items.description) + " AS parent_name, " + of("child", items.code) + " AS code, " +
           of("child", items.description) + " AS name, " + of("line", lines.quantity) + " AS quantity FROM " +
           lines.name + " line" + join("parent", lines.parent) + join("child", lines.child) + " ORDER BY line.RECORD";
}

/// A value as SQL writes it; bytes that are no UTF-8 as X'ff00', none as NULL.
void add_sql_value(Output& output, const char* value) {
    if (!value) return output.add("NULL");
    if (!is_utf8(value)) return output.add("X'" + to_hex(value) + "'");
    output.add('\'');
    for (; *value != '\0'; ++value) {
        if (*value == '\'') output.add('\'');
        output.add(*value);
    }
    output.add('\'');
}

void add_rows(Output& output, KOfflineTable* table, const std::string& name) {
    const std::int32_t records = KOfflineTable_GetRecsCount(table), fields = KOfflineTable_GetFldsCount(table);
    for (std::int32_t r = 0; r < records; ++r) {
        output.add(r % kRowsOfStatement != 0 ? ",\n(" : "INSERT INTO " + name + " VALUES\n(");
        output.add(std::to_string(r + 1));
        for (std::int32_t f = 0; f < fields; ++f) {
            output.add(',');
            add_sql_value(output, KOfflineTable_GetFldValue(table, r, f));
        }
        output.add(r + 1 == records || (r + 1) % kRowsOfStatement == 0 ? ");\n" : ")");
        output.end_record();
    }
}

void add_schema(Output& output, const Schema& schema) {
    output.add(std::string(kSqlCreateSchema) + ";\n");
    for (const SchemaRow& row : schema_rows(schema)) {
        output.add("INSERT INTO vlt_schema(kind, table_name, value) VALUES(");
        add_sql_value(output, row.kind.c_str());
        output.add(',');
        add_sql_value(output, row.table.c_str());
        output.add(',');
        add_sql_value(output, row.value.c_str());
        output.add(");\n");
    }
}

}  // namespace

std::string sql_table_name(std::size_t table) {
    return lower(kTableNames[table]);
}

SqlTables sql_tables(KOfflineDb* db, const Schema& schema) {
    SqlTables tables;
    for (std::size_t t = 0; t < kTableCount; ++t) {
        SqlTable& table = tables[t];
        for (const std::string& name : column_names(schema.fields[t], kSqlReserved))
            table.columns.push_back(sql_name(name));
        const auto column = [&](const char* field) {
            const std::int32_t number = KOfflineTable_GetFldIndex(table_of(db, t), field);
            return number < 0 ? std::string() : table.columns[static_cast<std::size_t>(number)];
        };
        table.name = sql_table_name(t);
        table.nid = column("NID");
        table.code = column("CCODE");
        table.description = column("CNAME");
        table.parent = column("NPID");
        table.child = column("NCID");
        table.quantity = column("FCOUNT");
        table.has_key = nids_differ(table_of(db, t));
    }
    return tables;
}

std::string sql_create(const SqlTables& tables, std::size_t table) {
    const SqlTable& made = tables[table];
    const LinkEnds ends = ends_of(table);
    std::string statement = "CREATE TABLE " + made.name + "(RECORD INTEGER PRIMARY KEY";
    for (const std::string& column : made.columns) {
        statement += ", " + column + " TEXT";
        if (column == made.parent) statement += reference(tables, ends.parent);
        if (column == made.child) statement += reference(tables, ends.child);
    }
    return statement + ")";
}

std::vector<std::string> sql_finish(const SqlTables& tables) {
    std::vector<std::string> statements;
    for (const SqlTable& table : tables) {
        statements.push_back(
            index_statement(table.has_key ? "CREATE UNIQUE INDEX " : "CREATE INDEX ", table, table.nid));
        for (const std::string& column : {table.code, table.parent, table.child})
            if (!column.empty()) statements.push_back(index_statement("CREATE INDEX ", table, column));
    }
    statements.push_back(view_statement(tables[kBitm], tables[kBbom]));
    return statements;
}

std::string sql_name(std::string_view name) {
    std::string quoted = "\"";
    for (const char c : name) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + '"';
}

/// Links may name records that are not there, so the keys are declared but not enforced while the tables are filled.
void export_sql(KOfflineDb* db, Output& output) {
    const Schema schema = schema_of(db);
    const SqlTables tables = sql_tables(db, schema);
    output.add("PRAGMA foreign_keys = OFF;\nBEGIN;\n");
    add_schema(output, schema);
    for (std::size_t t = 0; t < kTableCount; ++t) {
        output.add(sql_create(tables, t) + ";\n");
        add_rows(output, table_of(db, t), tables[t].name);
    }
    for (const std::string& statement : sql_finish(tables)) output.add(statement + ";\n");
    output.add("COMMIT;\n");
    output.flush();
}

}  // namespace exchange

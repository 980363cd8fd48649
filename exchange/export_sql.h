// SPDX-License-Identifier: MIT
// The tables of a database as SQL has them: what the statements as text and the SQLite file share.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "exchange/schema.h"

namespace exchange {

/// In front of each table's fields stands the number of the record, which keeps their order.
constexpr std::string_view kSqlRecord = "RECORD";
inline constexpr std::string_view kSqlReserved[] = {kSqlRecord};

/// The table that brings separator, root and declared fields back when the file is imported.
constexpr const char* kSqlSchemaTable = "vlt_schema";
constexpr const char* kSqlCreateSchema =
    "CREATE TABLE vlt_schema(position INTEGER PRIMARY KEY, kind TEXT, table_name TEXT, value TEXT)";

/// A table as SQL has it.
struct SqlTable {
    std::string name;                                             // "bitm"
    std::vector<std::string> columns;                             // names in quotes, one a field
    std::string nid, code, parent, child, description, quantity;  // those of them that have a meaning, or empty
    bool has_key = false;  // every record has a NID of its own, so links refer to it
};
using SqlTables = std::array<SqlTable, kTableCount>;

std::string sql_table_name(std::size_t table);
SqlTables sql_tables(KOfflineDb* db, const Schema& schema);

/// The statement that makes a table.
std::string sql_create(const SqlTables& tables, std::size_t table);

/// The statements that make the keys, the indexes over codes and links, and the view `bom`: every line with the codes
/// and names of its items. They come last: an index is made faster than kept.
std::vector<std::string> sql_finish(const SqlTables& tables);

/// A name in quotes.
std::string sql_name(std::string_view name);

}  // namespace exchange

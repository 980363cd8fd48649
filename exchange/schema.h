// SPDX-License-Identifier: MIT
// What a database declares: the fields of its six tables, the separator of its data files, the root item.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "include/offline.h"

namespace exchange {

constexpr std::size_t kTableCount = 6;

/// The tables in the order of KOfflineDb.
constexpr std::array<const char*, kTableCount> kTableNames = {"BITM", "BBOM", "BDWG", "BITDWG", "BCAPP", "BITCAP"};
enum TableNumber : std::size_t { kBitm, kBbom, kBdwg, kBitdwg, kBcapp, kBitcap };

/// The seven files that a database consists of; the first is the schema, then one for each table.
constexpr std::array<const char*, kTableCount + 1> kDatabaseFiles = {
    "kdbmain.txt", "bitm.txt", "bbom.txt", "bdwg.txt", "bitdwg.txt", "bcapp.txt", "bitcap.txt"};

struct Schema {
    std::string separator;  // as characters
    std::string root_code;  // empty: no root is chosen
    std::string root_nid;   // where given, it decides between several items of that code
    std::array<std::vector<std::string>, kTableCount> fields;  // as declared, "NID" or "BITM.NID"
};

KOfflineTable* table_of(KOfflineDb* db, std::size_t table);

/// The number of the table with this name in any letter case; kTableCount when there is none.
std::size_t table_number(std::string_view name);

Schema schema_of(KOfflineDb* db);

/// The usual fields, a comma as separator, no root.
Schema usual_schema();

/// The schema as `kdbmain.txt` says it. Fails with `Error` for a name or a separator that no schema can hold.
std::string schema_text(const Schema& schema);

/// The schema as lines of a table. A root's code may be that of several items, so its NID stands beside it.
struct SchemaRow {
    std::string kind;   // "separator", "root", "root_nid" or "field"
    std::string table;  // of a field
    std::string value;
};
std::vector<SchemaRow> schema_rows(const Schema& schema);
Schema schema_of_rows(const std::vector<SchemaRow>& rows);

/// Fails with `Error` for a name that no schema can hold as that of a field.
void check_field_name(std::string_view name);

/// The names of fields without their table's in front, each once: a second NID becomes NID#2, and one that is no
/// UTF-8 goes by its number. None of them is one of `reserved`. Letter case makes no difference between two names.
std::vector<std::string> column_names(const std::vector<std::string>& fields,
                                      std::span<const std::string_view> reserved = {});

/// A field's name without its table's in front: what follows the first point.
std::string_view plain_name(std::string_view field);

/// A separator as names joined by '+', and back: "," is COMMA. Other characters stand for themselves.
std::string separator_names(std::string_view separator);
std::string separator_characters(std::string_view names);

}  // namespace exchange

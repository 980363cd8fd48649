// SPDX-License-Identifier: MIT
#include "exchange/schema.h"

#include <algorithm>
#include <set>

#include "exchange/error.h"
#include "exchange/text.h"

namespace exchange {

namespace {

struct SeparatorName {
    char character;
    const char* name;
};
constexpr SeparatorName kSeparatorNames[] = {{'\t', "TAB"}, {' ', "BLANK"}, {',', "COMMA"}, {';', "SEMICOLON"}};

std::string name_of(char separator) {
    for (const SeparatorName& known : kSeparatorNames)
        if (known.character == separator) return known.name;
    return {separator};
}

std::string characters_of(std::string_view name) {
    for (const SeparatorName& known : kSeparatorNames)
        if (upper(name) == known.name) return {known.character};
    return std::string(name);
}

/// A comma, a line end, a comment or blanks around it would make the schema say something else.
bool fits_schema_line(std::string_view text) {
    return text.find_first_of(std::string_view(",\r\n\0", 4)) == text.npos && text.find("//") == text.npos &&
           trimmed(text) == text;
}

constexpr std::size_t kFieldNameMax = 32, kSeparatorMax = 15;

std::string separator_line_value(const std::string& separator) {
    if (separator.empty() || separator.size() > kSeparatorMax) throw Error("a separator has 1 to 15 characters");
    std::string names = separator_names(separator);
    if (separator_characters(names) != separator) throw Error("no schema can hold the separator '" + separator + "'");
    return names;
}

}  // namespace

KOfflineTable* table_of(KOfflineDb* db, std::size_t table) {
    using Getter = KOfflineTable*(VLT_CALL*)(KOfflineDb*);
    static constexpr Getter getters[kTableCount] = {KOfflineDb_GetTable_BITM,  KOfflineDb_GetTable_BBOM,
                                                    KOfflineDb_GetTable_BDWG,  KOfflineDb_GetTable_BITDWG,
                                                    KOfflineDb_GetTable_BCAPP, KOfflineDb_GetTable_BITCAP};
    return getters[table](db);
}

std::size_t table_number(std::string_view name) {
    const std::string wanted = upper(name);
    return static_cast<std::size_t>(std::find(kTableNames.begin(), kTableNames.end(), wanted) - kTableNames.begin());
}

Schema schema_of(KOfflineDb* db) {
    Schema schema;
    schema.separator = db->separator;
    for (std::size_t t = 0; t < kTableCount; ++t) {
        KOfflineTable* const table = table_of(db, t);
        for (std::int32_t f = 0; f < KOfflineTable_GetFldsCount(table); ++f) {
            char name[33];
            KOfflineTable_GetFldName(table, f, name);
            schema.fields[t].emplace_back(name);
        }
    }
    if (db->root_nid < 1) return schema;
    schema.root_nid = std::to_string(db->root_nid);
    const std::int32_t record = KOfflineDb_GetRecByNID_BITM(db, db->root_nid);
    const char* const code = KOfflineTable_GetFldValue(table_of(db, kBitm), record, KOfflineDb_GetFld_BITM_CCODE(db));
    if (code) schema.root_code = code;
    return schema;
}

Schema usual_schema() {
    const std::vector<std::string> document = {"NID",  "CCODE", "CNAME",     "CFILE",
                                               "CSRC", "CASM",  "COFLNMODI", "NOFLNITMID"};
    const std::vector<std::string> link = {"NID", "NPID", "NCID"};
    Schema schema;
    schema.separator = ",";
    schema.fields = {
        {{"NID", "CCODE", "CNAME", "CSRC"}, {"NID", "NPID", "NCID", "FCOUNT"}, document, link, document, link}};
    std::erase(schema.fields[kBcapp], "CASM");
    return schema;
}

std::vector<SchemaRow> schema_rows(const Schema& schema) {
    std::vector<SchemaRow> rows = {{"separator", "", separator_names(schema.separator)}};
    if (!schema.root_nid.empty()) {
        rows.push_back({"root", "", schema.root_code});
        rows.push_back({"root_nid", "", schema.root_nid});
    }
    for (std::size_t t = 0; t < kTableCount; ++t)
        for (const std::string& field : schema.fields[t]) rows.push_back({"field", kTableNames[t], field});
    return rows;
}

Schema schema_of_rows(const std::vector<SchemaRow>& rows) {
    Schema schema;
    for (const SchemaRow& row : rows) {
        if (row.kind == "separator") schema.separator = separator_characters(row.value);
        if (row.kind == "root") schema.root_code = row.value;
        if (row.kind == "root_nid") schema.root_nid = row.value;
        if (row.kind != "field") continue;
        const std::size_t table = table_number(row.table);
        if (table == kTableCount) throw Error("the schema names the table '" + row.table + "', which there is not");
        schema.fields[table].push_back(row.value);
    }
    return schema;
}

void check_field_name(std::string_view name) {
    if (name.empty() || name.size() > kFieldNameMax || !fits_schema_line(name))
        throw Error("no schema can hold a field named '" + std::string(name) + "'");
}

std::string schema_text(const Schema& schema) {
    std::string text;
    for (std::size_t t = 0; t < kTableCount; ++t) {
        text += "1, table, " + lower(kTableNames[t]) + "\r\n";
        for (const std::string& field : schema.fields[t]) {
            check_field_name(field);
            text += "1.1, field, " + field + "\r\n";
        }
    }
    return text + "1, ini\r\n1.1, separator, " + separator_line_value(schema.separator) + "\r\n";
}

std::string_view plain_name(std::string_view field) {
    const std::size_t point = field.find('.');
    return point == field.npos ? field : field.substr(point + 1);
}

std::vector<std::string> column_names(const std::vector<std::string>& fields,
                                      std::span<const std::string_view> reserved) {
    std::set<std::string> taken;
    for (const std::string_view name : reserved) taken.insert(upper(name));
    std::vector<std::string> names;
    for (const std::string& field : fields) {
        std::string plain(plain_name(field).empty() ? std::string_view(field) : plain_name(field));
        if (!is_utf8(plain)) plain = "FIELD" + std::to_string(names.size() + 1);
        std::string name = plain;
        for (int number = 2; !taken.insert(upper(name)).second; ++number) name = plain + "#" + std::to_string(number);
        names.push_back(name);
    }
    return names;
}

std::string separator_names(std::string_view separator) {
    std::string names;
    for (const char c : separator) names += (names.empty() ? "" : "+") + name_of(c);
    return names;
}

std::string separator_characters(std::string_view names) {
    std::string characters;
    while (true) {
        const std::size_t end = std::min(names.find_first_of("+&"), names.size());
        characters += characters_of(trimmed(names.substr(0, end)));
        if (end == names.size()) return characters;
        names.remove_prefix(end + 1);
    }
}

}  // namespace exchange

// SPDX-License-Identifier: MIT
#include "exchange/import_rows.h"

#include <algorithm>

#include "exchange/error.h"
#include "exchange/table_filler.h"
#include "exchange/text.h"

namespace exchange {

namespace {

constexpr std::size_t kPassedOver = static_cast<std::size_t>(-1);

bool is_reserved(const std::string& column, std::span<const std::string_view> reserved) {
    return std::find(reserved.begin(), reserved.end(), upper(column)) != reserved.end();
}

/// The fields that a table's columns tell, a NID first where they have none; the usual ones of a table without rows.
std::vector<std::string> fields_of(const Rows* rows, const std::vector<std::string>& usual,
                                   std::span<const std::string_view> reserved) {
    if (!rows) return usual;
    std::vector<std::string> fields;
    bool has_nid = false;
    for (const std::string& column : rows->columns()) {
        if (is_reserved(column, reserved)) continue;
        fields.push_back(column);
        has_nid = has_nid || upper(plain_name(column)) == "NID";
    }
    if (!has_nid) fields.insert(fields.begin(), "NID");
    return fields;
}

Schema schema_of_columns(const RowSource& source, std::span<const std::string_view> reserved) {
    if (!source.tables[kBitm]) throw Error("there is no table of items");
    Schema schema = usual_schema();
    for (std::size_t t = 0; t < kTableCount; ++t)
        schema.fields[t] = fields_of(source.tables[t].get(), schema.fields[t], reserved);
    return schema;
}

/// The field that each column fills.
std::vector<std::size_t> match(const std::vector<std::string>& columns, const std::vector<std::string>& names,
                               std::span<const std::string_view> reserved, const char* table) {
    std::vector<std::size_t> fields;
    for (const std::string& column : columns) {
        std::size_t field = kPassedOver;
        if (!is_reserved(column, reserved)) {
            const auto at = std::find_if(names.begin(), names.end(),
                                         [&](const std::string& name) { return upper(name) == upper(column); });
            field = static_cast<std::size_t>(at - names.begin());
            if (at == names.end() || std::find(fields.begin(), fields.end(), field) != fields.end())
                throw Error(std::string(table) + ": the column '" + column + "' is there twice, or is no field");
        }
        fields.push_back(field);
    }
    return fields;
}

void fill(KOfflineDb* db, std::size_t table, Rows& rows, const std::vector<std::size_t>& fields) {
    TableFiller filler(db, table);
    std::vector<std::string_view> values;
    while (rows.next(values)) {
        for (std::size_t column = 0; column < values.size(); ++column)
            if (fields[column] != kPassedOver) filler.set(fields[column], values[column]);
        filler.add();
    }
    filler.finish();
}

}  // namespace

void import_rows(RowSource source, std::span<const std::string_view> reserved, const OpenEmpty& open_empty) {
    const Schema schema = source.schema ? schema_of_rows(*source.schema) : schema_of_columns(source, reserved);
    KOfflineDb* const db = open_empty(schema);
    const Schema declared = schema_of(db);
    for (std::size_t t = 0; t < kTableCount; ++t) {
        if (!source.tables[t]) continue;
        fill(
            db, t, *source.tables[t],
            match(source.tables[t]->columns(), column_names(declared.fields[t], reserved), reserved, kTableNames[t]));
        source.tables[t].reset();
    }
    set_root(db, schema);
}

}  // namespace exchange

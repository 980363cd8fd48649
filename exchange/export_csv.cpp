// SPDX-License-Identifier: MIT
#include "exchange/csv.h"
#include "exchange/export.h"
#include "exchange/schema.h"
#include "exchange/text.h"

namespace exchange {

namespace {

void add_line(Output& output, std::initializer_list<const char*> values) {
    const char* between = "";
    for (const char* value : values) {
        output.add(between);
        add_csv(output, value);
        between = ",";
    }
    output.add("\r\n");
}

void write_schema(const Schema& schema, Output& output) {
    add_line(output, {"kind", "table", "value"});
    for (const SchemaRow& row : schema_rows(schema))
        add_line(output, {row.kind.c_str(), row.table.empty() ? nullptr : row.table.c_str(), row.value.c_str()});
    output.flush();
}

void write_heading(const std::vector<std::string>& columns, Output& output) {
    for (const std::string& column : columns) {
        if (&column != &columns.front()) output.add(',');
        add_csv(output, column.c_str());
    }
    output.add("\r\n");
}

void write_table(KOfflineTable* table, const std::vector<std::string>& columns, Output& output) {
    write_heading(columns, output);
    const std::int32_t records = KOfflineTable_GetRecsCount(table), fields = KOfflineTable_GetFldsCount(table);
    for (std::int32_t r = 0; r < records; ++r) {
        for (std::int32_t f = 0; f < fields; ++f) {
            if (f != 0) output.add(',');
            add_csv(output, KOfflineTable_GetFldValue(table, r, f));
        }
        output.add("\r\n");
        output.end_record();
    }
    output.flush();
}

}  // namespace

std::string csv_name(std::size_t table) {
    return lower(kTableNames[table]) + ".csv";
}

void export_csv(KOfflineDb* db, const MakeFile& make_file) {
    const Schema schema = schema_of(db);
    Output schema_file(make_file(kSchemaCsv));
    write_schema(schema, schema_file);
    for (std::size_t t = 0; t < kTableCount; ++t) {
        Output file(make_file(csv_name(t)));
        write_table(table_of(db, t), column_names(schema.fields[t]), file);
    }
}

}  // namespace exchange

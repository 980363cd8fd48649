// SPDX-License-Identifier: MIT
#include "exchange/export.h"
#include "exchange/json_text.h"
#include "exchange/schema.h"

namespace exchange {

namespace {

/// What stands in front of each value of a record: `"NID":`.
std::vector<std::string> keys_of(const std::vector<std::string>& fields) {
    std::vector<std::string> keys;
    for (const std::string& name : column_names(fields, kJsonReserved)) {
        Output key([&](std::string_view text) { keys.emplace_back(text); });
        add_json(key, name);
        key.add(':');
        key.flush();
    }
    return keys;
}

/// The values of a record that it has, between commas; `comma` tells whether one stands in front of the first.
void add_values(Output& output, KOfflineTable* table, std::int32_t record, const std::vector<std::string>& keys,
                bool comma) {
    for (std::size_t f = 0; f < keys.size(); ++f) {
        const char* const value = KOfflineTable_GetFldValue(table, record, static_cast<std::int32_t>(f));
        if (!value) continue;
        if (comma) output.add(',');
        comma = true;
        output.add(keys[f]);
        add_json(output, value);
    }
}

void add_fields(Output& output, const std::vector<std::string>& fields) {
    output.add('[');
    for (const std::string& field : fields) {
        if (&field != &fields.front()) output.add(',');
        add_json(output, field);
    }
    output.add(']');
}

void add_schema(Output& output, const Schema& schema) {
    output.add("\"schema\":{\"separator\":");
    add_json(output, separator_names(schema.separator));
    if (!schema.root_nid.empty()) {
        output.add(",\"root\":");
        add_json(output, schema.root_code);
        output.add(",\"root_nid\":");
        add_json(output, schema.root_nid);
    }
    output.add(",\"fields\":{");
    for (std::size_t t = 0; t < kTableCount; ++t) {
        output.add(t == 0 ? "\"" : ",\"");
        output.add(kTableNames[t]);
        output.add("\":");
        add_fields(output, schema.fields[t]);
    }
    output.add("}}");
}

void add_table(Output& output, KOfflineTable* table, const std::vector<std::string>& keys) {
    const std::int32_t records = KOfflineTable_GetRecsCount(table);
    for (std::int32_t r = 0; r < records; ++r) {
        output.add(r == 0 ? "\n{" : ",\n{");
        add_values(output, table, r, keys, false);
        output.add('}');
        output.end_record();
    }
}

void add_table_lines(Output& output, KOfflineTable* table, const std::vector<std::string>& keys,
                     const std::string& beginning) {
    const std::int32_t records = KOfflineTable_GetRecsCount(table);
    for (std::int32_t r = 0; r < records; ++r) {
        output.add(beginning);
        add_values(output, table, r, keys, true);
        output.add("}\n");
        output.end_record();
    }
}

}  // namespace

void export_json(KOfflineDb* db, Output& output) {
    const Schema schema = schema_of(db);
    output.add('{');
    add_schema(output, schema);
    for (std::size_t t = 0; t < kTableCount; ++t) {
        output.add(",\n\"");
        output.add(kTableNames[t]);
        output.add("\":[");
        add_table(output, table_of(db, t), keys_of(schema.fields[t]));
        output.add(']');
    }
    output.add("}\n");
    output.flush();
}

void export_jsonl(KOfflineDb* db, Output& output) {
    const Schema schema = schema_of(db);
    output.add('{');
    add_schema(output, schema);
    output.add("}\n");
    for (std::size_t t = 0; t < kTableCount; ++t)
        add_table_lines(output, table_of(db, t), keys_of(schema.fields[t]),
                        std::string("{\"table\":\"") + kTableNames[t] + '"');
    output.flush();
}

}  // namespace exchange

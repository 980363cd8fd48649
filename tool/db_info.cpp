// SPDX-License-Identifier: MIT
// vlt db info
#include <map>
#include <nlohmann/json.hpp>

#include "bom/file_text.h"
#include "tool/items.h"

namespace tool {

namespace {

struct InfoOptions {
    DatabaseOptions database;
    bool json = false;

    Parameters parameters() { return {database.parameters(Access::read), {"--json", &json, "one JSON object"}}; }
};

/// The separator as the schema names it.
std::string separator_name(const std::string& separator) {
    const std::map<char, std::string> names{{'\t', "TAB"}, {' ', "BLANK"}, {',', "COMMA"}, {';', "SEMICOLON"}};
    std::string text;
    for (const char c : separator) {
        const auto name = names.find(c);
        text += (text.empty() || name == names.end() ? "" : "+") +
                (name == names.end() ? std::string(1, c) : name->second);
    }
    return text;
}

struct TableInfo {
    std::string name;
    std::int32_t records;
    bool is_declared;
    std::vector<std::string> fields;
    std::vector<std::string> added;  // by the load, after the others
};

TableInfo look_at(const Database& db, const bom::Schema& schema, std::size_t number) {
    KOfflineTable* table = &db.get()->tables[number];
    TableInfo info{bom::kTableNames[number], KOfflineTable_GetRecsCount(table), schema.is_declared[number], {}, {}};
    for (std::int32_t field = 0; field < KOfflineTable_GetFldsCount(table); ++field) {
        auto& fields = field < schema.field_count[number] ? info.fields : info.added;
        fields.push_back(db.shown(field_key(table, field)));
    }
    return info;
}

struct DatabaseInfo {
    std::vector<TableInfo> tables;
    bom::Schema schema;
    std::size_t documents = 0;
    std::int64_t document_bytes = 0;

    explicit DatabaseInfo(const Database& db) {
        const DatabaseFiles files = db.files();
        schema = bom::read_schema(files.read(bom::kSchemaFile).value_or(""));
        for (std::size_t number = 0; number < 6; ++number) tables.push_back(look_at(db, schema, number));
        for (const Document& document : files.documents()) {
            ++documents;
            document_bytes += document.size;
        }
    }
};

std::string joined(const std::vector<std::string>& words, const char* before_first) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? before_first : ", ") + word;
    return text;
}

void print(const DatabaseInfo& info, const Items& items, Output& out) {
    const Database& db = items.database();
    const bom::Item root = items.graph().root();
    out.line("database   " + db.name() + (db.place().is_package ? "  (package)" : "  (folder)"));
    out.line("separator  " + db.shown(separator_name(db.get()->separator)));
    if (root != bom::kNone)
        out.line("root       " + items.label(root) + "  " + items.name(root));
    else
        out.line("root       " +
                 (info.schema.root.empty() ? "none" : db.shown(info.schema.root) + " (no such item)"));
    out.line("top items  " + std::to_string(items.graph().tops().size()));
    out.line("documents  " + std::to_string(info.documents) + ", " +
             size_text(static_cast<double>(info.document_bytes)));
    Table table({{"table"}, {"records", Table::Align::right}, {"fields"}});
    for (const TableInfo& each : info.tables) {
        table.row(
            {each.name, std::to_string(each.records),
             joined(each.fields, "") + (each.is_declared ? "" : "not declared") + joined(each.added, "; added: ")});
    }
    out.line("");
    table.print(out);
}

void print_json(const DatabaseInfo& info, const Items& items, Output& out) {
    const Database& db = items.database();
    const bom::Item root = items.graph().root();
    Json object{{"database", db.name()}, {"kind", db.place().is_package ? "package" : "folder"}};
    object["separator"] = db.shown(db.get()->separator);
    object["root"] = root == bom::kNone ? Json(nullptr) : Json(items.code(root));
    object["tops"] = items.graph().tops().size();
    object["documents"] = info.documents;
    object["document_bytes"] = info.document_bytes;
    for (const TableInfo& each : info.tables) {
        object["tables"].push_back({{"name", each.name},
                                    {"records", each.records},
                                    {"declared", each.is_declared},
                                    {"fields", each.fields},
                                    {"added", each.added}});
    }
    out.json(object);
}

int print_info(Program& program, const InfoOptions& options) {
    const Database db(options.database, Access::read);
    const Items items(db);
    const DatabaseInfo info(db);
    options.json ? print_json(info, items, program.out()) : print(info, items, program.out());
    return kDone;
}

}  // namespace

void add_db_info_verb(Program& program) {
    program.add_verb("db info", "tables, fields, records, root item and documents", print_info, R"(
        vlt db info product.vlt
        vlt db info examples/bicycle --json)");
}

}  // namespace tool

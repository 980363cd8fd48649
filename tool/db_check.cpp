// SPDX-License-Identifier: MIT
// vlt db check
#include <nlohmann/json.hpp>
#include <optional>

#include "bom/check.h"
#include "tool/failure.h"
#include "tool/items.h"

namespace tool {

namespace {

struct CheckOptions {
    DatabaseOptions database;
    bool json = false;

    Parameters parameters() { return {database.parameters(Access::read), json_option(json)}; }
};

class FindingPrinter {
public:
    FindingPrinter(Names names, Output& out, bool json) : names_(std::move(names)), out_(out), json_(json) {}

    void print(const bom::Finding& finding) {
        if (json_) return print_json(finding);
        std::string place = names_.shown(finding.file);
        if (finding.line > 0) place += ":" + std::to_string(finding.line);
        if (!place.empty()) place += ": ";
        std::string text = names_.shown(finding.text);
        if (finding.text.find(finding.before) == std::string::npos) {
            text += " ('" + names_.shown(finding.before) + "')";
        }
        out_.line(place + out_.coloured(finding.kind, Colour::yellow) + ": " + text);
    }

private:
    void print_json(const bom::Finding& finding) {
        out_.json({{"kind", finding.kind},
                   {"code", names_.shown(finding.code)},
                   {"field", names_.shown(finding.field)},
                   {"before", names_.shown(finding.before)},
                   {"after", names_.shown(finding.after)},
                   {"text", names_.shown(finding.text)},
                   {"file", names_.shown(finding.file)},
                   {"line", finding.line > 0 ? Json(finding.line) : Json(nullptr)}});
    }

    Names names_;
    Output& out_;
    bool json_;
};

/// Looks at the files of a database that loads.
bom::Findings check_loaded(const Database& db) {
    bom::Findings findings;
    const DatabaseFiles files = db.files();
    const std::string schema = files.read(bom::kSchemaFile).value_or("");
    bom::check_schema(bom::kSchemaFile, schema, findings);
    bom::RecordLines lines;
    for (std::size_t table = 0; table < lines.size(); ++table) {
        check_interrupt();
        const auto text = files.read(bom::kTableFiles[table]);
        const bom::DataForm form{db.get()->separator, KOfflineTable_GetFldsCount(&db.get()->tables[table])};
        if (text) lines[table] = bom::check_data(bom::kTableFiles[table], *text, form, findings);
    }
    const bom::Graph graph(db.get());
    bom::check_root(db.get(), bom::read_schema(schema), findings);
    bom::check_tables(db.get(), graph, lines, findings);
    check_interrupt();
    bom::check_structure(db.get(), graph, lines, findings);
    std::vector<std::string> stored;
    for (const Document& document : files.documents()) stored.push_back(document.name);
    bom::check_documents(db.get(), stored, lines, findings);
    return findings;
}

/// Looks at the files of one that does not: what its schema says may be why.
bom::Findings check_unloaded(const DatabaseOptions& options, const Failure& failure) {
    const DatabaseFiles files(options);
    const auto schema = files.read(bom::kSchemaFile);
    if (!schema) throw failure;
    bom::Findings findings;
    bom::check_schema(bom::kSchemaFile, *schema, findings);
    bom::Finding load{"load", failure.what()};
    findings.push_back(load);
    return findings;
}

bom::Findings check(const DatabaseOptions& options) {
    std::optional<Failure> failure;
    try {
        return check_loaded(Database(options, Access::read));
    } catch (const DatabaseError& error) {
        failure = error;
    }
    return check_unloaded(options, *failure);
}

int print_findings(Program& program, const CheckOptions& options) {
    const bom::Findings findings = check(options.database);
    FindingPrinter printer(Names(false, options.database.encoding), program.out(), options.json);
    for (const bom::Finding& finding : findings) printer.print(finding);
    return findings.empty() ? kDone : kFindings;
}

}  // namespace

void add_db_check_verb(Program& program) {
    program.add_verb("db check", "what is wrong with a database, with file and line", print_findings, R"(
        vlt db check product.vlt
        vlt db check examples/bicycle --json | jq .kind)");
}

}  // namespace tool

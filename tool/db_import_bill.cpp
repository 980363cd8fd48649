// SPDX-License-Identifier: MIT
// vlt db import --bom
#include <algorithm>
#include <nlohmann/json.hpp>

#include "exchange/error.h"
#include "exchange/flat_bom.h"
#include "tool/db_import.h"
#include "tool/names.h"

namespace tool {

namespace {

std::optional<exchange::Notation> notation_of(const std::string& name) {
    if (name == "level") return exchange::Notation::level;
    if (name == "dotted") return exchange::Notation::dotted;
    if (name == "parent") return exchange::Notation::parent;
    return {};
}

const char* notation_text(exchange::Notation notation) {
    static constexpr const char* texts[] = {"levels", "dotted item numbers", "parents"};
    return texts[static_cast<std::size_t>(notation)];
}

std::string counted(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

exchange::FlatOptions flat_options(const ImportOptions& options) {
    exchange::FlatOptions flat;
    flat.notation = notation_of(options.notation);
    flat.delimiter = options.delimiter == "comma" ? ',' : options.delimiter == "semicolon" ? ';' : '\0';
    if (options.delimiter == "tab") flat.delimiter = '\t';
    if (!options.decimal.empty()) flat.decimal = options.decimal == "comma" ? ',' : '.';
    flat.top = options.top;
    flat.line_headings = options.line_headings;
    for (const std::string& meaning : options.meanings) {
        const std::size_t equals = meaning.find('=');
        if (equals == meaning.npos) throw Failure(meaning, "not understood; write MEANING=HEADING");
        flat.meanings[meaning.substr(0, equals)] = meaning.substr(equals + 1);
    }
    return flat;
}

std::string text_of_source(const ImportOptions& options) {
    std::string bytes = whole_file(options.source);
    if (options.source_encoding.empty()) return bytes;
    const CodePage page(options.source_encoding);
    std::string text;
    for (std::string_view rest = bytes; !rest.empty();) {
        const std::size_t length = page.decode(rest, text);
        if (length == 0) throw Failure(options.source, "is not text in " + options.source_encoding);
        rest.remove_prefix(length);
    }
    return text;
}

void print_findings(const exchange::FlatBom& bom, const ImportOptions& options, Output& out) {
    for (const exchange::Finding& finding : bom.findings) {
        if (options.json) {
            out.json({{"line", finding.line},
                      {"kind", finding.kind},
                      {"severity", finding.error ? "error" : "note"},
                      {"code", finding.code},
                      {"field", finding.field},
                      {"before", finding.before},
                      {"after", finding.after},
                      {"text", finding.text}});
        } else {
            const std::string severity =
                finding.error ? out.coloured("error", Colour::red) : out.coloured("note", Colour::yellow);
            out.line(options.source + ":" + std::to_string(finding.line) + ": " + severity + ": " +
                     (finding.code.empty() ? "" : shown_text(finding.code) + " ") + shown_text(finding.text));
        }
    }
}

void print_summary(const exchange::FlatBom& bom, const ImportOptions& options, Output& out) {
    if (options.json) return;
    const auto errors = static_cast<std::size_t>(
        std::count_if(bom.findings.begin(), bom.findings.end(), [](const auto& finding) { return finding.error; }));
    out.line(counted(bom.items.size(), "item") + ", " + counted(bom.lines.size(), "line") + ", " +
             std::to_string(bom.tops.size()) + " at the top, told by " + notation_text(bom.notation) + "; " +
             counted(errors, "error") + ", " + counted(bom.findings.size() - errors, "note"));
    for (const auto& [table, fields] : {std::pair("items", bom.item_fields), std::pair("lines", bom.line_fields)}) {
        std::string names;
        for (const std::string& name : fields) names += (names.empty() ? "" : ", ") + shown_text(name);
        if (!names.empty()) out.line(std::string("further fields of ") + table + ": " + names);
    }
}

exchange::FlatBom read_bill(const ImportOptions& options) {
    try {
        return exchange::read_flat_bom(text_of_source(options), flat_options(options));
    } catch (const exchange::Error& error) {
        throw Failure(options.source, error.what());
    }
}

}  // namespace

int import_bill(Program& program, const ImportOptions& options) {
    if (options.make_template) {
        program.out().bytes(
            exchange::flat_template(notation_of(options.notation).value_or(exchange::Notation::level)));
        return kDone;
    }
    if (options.source.empty() || (options.database.empty() && !options.check))
        throw Failure("db import --bom", "needs a SOURCE and a DB; `vlt help db import` tells how it is used");
    const exchange::FlatBom bom = read_bill(options);
    print_findings(bom, options, program.out());
    print_summary(bom, options, program.out());
    const int status = bom.findings.empty() ? kDone : kFindings;
    if (options.check) return status;
    if (bom.items.empty()) throw Failure(options.source, "has no lines");
    if (bom.has_errors() && !options.accept)
        throw Failure(options.source, "nothing was imported; mend the errors, or give --accept");
    make_database(options,
                  [&](const exchange::OpenEmpty& open_empty) { exchange::import_flat_bom(bom, open_empty); });
    return status;
}

}  // namespace tool

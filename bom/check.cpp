// SPDX-License-Identifier: MIT
#include "bom/check.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <utility>

#include "bom/cycles.h"
#include "bom/index.h"
#include "bom/product.h"
#include "bom/text.h"

namespace bom {

namespace {

enum TableNumber { kItems, kLines, kDrawings, kDrawingLinks, kPlans, kPlanLinks };

std::size_t at(std::int32_t number) {
    return static_cast<std::size_t>(number);
}

class Checker {
public:
    Checker(KOfflineDb* db, const RecordLines& lines, Findings& findings)
        : db_(db), lines_(lines), findings_(findings) {}

    const char* value(int table, std::int32_t rec, const char* field) const {
        return value(table, rec, KOfflineTable_GetFldIndex(&db_->tables[table], field));
    }
    const char* value(int table, std::int32_t rec, std::int32_t field) const {
        const char* text = KOfflineTable_GetFldValue(&db_->tables[table], rec, field);
        return text ? text : "";
    }
    std::int32_t records(int table) const { return KOfflineTable_GetRecsCount(&db_->tables[table]); }
    std::string code(Item item) const { return item == kNone ? "" : value(kItems, item, "CCODE"); }

    /// The code, or the NID of an item without one.
    std::string label(Item item) const {
        const std::string text = code(item);
        return text.empty() ? std::string("NID ") + value(kItems, item, "NID") : text;
    }

    /// A finding about a record, yet without code, field and values.
    Finding& report(int table, std::int32_t rec, const char* kind, std::string text) {
        const auto& lines = lines_[at(table)];
        const std::uint32_t line = at(rec) < lines.size() ? lines[at(rec)] : 0;
        findings_.push_back({kind, std::move(text), kTableFiles[at(table)], line, "", "", "", ""});
        return findings_.back();
    }

    void check_double_nids(int table) {
        const std::int32_t field = KOfflineTable_GetFldIndex(&db_->tables[table], "NID");
        if (has_ascending_nids(&db_->tables[table], field)) return;
        const NidMap nids(&db_->tables[table], field);
        for (const std::int32_t rec : nids.doubles()) {
            const std::string nid = value(table, rec, field);
            Finding& finding = report(table, rec, "double-nid",
                                      "the NID " + nid + " occurs twice" + also_in(table, nids.find(nid.c_str())));
            if (table == kItems) finding.code = code(rec);
            finding.field = "NID", finding.before = nid;
        }
    }

    void check_double_codes(int table) {
        const std::int32_t field = KOfflineTable_GetFldIndex(&db_->tables[table], "CCODE");
        for (const auto& [rec, first] : equal_values(table, field)) {
            const std::string text = value(table, rec, field);
            Finding& finding =
                report(table, rec, "double-code", "the code " + text + " occurs twice" + also_in(table, first));
            finding.code = text, finding.field = "CCODE", finding.before = text;
        }
    }

    void check_lines(const Graph& graph) {
        for (Line line = 0; line < graph.lines(); ++line) {
            const Item parent = graph.parent(line), child = graph.child(line);
            if (parent == kNone) report_link(kLines, line, "NPID", "item").code = code(child);
            if (child == kNone) report_link(kLines, line, "NCID", "item").code = code(parent);
        }
    }

    void check_links(int table, const char* field, int target, const char* what) {
        const std::int32_t link = KOfflineTable_GetFldIndex(&db_->tables[table], field);
        if (records(table) == 0) return;
        const NidMap nids(&db_->tables[target], KOfflineTable_GetFldIndex(&db_->tables[target], "NID"));
        for (std::int32_t rec = 0; rec < records(table); ++rec) {
            if (nids.find(value(table, rec, link)) == kNone) report_link(table, rec, field, what);
        }
    }

    void check_quantities(const Graph& graph) {
        for (const Line line : graph.without_quantity()) {
            const std::string text = value(kLines, line, "FCOUNT");
            Finding& finding =
                report(kLines, line, "quantity",
                       text.empty() ? "the line has no quantity" : "the quantity is no decimal number");
            finding.code = code(graph.child(line)), finding.field = "FCOUNT", finding.before = text;
        }
    }

    /// A separator that holds a comma or a tab cannot stand in a written value.
    void check_separator() {
        const std::string separator = db_->separator;
        if (separator.find_first_of(",\t") != separator.npos) return;
        for (int table = 0; table < 6; ++table) {
            for (std::int32_t rec = 0; rec < records(table); ++rec) check_written(table, rec, separator);
        }
    }

    void check_written(int table, std::int32_t rec, const std::string& separator) {
        char name[33];
        for (std::int32_t field = 0; KOfflineTable_GetFldName(&db_->tables[table], field, name); ++field) {
            const char* text = value(table, rec, field);
            std::string written(2 * std::strlen(text) + 1, '\0');
            KOfflineDb_StrSwap(text, written.data(), static_cast<std::int32_t>(written.size()), 1);
            written.resize(std::strlen(written.c_str()));
            if ((written + separator).find(separator) == written.size()) continue;
            Finding& finding =
                report(table, rec, "separator-in-value", "the value holds the separator; a save would break it");
            finding.field = name, finding.before = text, finding.after = written.substr(0, written.find(separator));
        }
    }

    /// What no item without a parent leads to without meeting a cycle lies on or below one.
    void check_cycles(const Graph& graph, const Product& product) {
        std::vector<char> among(at(graph.items()), 1);
        for (const Item item : product.top_down()) among[at(item)] = 0;
        if (product.top_down().size() == among.size()) return;
        const Cycles cycles = find_cycles(graph, among);
        for (const std::vector<Line>& path : cycles.paths) {
            std::string text = label(graph.parent(path[0]));
            for (const Line line : path) text += " > " + label(graph.child(line));
            Finding& finding = report(kLines, path.back(), "cycle", "an item goes into itself: " + text);
            finding.code = code(graph.parent(path[0]));
        }
        for (const Cycles::Tangle& tangle : cycles.tangles) {
            Finding& finding =
                report(kItems, tangle.items[0], "cycle",
                       std::to_string(tangle.items.size()) + " items all go into each other; " +
                           std::to_string(tangle.lines_left) + " lines among them lie on further cycles");
            finding.code = code(tangle.items[0]);
        }
    }

    void check_reach(const Graph& graph, const Product& product) {
        for (Item item = 0; item < graph.items(); ++item) {
            if (product.holds(item)) continue;
            const char* text = graph.root() == kNone ? "no item without a parent leads to the item"
                                                     : "the root item does not lead to the item";
            Finding& finding = report(kItems, item, "unreached", text);
            finding.code = code(item);
        }
    }

    void check_named_documents(int table, const std::set<std::string>& stored, std::set<std::string>& named) {
        const std::int32_t field = KOfflineTable_GetFldIndex(&db_->tables[table], "CFILE");
        for (std::int32_t rec = 0; rec < records(table); ++rec) {
            const std::string document = document_name(value(table, rec, field));
            if (document.empty()) continue;
            named.insert(folded(document.c_str()));
            if (stored.contains(folded(document.c_str()))) continue;
            Finding& finding = report(table, rec, "missing-document", "the document " + document + " is not stored");
            finding.code = value(table, rec, "CCODE"), finding.field = "CFILE";
            finding.before = value(table, rec, field);
        }
    }

    void report_unnamed(const std::vector<std::string>& stored, const std::set<std::string>& named) {
        for (const std::string& document : stored) {
            if (named.contains(folded(document.c_str()))) continue;
            findings_.push_back({"unnamed-document", "no drawing or process plan names the document", document});
        }
    }

private:
    /// Records whose value an earlier one has, and the first that has it, from an index, where equal values stand
    /// side by side.
    std::vector<std::pair<std::int32_t, std::int32_t>> equal_values(int table, std::int32_t field) const {
        const std::span<const std::int32_t> sorted = sorted_records(&db_->tables[table], field);
        std::vector<std::uint32_t> hashes;  // in record order, because values are read slowly in any other
        for (std::int32_t rec = 0; rec < records(table); ++rec)
            hashes.push_back(folded_hash(value(table, rec, field)));
        const auto are_equal = [&](std::int32_t a, std::int32_t b) {
            return hashes[at(a)] == hashes[at(b)] &&
                   compare_folded(value(table, a, field), value(table, b, field)) == 0;
        };
        std::vector<std::pair<std::int32_t, std::int32_t>> equal;
        for (std::size_t begin = 0, end = 0; begin < sorted.size(); begin = end) {
            while (++end < sorted.size() && are_equal(sorted[begin], sorted[end])) {
            }
            if (end - begin == 1 || !*value(table, sorted[begin], field)) continue;
            const auto run = sorted.subspan(begin, end - begin);
            const std::int32_t first = *std::min_element(run.begin(), run.end());
            for (const std::int32_t rec : run) {
                if (rec != first) equal.emplace_back(rec, first);
            }
        }
        std::sort(equal.begin(), equal.end());
        return equal;
    }

    Finding& report_link(int table, std::int32_t rec, const char* field, const char* what) {
        const std::string nid = value(table, rec, field);
        Finding& finding = report(table, rec, "dangling-link",
                                  nid.empty() ? std::string(field) + " names no " + what
                                              : std::string(field) + " names the " + what + " with the NID " + nid +
                                                    ", which is not there");
        finding.field = field, finding.before = nid;
        return finding;
    }

    std::string also_in(int table, std::int32_t rec) const {
        const auto& lines = lines_[at(table)];
        return at(rec) < lines.size() ? "; line " + std::to_string(lines[at(rec)]) + " has it first" : "";
    }

    KOfflineDb* db_;
    const RecordLines& lines_;
    Findings& findings_;
};

}  // namespace

std::string document_name(const std::string& path) {
    return path.substr(path.find_last_of("/\\") + 1);
}

void check_root(KOfflineDb* db, const Schema& schema, Findings& findings) {
    if (schema.root.empty() || db->root_nid > 0) return;
    findings.push_back({"dangling-link", "the root line names an item that is not there", kSchemaFile, 0, schema.root,
                        "CCODE", schema.root, ""});
}

void check_tables(KOfflineDb* db, const Graph& graph, const RecordLines& lines, Findings& findings) {
    Checker checker(db, lines, findings);
    for (int table = 0; table < 6; ++table) checker.check_double_nids(table);
    for (const int table : {kItems, kDrawings, kPlans}) checker.check_double_codes(table);
    checker.check_lines(graph);
    checker.check_links(kDrawingLinks, "NPID", kItems, "item");
    checker.check_links(kDrawingLinks, "NCID", kDrawings, "drawing");
    checker.check_links(kPlanLinks, "NPID", kItems, "item");
    checker.check_links(kPlanLinks, "NCID", kPlans, "process plan");
    checker.check_quantities(graph);
    checker.check_separator();
}

void check_structure(KOfflineDb* db, const Graph& graph, const RecordLines& lines, Findings& findings) {
    Checker checker(db, lines, findings);
    const Product all(graph, graph.without_parents());
    checker.check_cycles(graph, all);
    if (graph.root() == kNone) return checker.check_reach(graph, all);
    checker.check_reach(graph, Product(graph, graph.tops()));
}

void check_documents(KOfflineDb* db, const std::vector<std::string>& stored, const RecordLines& lines,
                     Findings& findings) {
    Checker checker(db, lines, findings);
    std::set<std::string> there, named;
    for (const std::string& document : stored) there.insert(folded(document.c_str()));
    checker.check_named_documents(kDrawings, there, named);
    checker.check_named_documents(kPlans, there, named);
    checker.report_unnamed(stored, named);
}

}  // namespace bom

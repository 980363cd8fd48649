// SPDX-License-Identifier: MIT
// vlt bom diff
#include <nlohmann/json.hpp>

#include "bom/diff.h"
#include "bom/product.h"
#include "tool/items.h"

namespace tool {

namespace {

struct DiffOptions {
    DatabaseOptions database;
    std::string before, after, code, by = "CCODE";
    bool json = false;

    Parameters parameters() {
        return {{"DB1", &before, "the database before the change", {.required = true}},
                {"DB2", &after, "the database after it", {.required = true}},
                {"CODE", &code, "compare what lies at and below this item only"},
                database.options(Access::read),
                {"--by", &by, "what makes two items the same: CCODE or NID", {.choices = {"CCODE", "NID"}}},
                json_option(json)};
    }
};

using Kind = bom::Change::Kind;

class ChangePrinter {
public:
    ChangePrinter(const Items& before, const Items& after, Output& out) : before_(before), after_(after), out_(out) {}

    void print(const bom::Change& change) {
        const std::string text = text_of(change);
        out_.line(out_.coloured(text, text[0] == '+'   ? Colour::green
                                      : text[0] == '-' ? Colour::red
                                                       : Colour::yellow));
    }

    void print_json(const bom::Change& change) {
        Json object{{"kind", kind_name(change.kind)}};
        const bool was_there = change.before != bom::kNone;
        object["code"] = was_there ? before_.code(change.before) : after_.code(change.after);
        if (is_line(change)) object["child"] = child(change);
        object["field"] = field(change);
        object["before"] =
            change.kind == Kind::kItemAdded || change.kind == Kind::kLineAdded ? Json() : Json(before(change));
        object["after"] =
            change.kind == Kind::kItemRemoved || change.kind == Kind::kLineRemoved ? Json() : Json(after(change));
        object["text"] = text_of(change);
        out_.json(object);
    }

private:
    static const char* kind_name(Kind kind) {
        static constexpr const char* kNames[] = {"item-removed",      "item-added", "field-changed",
                                                 "line-removed",      "line-added", "quantity-changed",
                                                 "line-field-changed"};
        static_assert(static_cast<std::size_t>(Kind::kLineFieldChanged) + 1 == std::size(kNames));
        return kNames[static_cast<std::size_t>(kind)];
    }

    static bool is_line(const bom::Change& change) {
        return change.line_before != bom::kNone || change.line_after != bom::kNone;
    }

    std::string text_of(const bom::Change& change) const {
        switch (change.kind) {
            case Kind::kItemRemoved:
                return "- item      " + item(change);
            case Kind::kItemAdded:
                return "+ item      " + item(change);
            case Kind::kFieldChanged:
                return "~ field     " + item(change) + "  " + field(change) + ": " + values(change);
            case Kind::kLineRemoved:
                return "- line      " + line(change) + "  " + before(change);
            case Kind::kLineAdded:
                return "+ line      " + line(change) + "  " + after(change);
            case Kind::kQuantityChanged:
                return "~ quantity  " + line(change) + "  " + values(change);
            case Kind::kLineFieldChanged:
                return "~ field     " + line(change) + "  " + field(change) + ": " + values(change);
        }
        return "";
    }

    std::string item(const bom::Change& change) const {
        if (change.before == bom::kNone) return after_.label(change.after) + "  " + after_.name(change.after);
        if (change.kind == Kind::kFieldChanged) return before_.label(change.before);
        return before_.label(change.before) + "  " + before_.name(change.before);
    }

    std::string child(const bom::Change& change) const {
        return change.line_before != bom::kNone ? before_.child_label(change.line_before)
                                                : after_.child_label(change.line_after);
    }

    std::string line(const bom::Change& change) const {
        return (change.before != bom::kNone ? before_.label(change.before) : after_.label(change.after)) + " > " +
               child(change);
    }

    std::string values(const bom::Change& change) const {
        return "'" + before(change) + "' -> '" + after(change) + "'";
    }

    std::string before(const bom::Change& change) const {
        if (change.kind == Kind::kLineRemoved || change.kind == Kind::kQuantityChanged) {
            return before_.quantity_text(change.line_before);
        }
        if (change.kind == Kind::kItemRemoved) return before_.name(change.before);
        return value(before_, change, change.before, change.line_before, change.field_before);
    }

    std::string after(const bom::Change& change) const {
        if (change.kind == Kind::kLineAdded || change.kind == Kind::kQuantityChanged) {
            return after_.quantity_text(change.line_after);
        }
        if (change.kind == Kind::kItemAdded) return after_.name(change.after);
        return value(after_, change, change.after, change.line_after, change.field_after);
    }

    static KOfflineTable* table(const Items& side, const bom::Change& change) {
        KOfflineDb* db = side.database().get();
        return change.kind == Kind::kFieldChanged ? KOfflineDb_GetTable_BITM(db) : KOfflineDb_GetTable_BBOM(db);
    }

    static std::string value(const Items& side, const bom::Change& change, bom::Item item, bom::Line line,
                             std::int32_t field) {
        const std::int32_t rec = change.kind == Kind::kFieldChanged ? item : line;
        return side.database().shown(side.database().value(table(side, change), rec, field));
    }

    std::string field(const bom::Change& change) const {
        if (change.kind == Kind::kQuantityChanged) return "FCOUNT";
        if (change.field_before >= 0) return field_key(table(before_, change), change.field_before);
        if (change.field_after >= 0) return field_key(table(after_, change), change.field_after);
        return "";
    }

    const Items &before_, &after_;
    Output& out_;
};

/// The items at and below the one with the code; all for an empty one.
std::vector<char> items_below(const Items& items, const std::string& code) {
    if (code.empty()) return {};
    std::vector<char> below(static_cast<std::size_t>(items.graph().items()));
    const bom::Product product(items.graph(), items.tops(code));
    for (const bom::Item item : product.items()) below[static_cast<std::size_t>(item)] = 1;
    return below;
}

int print_changes(Program& program, const DiffOptions& options) {
    const Database before(options.database.with_path(options.before), Access::read);
    const Database after(options.database.with_path(options.after), Access::read);
    const Items items_before(before), items_after(after);
    const auto changes = bom::compare({before.get(), &items_before.graph(), items_below(items_before, options.code)},
                                      {after.get(), &items_after.graph(), items_below(items_after, options.code)},
                                      options.by == "NID" ? bom::MatchBy::kNid : bom::MatchBy::kCode);
    ChangePrinter printer(items_before, items_after, program.out());
    for (const bom::Change& change : changes) options.json ? printer.print_json(change) : printer.print(change);
    return changes.empty() ? kDone : kFindings;
}

}  // namespace

void add_bom_diff_verb(Program& program) {
    program.add_verb("bom diff", "what changed from one database to another", print_changes, R"(
        vlt bom diff released.vlt draft.vlt
        vlt bom diff old new WH-200 --json)");
}

}  // namespace tool

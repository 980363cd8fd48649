// SPDX-License-Identifier: MIT
// vlt bom where-used
#include <algorithm>
#include <nlohmann/json.hpp>

#include "bom/walk.h"
#include "tool/failure.h"
#include "tool/items.h"

namespace tool {

namespace {

struct WhereUsedOptions {
    ProductOptions product;
    bool all = false;
    std::int32_t limit = -1;

    Parameters parameters() {
        return {product.parameters(ProductOptions::CodeIs::required),
                {"--all", &all,
                 "every path from an item without a parent down to the item; where assemblies share parts on many "
                 "levels, there may be more than can be listed"},
                {"--limit", &limit, "show so many at most, tell if there are more, and end with status 1"}};
    }
};

class UsePrinter {
public:
    UsePrinter(const Items& items, bom::Item item, const WhereUsedOptions& options, Output& out)
        : items_(items), item_(item), out_(out), json_(options.product.json), limit_(options.limit) {}

    void print_direct() {
        if (!json_) out_.line(out_.coloured("quantity  code  name", Colour::bold));
        for (const bom::Line line : items_.graph().parents(item_)) {
            if (!take()) return;
            const bom::Item parent = items_.graph().parent(line);
            const std::string label = parent == bom::kNone ? "(no such item)" : items_.label(parent);
            if (json_) {
                print_json(parent, items_.quantity_text(line), {label, items_.label(item_)}, false);
                continue;
            }
            print(items_.quantity_text(line), label + "  " + items_.name(parent));
        }
    }

    /// Returns whether every path leads to a top.
    bool print_paths() {
        if (!json_) out_.line(out_.coloured("  in all  path from the top", Colour::bold));
        bom::UpWalk walk(items_.graph(), item_);
        bool all_end = true;
        try {
            while (walk.next() && take()) {
                check_interrupt();
                print_path(walk);
                all_end = all_end && !walk.is_cycle() && !walk.is_dangling();
            }
        } catch (const bom::Overflow&) {
            throw Failure(items_.database().name(),
                          "the quantity along " + text_of(path(walk)) + " has more than 38 digits");
        }
        return all_end;
    }

    /// Tells whether the limit left anything out; returns whether it did.
    bool report_cut() {
        if (!is_cut_) return false;
        if (json_) {
            out_.json({{"cut", true}, {"shown", shown_}});
        } else {
            warn(items_.database().name() + ": the first " + std::to_string(shown_) + " are shown; there are more");
        }
        return true;
    }

private:
    /// Whether the limit lets one more be shown.
    bool take() {
        is_cut_ = shown_ == limit_;
        if (!is_cut_) ++shown_;
        return !is_cut_;
    }

    void print_path(const bom::UpWalk& walk) {
        const std::vector<std::string> labels = path(walk);
        if (json_) {
            return print_json(items_.graph().parent(walk.lines().back()), walk.total().text(), labels,
                              walk.is_cycle());
        }
        print(walk.total().text(), text_of(labels) + (walk.is_cycle() ? "  (cycle)" : ""));
    }

    /// From the top down to the item.
    std::vector<std::string> path(const bom::UpWalk& walk) const {
        std::vector<std::string> labels;
        const bom::Item top = items_.graph().parent(walk.lines().back());
        labels.push_back(top == bom::kNone ? "(no such item)" : items_.label(top));
        for (auto line = walk.lines().rbegin(); line != walk.lines().rend(); ++line) {
            labels.push_back(items_.child_label(*line));
        }
        return labels;
    }

    static std::string text_of(const std::vector<std::string>& labels) {
        std::string text;
        for (const std::string& label : labels) text += (text.empty() ? "" : " > ") + label;
        return text;
    }

    void print(const std::string& quantity, const std::string& text) {
        line_.clear();
        append_right(line_, quantity, 8);
        out_.line(line_.append(2, ' ').append(text));
    }

    void print_json(bom::Item parent, const std::string& quantity, const std::vector<std::string>& path,
                    bool is_cycle) {
        Json object;
        items_.put_item(object, parent);
        object["quantity"] = quantity;
        object["path"] = path;
        if (is_cycle) object["cycle"] = true;
        out_.json(object);
    }

    const Items& items_;
    bom::Item item_;
    Output& out_;
    bool json_;
    std::int32_t limit_, shown_ = 0;
    bool is_cut_ = false;
    std::string line_;
};

int print_uses(Program& program, const WhereUsedOptions& options) {
    const Database db(options.product.database, Access::read);
    const Items items(db);
    const bom::Item item = items.find(options.product.code);
    UsePrinter printer(items, item, options, program.out());
    bool complete = true;
    if (options.all)
        complete = printer.print_paths();
    else
        printer.print_direct();
    return printer.report_cut() || !complete ? kFindings : kDone;
}

}  // namespace

void add_bom_where_used_verb(Program& program) {
    program.add_verb("bom where-used", "what an item goes into", print_uses, R"(
        vlt bom where-used product.vlt CM-900
        vlt bom where-used examples/bicycle CM-900 --all --limit 1000)");
}

}  // namespace tool

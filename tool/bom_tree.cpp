// SPDX-License-Identifier: MIT
// vlt bom tree
#include <algorithm>
#include <nlohmann/json.hpp>

#include "bom/links.h"
#include "bom/walk.h"
#include "tool/failure.h"
#include "tool/items.h"

namespace tool {

namespace {

using Follow = bom::TreeWalk::Follow;

struct TreeOptions {
    ProductOptions product;
    std::int32_t depth = std::numeric_limits<std::int32_t>::max();
    bool all = false;

    Parameters parameters() {
        return {product.parameters(ProductOptions::CodeIs::optional),
                {"--depth", &depth, "levels below the beginning"},
                {"--all", &all, "print what an assembly consists of wherever it occurs, not only first"}};
    }
};

constexpr std::size_t kDrawnLevels = 40;  // deeper ones would be drawn as wide as they are deep

/// Prints the rows of a walk.
class TreePrinter {
public:
    TreePrinter(const Items& items, const bom::TreeWalk& walk, Output& out)
        : items_(items),
          walk_(walk),
          out_(out),
          drawings_(bom::ItemLinks::drawings(items.database().get())),
          drawing_codes_(KOfflineDb_GetFld_BDWG_CCODE(items.database().get())) {}

    void print_heading() { out_.line(out_.coloured("  in one    in all", Colour::bold)); }

    void print() {
        const bom::TreeWalk::Row& row = walk_.row();
        line_.clear();
        append_right(line_, row.quantity.text(), 8);
        append_right(line_.append(2, ' '), row.total.text(), 8);
        line_ += "  ";
        draw_branches(row.level);
        line_ += row.line == bom::kNone ? items_.label(row.item) : items_.child_label(row.line);
        if (row.item != bom::kNone) line_ += "  " + items_.name(row.item);
        for (const std::string& drawing : drawings_of(row.item)) line_ += "  [" + drawing + "]";
        line_ += remark(row);
        out_.line(line_);
    }

    void print_json() {
        const bom::TreeWalk::Row& row = walk_.row();
        Json object{{"level", row.level}};
        items_.put_item(object, row.item);
        object["quantity"] = row.quantity.text();
        object["total"] = row.total.text();
        if (row.item == bom::kNone) object["missing"] = items_.child_label(row.line);
        if (const auto drawings = drawings_of(row.item); !drawings.empty()) object["drawings"] = drawings;
        if (row.follow == Follow::kAgain) object["again"] = true;
        if (row.follow == Follow::kDepth) object["more"] = items_.graph().children(row.item).size();
        if (row.follow == Follow::kCycle) object["cycle"] = cycle();
        out_.json(object);
    }

private:
    void draw_branches(std::int32_t level) {
        const auto depth = static_cast<std::size_t>(level);
        last_.resize(depth + 1);
        last_[depth] = walk_.is_last();
        if (depth > kDrawnLevels) {
            line_ += "level " + std::to_string(level) + ": ";
            return;
        }
        for (std::size_t i = 1; i < depth; ++i) line_ += last_[i] ? "   " : "│  ";
        if (depth > 0) line_ += last_[depth] ? "└─ " : "├─ ";
    }

    std::vector<std::string> drawings_of(bom::Item item) const {
        std::vector<std::string> codes;
        if (item == bom::kNone) return codes;
        const Database& db = items_.database();
        for (const std::int32_t drawing : drawings_.of(item)) {
            codes.push_back(db.shown(db.value(KOfflineDb_GetTable_BDWG(db.get()), drawing, drawing_codes_)));
        }
        return codes;
    }

    std::vector<std::string> cycle() const {
        const std::vector<bom::Item> path = walk_.path();
        std::vector<std::string> labels;
        for (auto item = std::find(path.begin(), path.end(), path.back()); item != path.end(); ++item) {
            labels.push_back(items_.label(*item));
        }
        return labels;
    }

    std::string remark(const bom::TreeWalk::Row& row) const {
        if (row.follow == Follow::kAgain) return "  (see above)";
        if (row.follow == Follow::kDepth) {
            return "  (" + std::to_string(items_.graph().children(row.item).size()) + " below)";
        }
        if (row.follow != Follow::kCycle) return "";
        std::string text;
        for (const std::string& label : cycle()) text += (text.empty() ? "" : " > ") + label;
        return out_.coloured("  (cycle: " + text + ")", Colour::red);
    }

    const Items& items_;
    const bom::TreeWalk& walk_;
    Output& out_;
    bom::ItemLinks drawings_;
    std::int32_t drawing_codes_;
    std::vector<char> last_;  // by level: whether the latest row there is the last of its parent
    std::string line_;
};

int print_tree(Program& program, const TreeOptions& options) {
    const Database db(options.product.database, Access::read);
    const Items items(db);
    bom::TreeWalk walk(items.graph(), items.tops(options.product.code), {options.depth, options.all});
    TreePrinter printer(items, walk, program.out());
    if (!options.product.json) printer.print_heading();
    bool complete = true;
    try {
        while (walk.next()) {
            check_interrupt();
            options.product.json ? printer.print_json() : printer.print();
            complete = complete && walk.row().follow != Follow::kCycle && walk.row().item != bom::kNone;
        }
    } catch (const bom::Overflow&) {
        throw Failure(db.name(), "the total of " + items.child_label(walk.row().line) + " has more than 38 digits");
    }
    return complete ? kDone : kFindings;
}

}  // namespace

void add_bom_tree_verb(Program& program) {
    program.add_verb("bom tree", "what a product consists of, indented", print_tree, R"(
        vlt bom tree product.vlt
        vlt bom tree examples/bicycle WH-200 --depth 1)");
}

}  // namespace tool

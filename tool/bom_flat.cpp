// SPDX-License-Identifier: MIT
// vlt bom flat, vlt bom sum
#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>

#include "bom/product.h"
#include "tool/failure.h"
#include "tool/items.h"

namespace tool {

namespace {

[[noreturn]] void fail(const Items& items, const bom::ItemOverflow& error, const char* what) {
    throw Failure(items.database().name(),
                  std::string(what) + " of " + items.label(error.item) + " has more than 38 digits");
}

// ---- Flat list -----------------------------------------------------------------------------------------------

struct FlatOptions {
    ProductOptions product;
    bool leaves = false;

    Parameters parameters() {
        return {product.parameters(ProductOptions::CodeIs::optional),
                {"--leaves", &leaves, "only parts that consist of nothing"}};
    }
};

/// The parts of a product with their quantities.
class PartsPrinter {
public:
    PartsPrinter(const Items& items, const bom::Product& product, bool leaves, Output& out)
        : items_(items), product_(product), leaves_(leaves), out_(out), endless_(product.endless()) {
        try {
            quantities_ = product.quantities();
        } catch (const bom::ItemOverflow& error) {
            fail(items, error, "the quantity");
        }
    }

    void print() {
        const auto items = items_.graph().items();
        for (bom::Item item = 0; item < items; ++item) {  // in record order, which is quicker to read
            if (!is_part(item)) continue;
            quantity_width_ = std::max(quantity_width_, quantity_size(item));
            code_width_ = std::max(code_width_, text_width(items_.label(item, code_)));
        }
        print_row("quantity", "level", "uses", "code", "name", Colour::bold);
        for (const bom::Item item : product_.items()) {
            if (!is_part(item)) continue;
            print_row(quantity(item), std::to_string(product_.level(item)), std::to_string(product_.uses(item)),
                      items_.label(item, code_), items_.name(item, name_), Colour::none);
        }
    }

    void print_json() {
        std::map<bom::Item, int> doubtful;
        for (const bom::Line line : lines_without_quantity()) ++doubtful[items_.graph().child(line)];
        for (const bom::Item item : product_.items()) {
            if (!is_part(item)) continue;
            Json object;
            items_.put_item(object, item);
            object["quantity"] = is_endless(item) ? Json(nullptr) : Json(quantity(item));
            object["level"] = product_.level(item);
            object["uses"] = product_.uses(item);
            if (doubtful.contains(item)) object["without_quantity"] = doubtful[item];
            out_.json(object);
        }
    }

    /// Tells what the quantities leave out; returns whether there is anything.
    bool warn_of_doubts() const {
        const std::string& name = items_.database().name();
        const std::vector<bom::Line> unclear = lines_without_quantity(), dangling = lines_to_nothing();
        for (const bom::Line line : unclear) {
            const std::string text = items_.quantity_text(line);
            warn(name + ": " + items_.path_text({&line, 1}) +
                 (text.empty() ? " has no quantity" : " has the quantity '" + text + "', which is no number") +
                 "; counted as 1");
        }
        for (const bom::Line line : dangling) warn(name + ": " + items_.path_text({&line, 1}));
        if (!product_.has_cycle()) return !unclear.empty() || !dangling.empty();
        warn(name + ": what lies on or below a cycle has no quantity");
        return items_.warn_of(bom::find_cycles(items_.graph(), endless_));
    }

private:
    /// The tops too, if they go into themselves.
    bool is_part(bom::Item item) const {
        return product_.uses(item) > 0 && (!leaves_ || items_.graph().children(item).empty());
    }
    bool is_endless(bom::Item item) const { return endless_[static_cast<std::size_t>(item)]; }
    std::size_t quantity_size(bom::Item item) const {
        return is_endless(item) ? 1 : quantities_[static_cast<std::size_t>(item)].text_size();
    }
    std::string quantity(bom::Item item) const {
        return is_endless(item) ? "?" : quantities_[static_cast<std::size_t>(item)].text();
    }

    std::vector<bom::Line> lines_without_quantity() const {
        std::vector<bom::Line> lines;
        for (const bom::Line line : items_.graph().without_quantity()) {
            const bom::Item parent = items_.graph().parent(line);
            if (parent != bom::kNone && product_.holds(parent)) lines.push_back(line);
        }
        return lines;
    }

    std::vector<bom::Line> lines_to_nothing() const {
        std::vector<bom::Line> lines;
        for (bom::Line line = 0; line < items_.graph().lines(); ++line) {
            if (items_.graph().child(line) != bom::kNone) continue;
            const bom::Item parent = items_.graph().parent(line);
            if (parent != bom::kNone && product_.holds(parent)) lines.push_back(line);
        }
        return lines;
    }

    void print_row(std::string_view quantity, std::string_view level, std::string_view uses, std::string_view code,
                   std::string_view name, Colour colour) {
        line_.clear();
        append_right(line_, quantity, quantity_width_);
        append_right(line_, level, 7);
        append_right(line_, uses, 7);
        append_left(line_.append(2, ' '), code, code_width_);
        line_.append(2, ' ').append(name);
        if (colour != Colour::none) line_ = out_.coloured(line_, colour);
        out_.bytes(line_.append(1, '\n'));
    }

    const Items& items_;
    const bom::Product& product_;
    bool leaves_;
    Output& out_;
    std::vector<char> endless_;             // by item
    std::vector<bom::Decimal> quantities_;  // by item
    std::size_t quantity_width_ = 8, code_width_ = 4;
    std::string line_, code_, name_;  // of one row
};

int print_flat(Program& program, const FlatOptions& options) {
    const Database db(options.product.database, Access::read);
    const Items items(db);
    const bom::Product product(items.graph(), items.tops(options.product.code));
    PartsPrinter printer(items, product, options.leaves, program.out());
    options.product.json ? printer.print_json() : printer.print();
    return printer.warn_of_doubts() ? kFindings : kDone;
}

// ---- Sums of a field -----------------------------------------------------------------------------------------

struct SumOptions {
    ProductOptions product;
    std::string field;
    bool override_sums = false;

    Parameters parameters() {
        return {product.parameters(ProductOptions::CodeIs::optional),
                {"--field", &field, "the field of BITM that is added up", {.required = true}},
                {"--override", &override_sums, "a value of an assembly's own counts instead of its sum"}};
    }
};

std::int32_t field_of(const Database& db, KOfflineTable* table, const std::string& name) {
    const std::int32_t field = KOfflineTable_GetFldIndex(table, db.typed(name).c_str());
    if (field < 0) {
        throw Failure(db.name(), std::string(KOfflineTable_GetTblName(table)) + " has no field " + shown_text(name) +
                                     "; `vlt db info` lists the fields");
    }
    return field;
}

/// The values of the field that are numbers, by item.
std::vector<std::optional<bom::Decimal>> own_values(const Database& db, const std::string& name) {
    KOfflineTable* table = KOfflineDb_GetTable_BITM(db.get());
    const std::int32_t field = field_of(db, table, name);
    std::vector<std::optional<bom::Decimal>> values;
    for (bom::Item item = 0; item < KOfflineTable_GetRecsCount(table); ++item) {
        values.push_back(bom::Decimal::parse(db.value(table, item, field)));
    }
    return values;
}

/// Prints the sums of the assemblies, and the parts that lack a value.
class SumPrinter {
public:
    SumPrinter(const Items& items, Output& out, bool json) : items_(items), out_(out), json_(json) {
        if (!json) out.line(out.coloured("       value  code  name", Colour::bold));
    }

    void print(bom::Item item, const bom::Product::Value& value, bool is_missing) {
        if (json_) {
            Json object;
            items_.put_item(object, item);
            object["value"] = is_missing ? Json(nullptr) : Json(value.sum.text());
            object["complete"] = value.complete;
            return out_.json(object);
        }
        std::string line;
        append_right(line, is_missing ? "missing" : value.sum.text(), 12);
        line += "  " + items_.label(item) + "  " + items_.name(item);
        if (!is_missing && !value.complete) line += "  (without what is missing)";
        out_.line(line);
    }

private:
    const Items& items_;
    Output& out_;
    bool json_;
};

int print_sums(Program& program, const SumOptions& options) {
    const Database db(options.product.database, Access::read);
    const Items items(db);
    const bom::Product product(items.graph(), items.tops(options.product.code));
    if (product.has_cycle()) {
        items.warn_of(bom::find_cycles(items.graph(), product.endless()));
        throw Failure(db.name(), "what lies on a cycle has no sum");
    }
    const auto own = own_values(db, options.field);
    SumPrinter printer(items, program.out(), options.product.json);
    bool complete = true;
    try {
        const auto values = product.roll_up(own, options.override_sums);
        for (std::size_t i = 0; i < product.items().size(); ++i) {
            const bom::Item item = product.items()[i];
            const bom::Product::Value& value = values[static_cast<std::size_t>(item)];
            const bool is_leaf = items.graph().children(item).empty();
            if (!is_leaf || !value.complete || i < product.tops())
                printer.print(item, value, is_leaf && !value.complete);
            complete = complete && value.complete;
        }
    } catch (const bom::ItemOverflow& error) {
        fail(items, error, "the sum");
    }
    return complete ? kDone : kFindings;
}

}  // namespace

void add_bom_flat_verb(Program& program) {
    program.add_verb("bom flat", "every part once, with how many there are in all", print_flat, R"(
        vlt bom flat product.vlt
        vlt bom flat examples/bicycle --leaves --json)");
}

void add_bom_sum_verb(Program& program) {
    program.add_verb("bom sum", "a numeric field of items, added up for every assembly", print_sums, R"(
        vlt bom sum examples/bicycle --field WEIGHT --override
        vlt bom sum product.vlt WH-200 --field PRICE)");
}

}  // namespace tool

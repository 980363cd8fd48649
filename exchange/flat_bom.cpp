// SPDX-License-Identifier: MIT
#include "exchange/flat_bom.h"

#include <algorithm>
#include <unordered_map>

#include "exchange/flat_cycles.h"
#include "exchange/flat_quantity.h"
#include "exchange/flat_structure.h"
#include "exchange/text.h"

namespace exchange {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

class Reader {
public:
    Reader(const FlatTable& table, const FlatOptions& options)
        : table_(table), options_(options), mark_(table.delimiter() == ',' ? '.' : ',') {
        bom_.notation = table.notation();
        bom_.delimiter = table.delimiter();
        for (const FlatField& field : table.fields())
            (field.of_line ? bom_.line_fields : bom_.item_fields).push_back(field.name);
        if (options.decimal != '\0') mark_ = DecimalMark(options.decimal);
        for (std::size_t row = 0; row < table.rows() && options.decimal == '\0'; ++row)
            mark_.learn(table.value(row, kQuantity));
    }

    FlatBom read() {
        structure_ = structure_of(table_, bom_.findings);
        if (!options_.top.empty()) item_named(options_.top, 0);
        read_items();
        const bool by_code = table_.notation() == Notation::parent && !table_.has_numbers();
        by_code ? lines_by_code() : lines_by_row();
        find_tops();
        note_cycles(bom_);
        std::stable_sort(bom_.findings.begin(), bom_.findings.end(),
                         [](const Finding& a, const Finding& b) { return a.line < b.line; });
        return std::move(bom_);
    }

private:
    std::size_t item_named(std::string_view code, std::int64_t line) {
        const auto [at, fresh] = items_.try_emplace(lower(code), bom_.items.size());
        if (fresh) {
            bom_.items.push_back({std::string(code), {}, std::vector<std::string>(bom_.item_fields.size()), line});
        } else if (FlatItem& item = bom_.items[at->second]; item.code != code) {
            note(line, "code", item, {}, item.code, code, "is written " + item.code + " before; they are one item");
        }
        return at->second;
    }

    void note(std::int64_t line, const char* kind, const FlatItem& item, std::string field, std::string_view before,
              std::string_view after, std::string text, bool error = false) {
        bom_.findings.push_back({error, line, kind, item.code, std::move(field), std::string(before),
                                 std::string(after), std::move(text)});
    }

    void read_items() {
        item_of_row_.assign(table_.rows(), kNone);
        const bool by_code = table_.notation() == Notation::parent && !table_.has_numbers();
        for (std::size_t row = 0; row < table_.rows(); ++row) {
            if (structure_.left_out[row]) continue;
            if (by_code && !table_.structure(row).empty()) item_named(table_.structure(row), table_.line(row));
            item_of_row_[row] = item_named(table_.value(row, kCode), table_.line(row));
            read_values(row, bom_.items[item_of_row_[row]]);
        }
    }

    void read_values(std::size_t row, FlatItem& item) {
        keep(row, item, "name", table_.value(row, kName), item.name);
        std::size_t at = 0;
        for (const FlatField& field : table_.fields())
            if (!field.of_line) keep(row, item, field.name, table_.value(row, field.column), item.values[at++]);
    }

    /// The first value of an item that is not empty counts.
    void keep(std::size_t row, const FlatItem& item, const std::string& field, std::string_view value,
              std::string& kept) {
        if (value.empty() || value == kept) return;
        if (kept.empty()) {
            kept = value;
            return;
        }
        note(table_.line(row), field == "name" ? "name" : "field", item, field, kept, value,
             "has the " + field + " '" + kept + "' already; '" + std::string(value) + "' is left out");
    }

    /// A quantity as it is stored; every line of a file without quantities counts once.
    std::string quantity_of(std::size_t row, bool complain) {
        if (!table_.has(kQuantity)) return "1";
        const std::string_view text = table_.value(row, kQuantity);
        const auto number = plain_quantity(text, mark_.mark());
        if (number) return *number;
        if (complain)
            note(table_.line(row), "quantity", bom_.items[item_of_row_[row]], "quantity", text, text,
                 text.empty() ? "has no quantity" : "has a quantity that is no number: '" + std::string(text) + "'");
        return std::string(text);
    }

    FlatLine line_of(std::size_t row, std::size_t parent, bool complain) {
        FlatLine line{parent, item_of_row_[row], quantity_of(row, complain), {}, table_.line(row)};
        for (const FlatField& field : table_.fields())
            if (field.of_line) line.values.emplace_back(table_.value(row, field.column));
        return line;
    }

    void lines_by_code() {
        std::unordered_map<std::string, std::int64_t> seen;
        for (std::size_t row = 0; row < table_.rows(); ++row) {
            if (structure_.left_out[row]) continue;
            if (table_.structure(row).empty()) {
                top_row(row);
                continue;
            }
            FlatLine line = line_of(row, items_.at(lower(table_.structure(row))), true);
            std::string key = std::to_string(line.parent) + ' ' + std::to_string(line.child) + ' ' + line.quantity;
            for (const std::string& value : line.values) key += '\n' + value;
            const auto [at, fresh] = seen.try_emplace(std::move(key), line.line);
            if (!fresh)
                note(line.line, "twice", bom_.items[line.child], {}, {}, {},
                     "is the same line as line " + std::to_string(at->second) + "; both are kept");
            bom_.lines.push_back(std::move(line));
        }
    }

    /// The contents of an item come from the first row of it that has rows below; other rows of it must have the same
    /// or none.
    void lines_by_row() {
        std::vector<std::vector<FlatLine>> below(table_.rows());
        for (std::size_t row = 0; row < table_.rows(); ++row) {
            const std::size_t parent = structure_.parents[row];
            if (structure_.left_out[row]) continue;
            if (parent == kNoRow)
                top_row(row);
            else
                below[parent].push_back(line_of(row, item_of_row_[parent], true));
        }
        std::vector<std::size_t> defining(bom_.items.size(), kNoRow);
        for (std::size_t row = 0; row < table_.rows(); ++row) {
            if (below[row].empty()) continue;
            std::size_t& first = defining[item_of_row_[row]];
            if (first == kNoRow)
                first = row;
            else if (!same_contents(below[first], below[row]))
                note(table_.line(row), "contents", bom_.items[item_of_row_[row]], {}, {}, {},
                     "has other contents than in line " + std::to_string(table_.line(first)) + ", which count", true);
        }
        std::vector<FlatLine> lines = std::move(bom_.lines);
        for (const std::size_t row : defining)
            if (row != kNoRow) lines.insert(lines.end(), below[row].begin(), below[row].end());
        std::stable_sort(lines.begin(), lines.end(),
                         [](const FlatLine& a, const FlatLine& b) { return a.line < b.line; });
        bom_.lines = std::move(lines);
    }

    static bool same_contents(std::vector<FlatLine> a, std::vector<FlatLine> b) {
        const auto less = [](const FlatLine& x, const FlatLine& y) {
            return std::tie(x.child, x.quantity, x.values) < std::tie(y.child, y.quantity, y.values);
        };
        std::sort(a.begin(), a.end(), less);
        std::sort(b.begin(), b.end(), less);
        return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                          [&](const FlatLine& x, const FlatLine& y) { return !less(x, y) && !less(y, x); });
    }

    void top_row(std::size_t row) {
        if (!options_.top.empty()) {
            bom_.lines.push_back(line_of(row, 0, true));
            return;
        }
        const std::string quantity = quantity_of(row, false);
        if (!quantity.empty() && quantity != "1")
            note(table_.line(row), "top", bom_.items[item_of_row_[row]], "quantity", quantity, {},
                 "stands at the top, where its quantity " + quantity + " has no place; an assembly above keeps it");
    }

    void find_tops() {
        std::vector<bool> below(bom_.items.size());
        for (const FlatLine& line : bom_.lines) below[line.child] = true;
        for (std::size_t item = 0; item < below.size(); ++item)
            if (!below[item]) bom_.tops.push_back(item);
    }

    const FlatTable& table_;
    const FlatOptions& options_;
    DecimalMark mark_;
    FlatStructure structure_;
    std::unordered_map<std::string, std::size_t> items_;  // by code in small letters
    std::vector<std::size_t> item_of_row_;
    FlatBom bom_;
};

}  // namespace

bool FlatBom::has_errors() const {
    return std::any_of(findings.begin(), findings.end(), [](const Finding& finding) { return finding.error; });
}

FlatBom read_flat_bom(std::string text, const FlatOptions& options) {
    const FlatTable table(std::move(text), options);
    return Reader(table, options).read();
}

}  // namespace exchange

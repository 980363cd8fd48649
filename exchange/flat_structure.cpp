// SPDX-License-Identifier: MIT
#include "exchange/flat_structure.h"

#include <unordered_map>

#include "exchange/text.h"

namespace exchange {

namespace {

constexpr int kNoLevel = -1;
constexpr std::size_t kLevelDigits = 6;

/// A level as programs write it: 3, +3, ..3, 3.0.
int level_of(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(".+ "), text.size()));
    if (text.ends_with(".0")) text.remove_suffix(2);
    if (text.empty() || text.size() > kLevelDigits || text.find_first_not_of("0123456789") != text.npos)
        return kNoLevel;
    int level = 0;
    for (const char c : text) level = level * 10 + (c - '0');
    return level;
}

/// A number without the point that some programs put at its end.
std::string_view number_of(std::string_view text) {
    return text.ends_with('.') ? trimmed(text.substr(0, text.size() - 1)) : text;
}

std::string_view above(std::string_view number) {
    const std::size_t point = number.rfind('.');
    return point == number.npos ? std::string_view() : number.substr(0, point);
}

class Builder {
public:
    Builder(const FlatTable& table, Findings& findings) : table_(table), findings_(findings) {
        result_.parents.assign(table.rows(), kNoRow);
        result_.left_out.assign(table.rows(), false);
        for (std::size_t row = 0; row < table.rows(); ++row)
            if (table.value(row, kCode).empty()) leave_out(row, "code", "no code; the line is left out");
    }

    FlatStructure take() { return std::move(result_); }

    void by_level() {
        std::vector<std::pair<int, std::size_t>> open;  // the rows above the next one, with their levels
        for (std::size_t row = 0; row < table_.rows(); ++row) {
            if (result_.left_out[row]) continue;
            const int level = level_of(table_.structure(row));
            if (level == kNoLevel) {
                leave_out(row, "level",
                          "'" + std::string(table_.structure(row)) + "' is no level; the line is left out");
                continue;
            }
            if (!open.empty() && level > open.back().first + 1)
                note(row, false, "jump",
                     "the level jumps from " + std::to_string(open.back().first) + " to " + std::to_string(level));
            while (!open.empty() && open.back().first >= level) open.pop_back();
            if (!open.empty()) result_.parents[row] = open.back().second;
            open.emplace_back(level, row);
        }
    }

    /// `refer` tells the number of the row above; `number` that of a row itself.
    template <typename Number, typename Refer>
    void by_number(Number number, Refer refer) {
        std::unordered_map<std::string_view, std::size_t> rows;
        for (std::size_t row = 0; row < table_.rows(); ++row) {
            if (result_.left_out[row]) continue;
            const std::string_view own = number(row);
            if (own.empty())
                leave_out(row, "number", "no item number; the line is left out");
            else if (const auto [at, fresh] = rows.try_emplace(own, row); !fresh)
                note(row, true, "number",
                     "item number " + std::string(own) + " is in line " + std::to_string(table_.line(at->second)) +
                         " already; what lies below it goes there");
        }
        for (std::size_t row = 0; row < table_.rows(); ++row) {
            const std::string_view parent = refer(row);
            if (result_.left_out[row] || parent.empty()) continue;
            const auto at = rows.find(parent);
            if (at != rows.end())
                result_.parents[row] = at->second;
            else
                note(row, true, "parent",
                     "there is no item number " + std::string(parent) + "; the line stands at the top");
        }
    }

private:
    void leave_out(std::size_t row, const char* kind, const std::string& text) {
        result_.left_out[row] = true;
        note(row, true, kind, text);
    }
    void note(std::size_t row, bool error, const char* kind, const std::string& text) {
        Finding finding;
        finding.error = error;
        finding.line = table_.line(row);
        finding.kind = kind;
        finding.code = table_.value(row, kCode);
        finding.text = text;
        findings_.push_back(std::move(finding));
    }

    const FlatTable& table_;
    Findings& findings_;
    FlatStructure result_;
};

}  // namespace

FlatStructure structure_of(const FlatTable& table, Findings& findings) {
    Builder builder(table, findings);
    const auto dotted = [&](std::size_t row) { return number_of(table.structure(row)); };
    if (table.notation() == Notation::level) builder.by_level();
    if (table.notation() == Notation::dotted)
        builder.by_number(dotted, [&](std::size_t row) { return above(dotted(row)); });
    if (table.has_numbers())
        builder.by_number([&](std::size_t row) { return table.number(row); },
                          [&](std::size_t row) { return table.structure(row); });
    return builder.take();
}

}  // namespace exchange

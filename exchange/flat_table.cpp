// SPDX-License-Identifier: MIT
#include "exchange/flat_table.h"

#include <algorithm>
#include <set>

#include "exchange/csv.h"
#include "exchange/error.h"
#include "exchange/flat_columns.h"
#include "exchange/schema.h"
#include "exchange/text.h"

namespace exchange {

namespace {

constexpr int kHeadingLines = 20;  // a heading may stand below a title and other remarks
constexpr char kDelimiters[] = {',', ';', '\t'};

void append_utf8(std::string& text, std::uint32_t character) {
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | character >> 6);
        text += static_cast<char>(0x80 | (character & 0x3F));
    } else {
        if (character < 0x10000) {
            text += static_cast<char>(0xE0 | character >> 12);
        } else {
            text += static_cast<char>(0xF0 | character >> 18);
            text += static_cast<char>(0x80 | (character >> 12 & 0x3F));
        }
        text += static_cast<char>(0x80 | (character >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (character & 0x3F));
    }
}

/// The text behind a byte order mark of UTF-16. A half of a pair alone becomes three bytes that are no UTF-8.
std::string from_utf16(std::string_view bytes, bool big_endian) {
    const auto unit = [&](std::size_t i) {
        const auto first = static_cast<unsigned char>(bytes[i]), second = static_cast<unsigned char>(bytes[i + 1]);
        return static_cast<std::uint32_t>(big_endian ? first << 8 | second : second << 8 | first);
    };
    std::string text;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        std::uint32_t character = unit(i);
        if (character >> 10 == 0x36 && i + 3 < bytes.size() && unit(i + 2) >> 10 == 0x37) {
            character = 0x10000 + ((character & 0x3FF) << 10) + (unit(i + 2) & 0x3FF);
            i += 2;
        }
        append_utf8(text, character);
    }
    return text;
}

std::string plain_text(std::string bytes) {
    if (bytes.starts_with("\xFF\xFE")) bytes = from_utf16(bytes, false);
    if (bytes.starts_with("\xFE\xFF")) bytes = from_utf16(bytes, true);
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);
    if (!is_utf8(bytes)) throw Error("is not UTF-8; say which code page it is in");
    if (bytes.find('\0') != bytes.npos) throw Error("holds a zero byte");
    return bytes;
}

/// The character that separates the values of most of the first lines; "sep=;" in the first line says it.
char delimiter_of(std::string_view text) {
    if (text.starts_with("sep=") && text.size() > 4) return text[4];
    std::array<std::ptrdiff_t, std::size(kDelimiters)> counts{};
    bool quoted = false;
    int lines = 0;
    for (const char c : text) {
        if (c == '"') quoted = !quoted;
        if (quoted) continue;
        if (c == '\n' && ++lines == kHeadingLines) break;
        for (std::size_t d = 0; d < counts.size(); ++d) counts[d] += c == kDelimiters[d];
    }
    return kDelimiters[std::max_element(counts.begin(), counts.end()) - counts.begin()];
}

bool is_blank(const std::vector<std::string_view>& values) {
    return std::all_of(values.begin(), values.end(), [](std::string_view value) { return trimmed(value).empty(); });
}

/// Whether the values can be the heading: they name the columns that the options name, a code and a structure.
bool is_heading(const std::vector<std::string_view>& values, const FlatOptions& options) {
    std::vector<std::string> headings;
    for (const std::string_view value : values) headings.push_back(heading_words(value));
    for (const auto& [meaning, heading] : options.meanings)
        if (std::find(headings.begin(), headings.end(), heading_words(heading)) == headings.end()) return false;
    Roles roles;
    guess_roles(headings, std::vector<bool>(headings.size()), roles);
    const auto known = [&](Role role) { return roles[role] || options.meanings.count(role_name(role)) != 0; };
    return known(kCode) && (known(kLevel) || known(kItemNumber) || known(kParent));
}

/// The name of a column's field; a number follows where it is taken.
std::string free_name(const std::string& heading, std::size_t column, std::set<std::string>& taken) {
    std::string base = field_name(heading);
    if (base.empty()) base = "COLUMN" + std::to_string(column + 1);
    std::string name = base;
    for (int number = 2; !taken.insert(upper(name)).second; ++number)
        name = std::string(shortened(base, 28)) + "_" + std::to_string(number);
    return name;
}

bool is_dotted(std::string_view value) {
    return value.find_first_not_of("0123456789.") == value.npos && value.find('.') != value.npos &&
           value.front() != '.' && !value.ends_with(".0");
}

}  // namespace

FlatTable::FlatTable(std::string text, const FlatOptions& options)
    : text_(plain_text(std::move(text))),
      delimiter_(options.delimiter != '\0' ? options.delimiter : delimiter_of(text_)) {
    read_rows(options);
    assign_roles(options);
    find_structure(options);
    name_fields(options);
}

void FlatTable::read_rows(const FlatOptions& options) {
    CsvReader reader(text_, delimiter_);
    std::vector<std::string_view> values;
    for (int line = 0;; ++line) {
        if (line == kHeadingLines || !reader.next(values))
            throw Error(
                "no line names a column for the code and one for the structure (level, item number or parent)");
        if (is_heading(values, options)) break;
    }
    for (const std::string_view value : values) headings_.emplace_back(trimmed(value));
    width_ = headings_.size();
    while (reader.next(values)) {
        if (is_blank(values)) continue;
        if (values.size() > width_ && !is_blank({values.begin() + static_cast<std::ptrdiff_t>(width_), values.end()}))
            throw Error("line " + std::to_string(reader.line()) + " has more values than there are headings");
        values.resize(width_);
        for (const std::string_view value : values) values_.push_back(trimmed(value));
        lines_.push_back(reader.line());
    }
}

std::optional<std::size_t> FlatTable::heading_column(std::string_view heading) const {
    for (std::size_t c = 0; c < headings_.size(); ++c)
        if (heading_words(headings_[c]) == heading_words(heading)) return c;
    return {};
}

void FlatTable::assign_roles(const FlatOptions& options) {
    std::vector<bool> taken(width_);
    for (const auto& [meaning, heading] : options.meanings) {
        const auto column = heading_column(heading);
        if (!column) throw Error("no column is headed '" + heading + "'");
        taken[*column] = true;
        if (const auto role = role_of(meaning)) roles_[*role] = column;
    }
    guess_roles(headings_, taken, roles_);
    if (!roles_[kCode]) throw Error("no column is known to hold the code of an item");
}

bool FlatTable::has_dotted_values(Role role) const {
    if (!roles_[role]) return false;
    for (std::size_t row = 0; row < rows(); ++row)
        if (is_dotted(value(row, role))) return true;
    return false;
}

Notation FlatTable::find_notation(const FlatOptions& options) const {
    if (options.notation) return *options.notation;
    if (roles_[kLevel] && !has_dotted_values(kLevel)) return Notation::level;
    if (roles_[kLevel] || has_dotted_values(kItemNumber)) return Notation::dotted;
    if (roles_[kParent]) return Notation::parent;
    if (roles_[kItemNumber]) return Notation::dotted;
    throw Error("no column tells the structure: a level, an item number or a parent");
}

/// Whether parents are named by item number: every one of them is one, and they are no codes.
bool FlatTable::parents_are_item_numbers() const {
    if (!roles_[kItemNumber] || !roles_[kParent]) return false;
    std::set<std::string_view> numbers, codes;
    for (std::size_t row = 0; row < rows(); ++row) {
        numbers.insert(value(row, kItemNumber));
        codes.insert(value(row, kCode));
    }
    bool all_codes = true;
    for (std::size_t row = 0; row < rows(); ++row) {
        const std::string_view parent = value(row, kParent);
        if (numbers.count(parent) == 0 && !parent.empty()) return false;
        all_codes = all_codes && (parent.empty() || codes.count(parent) != 0);
    }
    return !all_codes;
}

void FlatTable::find_structure(const FlatOptions& options) {
    notation_ = find_notation(options);
    if (notation_ == Notation::level) structure_ = roles_[kLevel];
    if (notation_ == Notation::dotted)
        structure_ = has_dotted_values(kItemNumber) || !roles_[kLevel] ? roles_[kItemNumber] : roles_[kLevel];
    if (notation_ == Notation::parent) structure_ = roles_[kParent];
    if (!structure_) throw Error("no column is known to tell the structure in this notation");
    if (notation_ == Notation::parent && parents_are_item_numbers()) number_ = roles_[kItemNumber];
}

/// Columns without role become fields of the item. An item number that does not tell the structure is the position of
/// the line; a level or a parent that does not would only say it again.
void FlatTable::name_fields(const FlatOptions& options) {
    const std::optional<std::size_t> used[] = {structure_,        number_,        roles_[kCode],  roles_[kName],
                                               roles_[kQuantity], roles_[kLevel], roles_[kParent]};
    std::map<std::size_t, std::string> names;
    std::set<std::size_t> of_line;
    for (const auto& [meaning, heading] : options.meanings) names[*heading_column(heading)] = meaning;
    for (const std::string& heading : options.line_headings) {
        if (!heading_column(heading)) throw Error("no column is headed '" + heading + "'");
        of_line.insert(*heading_column(heading));
    }
    if (roles_[kItemNumber]) of_line.insert(*roles_[kItemNumber]);
    std::array<std::set<std::string>, 2> taken = {{{"NID", "CCODE", "CNAME"}, {"NID", "NPID", "NCID", "FCOUNT"}}};
    for (std::size_t c = 0; c < width_; ++c) {
        if (std::find(std::begin(used), std::end(used), std::optional(c)) != std::end(used)) continue;
        const bool line = of_line.count(c) != 0;
        const bool given = names.count(c) != 0 && !role_of(names[c]);
        fields_.push_back({c, free_name(given ? names[c] : headings_[c], c, taken[line]), line});
    }
}

}  // namespace exchange

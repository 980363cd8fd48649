// SPDX-License-Identifier: MIT
// The rows of a flat bill of material, and what its columns mean.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace exchange {

/// What a column can mean. `kItemNumber` is a dotted number, or what a parent column refers to.
enum Role : std::size_t { kLevel, kItemNumber, kParent, kCode, kName, kQuantity, kRoleCount };

enum class Notation { level, dotted, parent };

struct FlatOptions {
    char delimiter = '\0';  // of values; told by the heading where it is 0
    char decimal = '\0';    // ',' or '.'; told by the quantities where it is 0
    std::optional<Notation> notation;
    /// Headings by what they mean: "level", "item", "parent", "code", "name", "quantity", or the name of a field.
    std::map<std::string, std::string> meanings;
    std::vector<std::string> line_headings;  // whose values belong to the line and not to the item
    std::string top;                         // code of an assembly to be made above all that stand at the top
};

/// A column that has no role and becomes a field.
struct FlatField {
    std::size_t column;
    std::string name;
    bool of_line;  // a field of BBOM, else of BITM
};

class FlatTable {
public:
    /// Reads a file: UTF-8, or UTF-16 with a byte order mark. Fails with `Error` when it is neither, when no line
    /// looks like a heading, or when a heading that the options name is not there.
    FlatTable(std::string text, const FlatOptions& options);
    FlatTable(const FlatTable&) = delete;
    FlatTable& operator=(const FlatTable&) = delete;

    std::size_t rows() const { return lines_.size(); }
    std::int64_t line(std::size_t row) const { return lines_[row]; }

    /// The trimmed value in a column of a row; empty where the file has none.
    std::string_view value(std::size_t row, std::optional<std::size_t> column) const {
        return column ? values_[row * width_ + *column] : std::string_view();
    }
    std::string_view value(std::size_t row, Role role) const { return value(row, roles_[role]); }
    bool has(Role role) const { return roles_[role].has_value(); }

    Notation notation() const { return notation_; }
    /// What tells the structure: a level, a dotted number or a parent.
    std::string_view structure(std::size_t row) const { return value(row, structure_); }
    /// What parents refer to, when that is an item number and no code.
    bool has_numbers() const { return number_.has_value(); }
    std::string_view number(std::size_t row) const { return value(row, number_); }

    const std::vector<FlatField>& fields() const { return fields_; }
    char delimiter() const { return delimiter_; }

private:
    void read_rows(const FlatOptions& options);
    void assign_roles(const FlatOptions& options);
    void find_structure(const FlatOptions& options);
    void name_fields(const FlatOptions& options);
    std::optional<std::size_t> heading_column(std::string_view heading) const;
    bool has_dotted_values(Role role) const;
    bool parents_are_item_numbers() const;
    Notation find_notation(const FlatOptions& options) const;

    std::string text_;
    char delimiter_;
    std::vector<std::string> headings_;
    std::size_t width_ = 0;
    std::vector<std::string_view> values_;  // width_ a row
    std::vector<std::int64_t> lines_;
    std::array<std::optional<std::size_t>, kRoleCount> roles_;
    Notation notation_ = Notation::level;
    std::optional<std::size_t> structure_, number_;
    std::vector<FlatField> fields_;
};

const char* role_name(Role role);

/// An empty file with headings that are understood.
std::string flat_template(Notation notation);

}  // namespace exchange

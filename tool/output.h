// SPDX-License-Identifier: MIT
// Standard output: lines, aligned tables, JSON.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// Keys keep the order in which they are given. Whoever makes one includes <nlohmann/json.hpp>.
using Json = nlohmann::ordered_json;

/// As terminals number them.
enum class Colour { none = 0, bold = 1, red = 31, green = 32, yellow = 33, blue = 34, cyan = 36 };

class Output {
public:
    Output();

    /// Writes bytes as they are. Fails with `Failure` when standard output does not take them, here and below.
    void bytes(std::string_view text);
    void line(std::string_view text);

    /// One object on one line.
    void json(const Json& object);

    /// The text in a colour, on a terminal; otherwise as it is. `NO_COLOR` in the environment turns colours off.
    std::string coloured(std::string_view text, Colour colour) const;

    /// Hands everything to the system. Called at the end, when failing is still a result.
    void flush();

private:
    bool colours_;
};

/// A table that is printed at once, because its columns are as wide as their widest cell.
class Table {
public:
    enum class Align { left, right };
    struct Column {
        std::string title;
        Align align = Align::left;
    };

    explicit Table(std::vector<Column> columns);
    void row(std::vector<std::string> cells);
    /// A heading and the rows; nothing at all without rows.
    void print(Output& out) const;

private:
    std::string line_of(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) const;

    std::vector<Column> columns_;
    std::vector<std::vector<std::string>> rows_;
};

/// Columns that a text takes on a terminal: East Asian characters take two, combining ones none.
std::size_t display_width(std::string_view utf8);

/// "1.5 MiB"; bytes below 1024 as they are: "17 B".
std::string size_text(double bytes);

/// "64M", "512", "1.5G" as bytes, units of 1024; fails with `Failure`.
std::int64_t size_of_text(const std::string& text);

}  // namespace tool

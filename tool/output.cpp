// SPDX-License-Identifier: MIT
#include "tool/output.h"

#include <fmt/format.h>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "tool/failure.h"
#include "tool/names.h"
#include "tool/system.h"

namespace tool {

namespace {

[[noreturn]] void fail() {
    throw Failure("standard output", std::strerror(errno));
}

bool wants_colours() {
    const auto no_colour = environment("NO_COLOR");
    const auto terminal = environment("TERM");
    return is_terminal(stdout) && (!no_colour || no_colour->empty()) && (!terminal || *terminal != "dumb");
}

/// A coloured cell is as wide as its text.
std::size_t cell_width(std::string_view cell) {
    std::size_t width = 0;
    while (!cell.empty()) {
        const std::size_t escape = cell.find("\033[");
        width += display_width(cell.substr(0, escape));
        if (escape == std::string_view::npos) break;
        cell.remove_prefix(std::min(cell.find('m', escape), cell.size() - 1) + 1);
    }
    return width;
}

}  // namespace

Output::Output() : colours_(wants_colours()) {
    static char buffer[1 << 16];
    std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
}

void Output::bytes(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) fail();
}

void Output::line(std::string_view text) {
    bytes(text);
    bytes("\n");
}

void Output::json(const Json& object) {
    line(object.dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::string Output::coloured(std::string_view text, Colour colour) const {
    if (!colours_ || colour == Colour::none) return std::string(text);
    return fmt::format("\033[{}m{}\033[0m", static_cast<int>(colour), text);
}

void Output::flush() {
    if (std::fflush(stdout) != 0) fail();
}

Table::Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

void Table::row(std::vector<std::string> cells) {
    rows_.push_back(std::move(cells));
}

std::string Table::line_of(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) const {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::size_t width = cell_width(cells[i]);
        const std::string blanks(widths[i] > width ? widths[i] - width : 0, ' ');
        const bool last = i + 1 == cells.size();
        if (columns_[i].align == Align::right)
            line += blanks + cells[i];
        else
            line += cells[i] + (last ? "" : blanks);
        if (!last) line += "  ";
    }
    return line;
}

void Table::print(Output& out) const {
    if (rows_.empty()) return;
    std::vector<std::string> titles;
    std::vector<std::size_t> widths;
    for (const Column& column : columns_) {
        titles.push_back(column.title);
        widths.push_back(display_width(column.title));
    }
    for (const auto& cells : rows_)
        for (std::size_t i = 0; i < cells.size(); ++i) widths[i] = std::max(widths[i], cell_width(cells[i]));
    out.line(out.coloured(line_of(titles, widths), Colour::bold));
    for (const auto& cells : rows_) out.line(line_of(cells, widths));
}

std::size_t display_width(std::string_view utf8) {
    std::size_t width = 0;
    while (!utf8.empty()) {
        const std::size_t length = std::max<std::size_t>(utf8_length(utf8), 1);
        const std::u16string unit = utf16_of_name(utf8.substr(0, length));
        const char16_t c = unit[0];
        const bool combining = (c >= 0x300 && c < 0x370) || (c >= 0x200b && c <= 0x200d);
        const bool wide = (c >= 0x1100 && c < 0x1160) || (c >= 0x2e80 && c < 0xa4d0) || (c >= 0xac00 && c < 0xd7a4) ||
                          (c >= 0xf900 && c < 0xfb00) || (c >= 0xff00 && c < 0xff61) || unit.size() == 2;
        width += combining ? 0 : wide ? 2 : 1;
        utf8.remove_prefix(length);
    }
    return width;
}

std::string size_text(double bytes) {
    const char* const units[] = {"B", "KiB", "MiB", "GiB", "TiB"};
    std::size_t unit = 0;
    for (; bytes >= 1024 && unit < 4; ++unit) bytes /= 1024;
    return unit == 0 ? fmt::format("{:.0f} B", bytes) : fmt::format("{:.1f} {}", bytes, units[unit]);
}

std::int64_t size_of_text(const std::string& text) {
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    const std::string units = "KMGT";
    double factor = 1;
    const std::size_t unit = *end ? units.find(static_cast<char>(std::toupper(static_cast<unsigned char>(*end)))) : 0;
    if (*end && unit != std::string::npos) {
        factor = std::pow(1024.0, static_cast<double>(unit + 1));
        ++end;
        if (end[0] == 'i' && end[1] == 'B')
            end += 2;
        else if (end[0] == 'B')
            ++end;
    }
    if (end == text.c_str() || *end || !(number >= 0) || number * factor >= 9e18)
        throw Failure(text, "not a size; write bytes, or a number with K, M, G or T");
    return static_cast<std::int64_t>(number * factor);
}

}  // namespace tool

// SPDX-License-Identifier: MIT
#include "exchange/csv.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "exchange/error.h"

namespace exchange {

namespace {

constexpr std::array<bool, 256> needs_quotes() {
    std::array<bool, 256> result{};
    for (const char c : {'"', ',', '\r', '\n'}) result[static_cast<unsigned char>(c)] = true;
    return result;
}
constexpr std::array<bool, 256> kNeedsQuotes = needs_quotes();

void add_quoted(Output& output, std::string_view value) {
    output.add('"');
    for (std::size_t quote; (quote = value.find('"')) != value.npos; value.remove_prefix(quote + 1)) {
        output.add(value.substr(0, quote));
        output.add("\"\"");
    }
    output.add(value);
    output.add('"');
}

}  // namespace

void add_csv(Output& output, const char* value) {
    if (!value) return;
    const std::size_t length = std::strlen(value);
    char* const room = output.room(length);
    for (std::size_t i = 0; i < length; ++i) {
        if (kNeedsQuotes[static_cast<unsigned char>(value[i])]) return add_quoted(output, {value, length});
        room[i] = value[i];
    }
    output.added(length);
}

CsvReader::CsvReader(std::string& text, char delimiter)
    : at_(text.data()), end_(text.data() + text.size()), delimiter_(delimiter) {}

bool CsvReader::next(std::vector<std::string_view>& values) {
    while (at_ != end_ && at_line_end()) skip_line_end();
    if (at_ == end_) return false;
    record_line_ = line_;
    values.clear();
    while (true) {
        values.push_back(at_ != end_ && *at_ == '"' ? quoted_value() : plain_value());
        if (at_line_end()) break;
        ++at_;
    }
    skip_line_end();
    return true;
}

void CsvReader::skip_line_end() {
    if (at_ == end_) return;
    if (*at_ == '\r' && end_ - at_ > 1 && at_[1] == '\n') ++at_;
    ++at_;
    ++line_;
}

std::string_view CsvReader::plain_value() {
    const char* const begin = at_;
    while (!at_line_end() && *at_ != delimiter_) ++at_;
    return {begin, static_cast<std::size_t>(at_ - begin)};
}

/// Two quotes within the value stand for one: what follows them moves up.
std::string_view CsvReader::quoted_value() {
    const std::int64_t first_line = line_;
    char* const begin = ++at_;
    char* out = begin;
    while (true) {
        auto* const quote = static_cast<char*>(std::memchr(at_, '"', static_cast<std::size_t>(end_ - at_)));
        if (!quote) throw Error("line " + std::to_string(first_line) + ": a quote is not closed");
        line_ += std::count(at_, quote, '\n');
        out = std::move(at_, quote, out);
        at_ = quote + 1;
        if (at_ == end_ || *at_ != '"') break;
        *out++ = '"';
        ++at_;
    }
    if (!at_line_end() && *at_ != delimiter_)
        throw Error("line " + std::to_string(line_) + ": text after a closing quote");
    return {begin, static_cast<std::size_t>(out - begin)};
}

}  // namespace exchange

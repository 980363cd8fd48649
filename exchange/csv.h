// SPDX-License-Identifier: MIT
// Comma-separated values as RFC 4180 has them. An empty value is nothing between two commas, and so is a missing one:
// the files of a database do not tell them apart either.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/output.h"

namespace exchange {

/// Appends a value, in quotes where it needs them; nothing for a null value.
void add_csv(Output& output, const char* value);

/// Reads records one after the other from a text that it changes while it reads: values are views into it.
/// Lines end with CR LF, CR or LF; empty ones are passed over.
class CsvReader {
public:
    explicit CsvReader(std::string& text, char delimiter = ',');

    /// Reads the next record; false at the end. Fails with `Error` for a quote that is not closed, or text after one.
    bool next(std::vector<std::string_view>& values);

    /// The line in which the last record begins, from 1.
    std::int64_t line() const { return record_line_; }

private:
    std::string_view quoted_value();
    std::string_view plain_value();
    bool at_line_end() const { return at_ == end_ || *at_ == '\r' || *at_ == '\n'; }
    void skip_line_end();

    char *at_, *end_;
    char delimiter_;
    std::int64_t line_ = 1, record_line_ = 0;
};

}  // namespace exchange

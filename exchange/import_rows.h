// SPDX-License-Identifier: MIT
// What the imports of CSV and of SQLite files share: tables whose rows come one after the other under named columns.
#pragma once

#include <array>
#include <memory>

#include "exchange/import.h"

namespace exchange {

/// The rows of one table.
class Rows {
public:
    virtual ~Rows() = default;
    virtual const std::vector<std::string>& columns() const = 0;
    /// Reads the next row; false after the last. The values are valid until the next call.
    virtual bool next(std::vector<std::string_view>& values) = 0;
};

/// The tables that there are, and the schema's rows where a file has them.
struct RowSource {
    std::optional<std::vector<SchemaRow>> schema;
    std::array<std::unique_ptr<Rows>, kTableCount> tables;
};

/// A column whose name is one of `reserved` is passed over.
void import_rows(RowSource source, std::span<const std::string_view> reserved, const OpenEmpty& open_empty);

}  // namespace exchange

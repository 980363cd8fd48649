// SPDX-License-Identifier: MIT
// A product from one flat bill of material, as CAD and ERP systems export it.
#pragma once

#include <optional>

#include "exchange/finding.h"
#include "exchange/flat_table.h"
#include "exchange/import.h"

namespace exchange {

struct FlatItem {
    std::string code, name;
    std::vector<std::string> values;  // of the fields of items
    std::int64_t line;                // where the item is first named
};

struct FlatLine {
    std::size_t parent, child;  // numbers of items
    std::string quantity;
    std::vector<std::string> values;  // of the fields of lines
    std::int64_t line;
};

struct FlatBom {
    Notation notation;
    char delimiter;
    std::vector<std::string> item_fields, line_fields;
    std::vector<FlatItem> items;
    std::vector<FlatLine> lines;
    std::vector<std::size_t> tops;  // items under no other one
    Findings findings;              // in the order of the file's lines

    bool has_errors() const;
};

/// Reads the text of a file: UTF-8, or UTF-16 with a byte order mark. An item is known by its code, letter case
/// ignored. A sub-assembly that occurs several times with the same contents becomes one; with other contents, the
/// first counts, and that is an error. Fails with `Error` for a file that is no bill of material.
FlatBom read_flat_bom(std::string text, const FlatOptions& options);

/// Makes a database of it. The only top item becomes the root.
void import_flat_bom(const FlatBom& bom, const OpenEmpty& open_empty);

}  // namespace exchange

// SPDX-License-Identifier: MIT
// Which row of a flat bill of material lies under which.
#pragma once

#include "exchange/finding.h"
#include "exchange/flat_table.h"

namespace exchange {

constexpr std::size_t kNoRow = static_cast<std::size_t>(-1);

struct FlatStructure {
    std::vector<std::size_t> parents;  // the row above each row, or kNoRow
    std::vector<bool> left_out;        // rows that cannot be placed
};

/// By levels or numbers. Not for parents that are named by code: those rows lie under an item, not under a row.
FlatStructure structure_of(const FlatTable& table, Findings& findings);

}  // namespace exchange

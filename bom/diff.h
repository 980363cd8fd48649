// SPDX-License-Identifier: MIT
// What changed from one product to another.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bom/graph.h"

namespace bom {

/// One of the two databases that are compared.
struct Side {
    KOfflineDb* db;
    const Graph* graph;
    std::vector<char> among;  // by item, whether it is compared; empty: all are

    bool holds(Item item) const { return among.empty() || among[static_cast<std::size_t>(item)]; }
};

struct Change {
    enum class Kind {
        kItemRemoved,
        kItemAdded,
        kFieldChanged,  // of an item
        kLineRemoved,
        kLineAdded,
        kQuantityChanged,
        kLineFieldChanged,
    };

    Kind kind;
    Item before = kNone, after = kNone;            // the item, or the parent of the line
    Line line_before = kNone, line_after = kNone;  // kNone where the change is none of a line
    std::int32_t field_before = -1, field_after = -1;
};

enum class MatchBy { kCode, kNid };

/// The changes in record order of what was before, then what is new. Items of equal code or NID are matched in record
/// order; lines by their two items, those of equal quantity first. A quantity is the same when the numbers are; a
/// field that one side lacks has no values there, which is as much as an empty one. NIDs are compared neither in
/// items that are matched by code nor in lines.
std::vector<Change> compare(const Side& before, const Side& after, MatchBy by);

}  // namespace bom

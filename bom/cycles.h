// SPDX-License-Identifier: MIT
// Items that consist of themselves.
#pragma once

#include <cstdint>
#include <vector>

#include "bom/graph.h"

namespace bom {

struct Cycles {
    /// Lines, each leading to the parent of the next and the last to the parent of the first. Every cycle stands here
    /// once, beginning at its first item in record order.
    std::vector<std::vector<Line>> paths;

    /// Items that all consist of each other through more lines than there was time for.
    struct Tangle {
        std::vector<Item> items;
        std::size_t lines_left = 0;  // lines among them that no path above holds, each of them on a cycle
    };
    std::vector<Tangle> tangles;

    bool empty() const { return paths.empty(); }
};

/// Finds cycles so that each line that lies on one is named by at least one path: the shortest through the first line
/// that none has named yet, and so on. The number of all cycles grows exponentially; these are at most as many as
/// there are lines. Tangled items are searched for about as long as the whole graph takes to read, at least one path
/// each.
///   among  by item, whether it counts; empty: all do
Cycles find_cycles(const Graph& graph, const std::vector<char>& among = {});

}  // namespace bom

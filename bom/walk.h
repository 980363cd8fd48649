// SPDX-License-Identifier: MIT
// Walks through a product one row at a time, so that a caller holds no more of it than the path to where it is. The
// number of rows may grow exponentially with the depth of a product; what a walk itself holds grows with its items.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "bom/graph.h"

namespace bom {

/// What a product consists of, from the tops down: an item, then all below it, in record order.
class TreeWalk {
public:
    struct Options {
        std::int32_t depth = std::numeric_limits<std::int32_t>::max();  // levels below the tops that are visited
        bool repeat = false;  // an assembly is followed wherever it occurs, not only the first time
    };

    enum class Follow {
        kBelow,    // what it consists of comes next
        kNothing,  // it consists of nothing, or no item has its NID
        kDepth,    // more lies below it than the depth allows
        kAgain,    // what it consists of came before
        kCycle,    // it lies below itself
    };

    struct Row {
        Item item = kNone;  // kNone: no item has the NID that the line names
        Line line = kNone;  // kNone: a top
        std::int32_t level = 0;
        Decimal quantity, total;  // in one of its parent; multiplied through from the top
        Follow follow = Follow::kNothing;
    };

    TreeWalk(const Graph& graph, std::vector<Item> tops, const Options& options);

    /// Moves to the next row; false at the end. Throws Overflow.
    bool next();

    const Row& row() const { return row_; }

    /// Whether the row is the last one of its parent.
    bool is_last() const;

    /// The items from the top to the row's own, as long as the row is below one of them.
    std::vector<Item> path() const;

private:
    struct Step {
        Item item;
        Decimal total;
        std::size_t next = 0;  // of its children
    };

    void visit(Item item, Line line, const Decimal& above);
    Follow follow(Item item) const;
    void leave();

    const Graph& graph_;
    std::vector<Item> tops_;
    Options options_;
    std::size_t next_top_ = 0;
    std::vector<Step> steps_;                  // the assemblies above the next row
    std::vector<char> above_;                  // by item: whether it is one of them
    std::vector<std::int32_t> followed_from_;  // by item: the least level from which it was followed
    Row row_;
};

/// Where an item is used: every path from it to a top, each item on it once.
class UpWalk {
public:
    UpWalk(const Graph& graph, Item item);

    /// Moves to the next path; false at the end. Throws Overflow. An item that is used nowhere has no path.
    bool next();

    /// The lines of the path, the one that names the item first.
    std::span<const Line> lines() const { return path_; }

    /// How many of the item the path brings into its top.
    const Decimal& total() const { return totals_.back(); }

    /// Whether the path ends because its last parent stands below on it, or is no item, and not at a top.
    bool is_cycle() const { return end_ != kNone && above_[static_cast<std::size_t>(end_)]; }
    bool is_dangling() const { return end_ == kNone; }

private:
    std::span<const Line> users() const { return graph_.parents(items_.back()); }
    bool retreat();
    void take(Line line);

    const Graph& graph_;
    std::vector<Item> items_;         // the item, and those above it that the path goes on from
    std::vector<std::size_t> taken_;  // how many users of each were taken
    std::vector<Line> path_;
    std::vector<Decimal> totals_;  // by line of the path
    std::vector<char> above_;      // by item: whether it is on the path
    Item end_ = kNone;             // the parent that the last line of the path names
};

}  // namespace bom

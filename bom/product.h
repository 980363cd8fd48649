// SPDX-License-Identifier: MIT
// Everything that a product consists of, each item once, and what adds up in it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "bom/graph.h"

namespace bom {

/// Thrown where the quantity or the value of an item has more digits than a Decimal holds.
struct ItemOverflow : Overflow {
    explicit ItemOverflow(Item where) : item(where) {}
    Item item;
};

/// The items at and below some tops.
class Product {
public:
    Product(const Graph& graph, std::span<const Item> tops);

    /// The tops, then the others by level, each level in record order.
    const std::vector<Item>& items() const { return items_; }

    /// How many of items() are the tops that were asked for.
    std::size_t tops() const { return tops_; }

    bool holds(Item item) const { return nodes_[at(item)].level >= 0; }

    /// The least number of lines that lead from a top to the item, and how many lines of the product name it.
    std::int32_t level(Item item) const { return nodes_[at(item)].level; }
    std::int32_t uses(Item item) const { return nodes_[at(item)].uses; }

    /// The items, each after those that it goes into; without those on or below a cycle: nothing adds up there.
    const std::vector<Item>& top_down() const { return top_down_; }
    bool has_cycle() const { return top_down_.size() != items_.size(); }

    /// By item, whether it lies on or below a cycle of the product.
    std::vector<char> endless() const;

    /// How many of each item go into the tops, by item; what it says of the endless means nothing. Throws
    /// ItemOverflow.
    std::vector<Decimal> quantities() const;

    struct Value {
        Decimal sum;
        bool complete = true;  // false where a value below it is missing, or a line leads to no item
    };

    /// Adds up the values that items have of their own, by item, bottom up: one that consists of others has the sum
    /// of theirs, or its own with `override_sums`. What it says of the endless means nothing. Throws ItemOverflow.
    std::vector<Value> roll_up(const std::vector<std::optional<Decimal>>& own, bool override_sums) const;

private:
    struct Node {
        std::int32_t level = -1, uses = 0;
    };

    static std::size_t at(Item item) { return static_cast<std::size_t>(item); }
    void reach(Item item, std::int32_t level);
    void reach_children(Item item);
    void sort_round(std::vector<Item>& items, std::size_t begin);
    void sort_top_down();
    Value sum_of_children(Item item, const std::vector<Value>& values) const;

    const Graph& graph_;
    std::vector<Item> items_, top_down_;
    std::vector<Node> nodes_;            // by item
    std::vector<std::uint64_t> marked_;  // a bit an item, for sort_round
    std::size_t tops_ = 0;
};

}  // namespace bom

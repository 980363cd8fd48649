// SPDX-License-Identifier: MIT
// The structure of a product: which item consists of which, read once from a loaded database.
#pragma once

#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "bom/decimal.h"
#include "bom/nid_map.h"
#include "include/offline.h"

namespace bom {

using Item = std::int32_t;  // a record number of BITM
using Line = std::int32_t;  // a record number of BBOM

constexpr std::int32_t kNone = -1;

/// Decimals, most of which have few digits.
class Decimals {
public:
    void reserve(std::size_t count) { packed_.reserve(count); }

    /// Appends the number that a text says; 1, and returns false, where it says none.
    bool push_back(const char* text);

    Decimal operator[](std::int32_t i) const {
        const std::uint32_t bits = packed_[static_cast<std::size_t>(i)];
        return bits == Decimal::kNotPacked ? long_.at(i) : Decimal::unpacked(bits);
    }

private:
    std::vector<std::uint32_t> packed_;
    std::unordered_map<std::int32_t, Decimal> long_;  // where packed_ says kNotPacked
};

/// Items and lines in record order, as arrays. The database may change or go afterwards; the graph stays as it was.
class Graph {
public:
    explicit Graph(KOfflineDb* db);

    Item items() const { return static_cast<Item>(child_begin_.size()) - 1; }
    Line lines() const { return static_cast<Line>(parent_.size()); }

    /// The two ends of a line; kNone where no item has the NID that the line names.
    Item parent(Line line) const { return parent_[at(line)]; }
    Item child(Line line) const { return child_[at(line)]; }

    /// How many of the child go into the parent: 1 where the line says nothing, or something that is no number.
    Decimal quantity(Line line) const { return quantity_[line]; }

    /// The lines that say nothing, or something that is no number, in record order; none where the table has no
    /// quantities at all.
    const std::vector<Line>& without_quantity() const { return without_quantity_; }

    /// What an item consists of, and where it is used, in record order. Children include ends that are kNone.
    std::span<const Line> children(Item item) const { return range(child_begin_, child_lines_, item); }
    std::span<const Line> parents(Item item) const {
        if (parent_begin_.empty()) group_parents();
        return range(parent_begin_, parent_lines_, item);
    }

    /// The chosen root item, or kNone.
    Item root() const { return root_; }

    /// Every item without a parent; one that is its own parent has one. None where all lie on or below a cycle.
    std::vector<Item> without_parents() const;

    /// The root item alone, or every item without a parent when none is chosen.
    std::vector<Item> tops() const { return root_ == kNone ? without_parents() : std::vector<Item>{root_}; }

private:
    static std::size_t at(std::int32_t number) { return static_cast<std::size_t>(number); }

    static std::span<const Line> range(const std::vector<Line>& begin, const std::vector<Line>& lines, Item item) {
        return {lines.data() + begin[at(item)], lines.data() + begin[at(item) + 1]};
    }

    void read_lines(KOfflineDb* db);
    void group_parents() const;
    static void group(const std::vector<Item>& ends, std::vector<Line>& begin, std::vector<Line>& lines);

    std::vector<Item> parent_, child_;             // by line
    Decimals quantity_;                            // by line
    std::vector<Line> without_quantity_;           // in record order
    std::vector<Line> child_begin_, child_lines_;  // the lines of item i: child_begin_[i] to child_begin_[i + 1]
    std::vector<char> has_parent_;                 // by item
    mutable std::vector<Line> parent_begin_, parent_lines_;  // made when they are first asked for
    Item root_ = kNone;
};

}  // namespace bom

// SPDX-License-Identifier: MIT
#include "bom/product.h"

#include <algorithm>
#include <bit>

namespace bom {

// Items are taken in rounds, each in record order: what lies side by side in memory is read one after another.

Product::Product(const Graph& graph, std::span<const Item> tops) : graph_(graph), nodes_(at(graph.items())) {
    items_.reserve(nodes_.size());
    for (const Item top : tops) reach(top, 0);
    tops_ = items_.size();
    for (std::size_t begin = 0, end = tops_; begin < end; begin = end, end = items_.size()) {
        if (begin > 0) sort_round(items_, begin);
        for (std::size_t i = begin; i < end; ++i) reach_children(items_[i]);
    }
    sort_top_down();
}

void Product::reach(Item item, std::int32_t level) {
    if (holds(item)) return;
    nodes_[at(item)].level = level;
    items_.push_back(item);
}

void Product::reach_children(Item item) {
    const std::int32_t below = level(item) + 1;
    for (const Line line : graph_.children(item)) {
        const Item child = graph_.child(line);
        if (child == kNone) continue;
        reach(child, below);
        ++nodes_[at(child)].uses;
    }
}

/// The items of a round all differ. Many are sorted by marking them and reading the marks.
void Product::sort_round(std::vector<Item>& items, std::size_t begin) {
    constexpr unsigned kBits = 64;
    if ((items.size() - begin) * kBits < nodes_.size())
        return std::sort(items.begin() + static_cast<std::ptrdiff_t>(begin), items.end());
    marked_.assign(nodes_.size() / kBits + 1, 0);
    for (std::size_t i = begin; i < items.size(); ++i)
        marked_[at(items[i]) / kBits] |= std::uint64_t{1} << at(items[i]) % kBits;
    for (std::size_t word = 0; word < marked_.size(); ++word) {
        for (std::uint64_t bits = marked_[word]; bits; bits &= bits - 1)
            items[begin++] = static_cast<Item>(word * kBits + static_cast<unsigned>(std::countr_zero(bits)));
    }
}

/// Takes the items that no line of the rest names, again and again.
void Product::sort_top_down() {
    std::vector<std::int32_t> left(nodes_.size());
    top_down_.reserve(items_.size());
    for (const Item item : items_) {
        left[at(item)] = uses(item);
        if (uses(item) == 0) top_down_.push_back(item);
    }
    for (std::size_t begin = 0, end = top_down_.size(); begin < end; begin = end, end = top_down_.size()) {
        sort_round(top_down_, begin);
        for (std::size_t i = begin; i < end; ++i) {
            for (const Line line : graph_.children(top_down_[i])) {
                const Item child = graph_.child(line);
                if (child != kNone && --left[at(child)] == 0) top_down_.push_back(child);
            }
        }
    }
}

std::vector<char> Product::endless() const {
    std::vector<char> endless(nodes_.size());
    for (const Item item : items_) endless[at(item)] = 1;
    for (const Item item : top_down_) endless[at(item)] = 0;
    return endless;
}

std::vector<Decimal> Product::quantities() const {
    std::vector<Decimal> quantities(nodes_.size());
    for (std::size_t top = 0; top < tops_; ++top) quantities[at(items_[top])] = Decimal(1);
    for (const Item item : top_down_) {
        quantities[at(item)].drop_zeros();
        const Decimal above = quantities[at(item)];
        for (const Line line : graph_.children(item)) {
            const Item child = graph_.child(line);
            if (child == kNone) continue;
            try {
                quantities[at(child)].add_product(above, graph_.quantity(line));
            } catch (const Overflow&) {
                throw ItemOverflow(child);
            }
        }
    }
    return quantities;
}

Product::Value Product::sum_of_children(Item item, const std::vector<Value>& values) const {
    Value result;
    for (const Line line : graph_.children(item)) {
        const Item child = graph_.child(line);
        if (child == kNone) {
            result.complete = false;
            continue;
        }
        result.sum.add_product(graph_.quantity(line), values[at(child)].sum);
        result.complete = result.complete && values[at(child)].complete;
    }
    result.sum.drop_zeros();
    return result;
}

std::vector<Product::Value> Product::roll_up(const std::vector<std::optional<Decimal>>& own,
                                             bool override_sums) const {
    std::vector<Value> values(nodes_.size());
    for (auto item = top_down_.rbegin(); item != top_down_.rend(); ++item) {
        const std::optional<Decimal>& given = own[at(*item)];
        const bool counts = graph_.children(*item).empty() || (override_sums && given);
        try {
            values[at(*item)] =
                counts ? Value{given.value_or(Decimal()), given.has_value()} : sum_of_children(*item, values);
        } catch (const Overflow&) {
            throw ItemOverflow(*item);
        }
    }
    return values;
}

}  // namespace bom

// SPDX-License-Identifier: MIT
#include "bom/walk.h"

#include <utility>

namespace bom {

namespace {

std::size_t at(std::int32_t number) {
    return static_cast<std::size_t>(number);
}

}  // namespace

// ---- Down ----------------------------------------------------------------------------------------------------

TreeWalk::TreeWalk(const Graph& graph, std::vector<Item> tops, const Options& options)
    : graph_(graph),
      tops_(std::move(tops)),
      options_(options),
      above_(at(graph.items())),
      followed_from_(at(graph.items()), std::numeric_limits<std::int32_t>::max()) {}

bool TreeWalk::next() {
    while (!steps_.empty() && steps_.back().next == graph_.children(steps_.back().item).size()) leave();
    if (steps_.empty()) {
        if (next_top_ == tops_.size()) return false;
        visit(tops_[next_top_++], kNone, Decimal(1));
    } else {
        Step& step = steps_.back();
        const Line line = graph_.children(step.item)[step.next++];
        visit(graph_.child(line), line, step.total);
    }
    return true;
}

void TreeWalk::visit(Item item, Line line, const Decimal& above) {
    row_.item = item;
    row_.line = line;
    row_.level = static_cast<std::int32_t>(steps_.size());
    row_.quantity = line == kNone ? Decimal(1) : graph_.quantity(line);
    row_.total = above * row_.quantity;
    row_.follow = follow(item);
    if (row_.follow != Follow::kBelow) return;
    steps_.push_back({item, row_.total});
    above_[at(item)] = 1;
    followed_from_[at(item)] = row_.level;
}

TreeWalk::Follow TreeWalk::follow(Item item) const {
    if (item == kNone || graph_.children(item).empty()) return Follow::kNothing;
    if (above_[at(item)]) return Follow::kCycle;
    // Followed from a deeper level, the depth may have cut off what this row could show.
    const bool whole = options_.depth == std::numeric_limits<std::int32_t>::max();
    const std::int32_t before = followed_from_[at(item)];
    if (!options_.repeat && (before <= row_.level || (whole && before != std::numeric_limits<std::int32_t>::max()))) {
        return Follow::kAgain;
    }
    return row_.level < options_.depth ? Follow::kBelow : Follow::kDepth;
}

void TreeWalk::leave() {
    above_[at(steps_.back().item)] = 0;
    steps_.pop_back();
}

bool TreeWalk::is_last() const {
    const bool opened = row_.follow == Follow::kBelow;
    if (steps_.size() == (opened ? 1U : 0U)) return next_top_ == tops_.size();
    const Step& parent = steps_[steps_.size() - (opened ? 2 : 1)];
    return parent.next == graph_.children(parent.item).size();
}

std::vector<Item> TreeWalk::path() const {
    std::vector<Item> items;
    for (const Step& step : steps_) items.push_back(step.item);
    if (row_.follow != Follow::kBelow) items.push_back(row_.item);
    return items;
}

// ---- Up ------------------------------------------------------------------------------------------------------

UpWalk::UpWalk(const Graph& graph, Item item) : graph_(graph), items_{item}, taken_{0}, above_(at(graph.items())) {
    above_[at(item)] = 1;
}

bool UpWalk::next() {
    if (!retreat()) return false;
    do {
        take(users()[taken_.back()++]);
        if (is_dangling() || is_cycle() || graph_.parents(end_).empty()) return true;
        items_.push_back(end_);
        taken_.push_back(0);
        above_[at(end_)] = 1;
    } while (true);
}

/// Back to the nearest item of the path that has users left.
bool UpWalk::retreat() {
    while (taken_.back() == users().size()) {
        if (items_.size() == 1) return false;
        above_[at(items_.back())] = 0;
        items_.pop_back();
        taken_.pop_back();
    }
    return true;
}

void UpWalk::take(Line line) {
    path_.resize(items_.size() - 1);
    totals_.resize(items_.size() - 1);
    totals_.push_back(totals_.empty() ? graph_.quantity(line) : totals_.back() * graph_.quantity(line));
    path_.push_back(line);
    end_ = graph_.parent(line);
}

}  // namespace bom

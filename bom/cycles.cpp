// SPDX-License-Identifier: MIT
#include "bom/cycles.h"

#include <algorithm>
#include <utility>

namespace bom {

namespace {

std::size_t at(std::int32_t number) {
    return static_cast<std::size_t>(number);
}

/// Parts the items into groups whose members all consist of each other: the algorithm of Tarjan on a stack of its
/// own.
class Groups {
public:
    Groups(const Graph& graph, const std::vector<char>& among)
        : graph_(graph), among_(among), group_(at(graph.items()), kNone), order_(at(graph.items()), kNone) {
        low_ = order_;
        for (Item item = 0; item < graph.items(); ++item) {
            if (among[at(item)] && order_[at(item)] == kNone) search(item);
        }
    }

    std::int32_t of(Item item) const { return item == kNone ? kNone : group_[at(item)]; }
    std::int32_t count() const { return groups_; }

    bool joins(Line line) const {
        const std::int32_t group = of(graph_.parent(line));
        return group != kNone && group == of(graph_.child(line));
    }

private:
    struct Step {
        Item item;
        std::size_t next;
    };

    void enter(Item item) {
        order_[at(item)] = low_[at(item)] = entered_++;
        open_.push_back(item);
        steps_.push_back({item, 0});
    }

    void search(Item from) {
        enter(from);
        while (!steps_.empty()) {
            Step& step = steps_.back();
            const auto lines = graph_.children(step.item);
            if (step.next == lines.size()) {
                leave();
            } else {
                look(step.item, graph_.child(lines[step.next++]));
            }
        }
    }

    void look(Item item, Item child) {
        if (child == kNone || !among_[at(child)]) return;
        if (order_[at(child)] == kNone) {
            enter(child);
        } else if (group_[at(child)] == kNone) {
            low_[at(item)] = std::min(low_[at(item)], order_[at(child)]);
        }
    }

    void leave() {
        const Item item = steps_.back().item;
        steps_.pop_back();
        if (!steps_.empty()) {
            std::int32_t& above = low_[at(steps_.back().item)];
            above = std::min(above, low_[at(item)]);
        }
        if (low_[at(item)] != order_[at(item)]) return;
        for (Item member = kNone; member != item; open_.pop_back()) {
            member = open_.back();
            group_[at(member)] = groups_;
        }
        ++groups_;
    }

    const Graph& graph_;
    const std::vector<char>& among_;
    std::vector<std::int32_t> group_, order_, low_;  // by item
    std::vector<Item> open_;
    std::vector<Step> steps_;
    std::int32_t entered_ = 0, groups_ = 0;
};

/// Names paths until every line of a group stands in one, or there is no time left.
class Naming {
public:
    Naming(const Graph& graph, const Groups& groups)
        : graph_(graph),
          groups_(groups),
          named_(at(graph.lines())),
          reached_by_(at(graph.items())),
          search_(at(graph.items())),
          time_left_(at(graph.lines()) + 1'000'000) {}

    Cycles name_all() {
        for (const Inner& inner : inner_lines()) {
            if (named_[at(inner.line)]) continue;
            if (time_left_ > 0 || inner.group != last_group_) {
                name(inner.line);
                last_group_ = inner.group;
            } else {
                count_left(inner);
            }
        }
        std::sort(cycles_.paths.begin(), cycles_.paths.end(), [this](const auto& a, const auto& b) {
            return std::pair(graph_.parent(a[0]), a[0]) < std::pair(graph_.parent(b[0]), b[0]);
        });
        list_tangled_items();
        return std::move(cycles_);
    }

private:
    /// A line between two items of one group.
    struct Inner {
        std::int32_t group_size, group;
        Line line;
        auto operator<=>(const Inner&) const = default;
    };

    /// Those of small groups first: time is short for large ones only.
    std::vector<Inner> inner_lines() const {
        std::vector<std::int32_t> size(at(groups_.count()));
        std::vector<Inner> lines;
        for (Line line = 0; line < graph_.lines(); ++line) {
            if (!groups_.joins(line)) continue;
            lines.push_back({0, groups_.of(graph_.parent(line)), line});
            ++size[at(lines.back().group)];
        }
        for (Inner& inner : lines) inner.group_size = size[at(inner.group)];
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    /// The shortest path back from the end of a line to its beginning.
    void name(Line first) {
        const Item goal = graph_.parent(first);
        ++searches_;
        queue_.assign(1, graph_.child(first));
        search_[at(queue_[0])] = searches_;
        for (std::size_t i = 0; i < queue_.size() && search_[at(goal)] != searches_; ++i) {
            for (const Line line : graph_.children(queue_[i])) reach(line);
        }
        std::vector<Line> path{first};
        for (Item item = goal; item != graph_.child(first); item = graph_.parent(path.back())) {
            path.push_back(reached_by_[at(item)]);
        }
        std::reverse(path.begin(), path.end());
        keep(std::move(path));
    }

    void reach(Line line) {
        time_left_ -= time_left_ > 0;
        if (!groups_.joins(line) || search_[at(graph_.child(line))] == searches_) return;
        search_[at(graph_.child(line))] = searches_;
        reached_by_[at(graph_.child(line))] = line;
        queue_.push_back(graph_.child(line));
    }

    void keep(std::vector<Line> path) {
        for (const Line line : path) mark_named(line);
        const auto first = std::min_element(path.begin(), path.end(),
                                            [this](Line a, Line b) { return graph_.parent(a) < graph_.parent(b); });
        std::rotate(path.begin(), first, path.end());
        cycles_.paths.push_back(std::move(path));
    }

    /// Lines between the same two items make one cycle.
    void mark_named(Line line) {
        for (const Line twin : graph_.children(graph_.parent(line))) {
            time_left_ -= time_left_ > 0;
            if (graph_.child(twin) == graph_.child(line)) named_[at(twin)] = 1;
        }
    }

    void count_left(const Inner& inner) {
        if (tangle_.empty()) tangle_.assign(at(groups_.count()), kNone);
        std::int32_t& tangle = tangle_[at(inner.group)];
        if (tangle == kNone) {
            tangle = static_cast<std::int32_t>(cycles_.tangles.size());
            cycles_.tangles.emplace_back();
        }
        ++cycles_.tangles[at(tangle)].lines_left;
    }

    void list_tangled_items() {
        if (tangle_.empty()) return;
        for (Item item = 0; item < graph_.items(); ++item) {
            const std::int32_t group = groups_.of(item);
            if (group != kNone && tangle_[at(group)] != kNone) {
                cycles_.tangles[at(tangle_[at(group)])].items.push_back(item);
            }
        }
    }

    const Graph& graph_;
    const Groups& groups_;
    std::vector<char> named_;           // by line
    std::vector<Line> reached_by_;      // by item
    std::vector<std::int32_t> search_;  // by item: the last search that reached it
    std::vector<std::int32_t> tangle_;  // by group: its place in tangles, or kNone
    std::vector<Item> queue_;
    std::int32_t searches_ = 0;
    std::int32_t last_group_ = kNone;
    std::size_t time_left_;  // in lines
    Cycles cycles_;
};

}  // namespace

Cycles find_cycles(const Graph& graph, const std::vector<char>& among) {
    const std::vector<char> all(among.empty() ? at(graph.items()) : 0, 1);
    const Groups groups(graph, among.empty() ? all : among);
    return Naming(graph, groups).name_all();
}

}  // namespace bom

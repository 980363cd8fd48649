// SPDX-License-Identifier: MIT
#include "offline/tables/rank_sort.h"

#include <algorithm>

#include "offline/tables/rank_extremes.h"
#include "offline/tables/tie_order_sort.h"

namespace vlt {

namespace {

/// Items `lo` to `hi` - 1 and the ranks among them: how many there are of the lowest and of the highest rank; of
/// those between, all that exist. When the two are the same rank, both counts are the number of items.
struct Part {
    std::size_t lo;
    std::size_t hi;
    std::uint32_t lowest;
    std::uint32_t highest;
    std::size_t of_lowest;
    std::size_t of_highest;

    std::size_t size() const { return hi - lo; }
};

// A partition is lopsided when one of its sides has fewer items than this part of it. Walking over all of it for so
// little is what makes a quicksort quadratic.
constexpr std::size_t kLopsided = 128;

// Items walked over in lopsided partitions, as a multiple of all, before the sort changes to leaps.
constexpr std::size_t kPatience = 12;

class RankSorter {
public:
    RankSorter(RankedItem* items, std::size_t count, const std::uint32_t* before)
        : items_(items), count_(count), before_(before) {}

    void sort(Part part) {
        while (true) {
            if (part.size() <= static_cast<std::size_t>(KARRAY_SORT_CUTOFF)) {
                select(part.lo, part.hi);
            } else if (partition(&part)) {
                continue;
            }
            if (depth_ == 0) return;
            part = stack_[--depth_];
        }
    }

private:
    /// Items that exist with a rank from `from` to `to` - 1.
    std::size_t between(std::uint32_t from, std::uint32_t to) const { return before_[to] - before_[from]; }

    void select(std::size_t lo, std::size_t hi) {
        for (; hi > lo + 1; --hi) {
            std::size_t largest = lo;
            for (std::size_t at = lo + 1; at < hi; ++at) {
                if (rank_of(items_[at]) > rank_of(items_[largest])) largest = at;
            }
            std::swap(items_[largest], items_[hi - 1]);
        }
    }

    /// Does to the part what KArray_Sort does about its middle element; false when nothing is left to go on with.
    bool partition(Part* part) {
        swap(part->lo, part->lo + part->size() / 2, extremes_.built());
        const std::uint32_t pivot = rank_of(items_[part->lo]);
        if (part->lowest == part->highest) return false;
        if (pivot == part->lowest) return drop_lowest(part);
        if (pivot == part->highest) return drop_highest(part);
        return split(part, pivot);
    }

    /// The right cursor runs to the front: nothing moves, and the items that the left one passes are in place.
    bool drop_lowest(Part* part) {
        std::size_t left = part->lo + 1;
        while (rank_of(items_[left]) == part->lowest) ++left;
        part->of_lowest -= left - part->lo;
        part->lo = left;
        if (part->of_lowest == 0) raise_lowest(part);
        return part->size() > 1;
    }

    /// The left cursor runs over the end: the pivot goes to the place of the last smaller item.
    bool drop_highest(Part* part) {
        std::size_t right = part->hi - 1;
        while (rank_of(items_[right]) == part->highest) --right;
        swap(part->lo, right, extremes_.built());
        part->of_highest -= part->hi - right;
        part->hi = right;
        if (part->of_highest == 0) lower_highest(part);
        return part->size() > 1;
    }

    /// The lowest rank has no items left in the part.
    void raise_lowest(Part* part) const {
        ++part->lowest;
        part->of_lowest = part->lowest == part->highest ? part->of_highest : between(part->lowest, part->lowest + 1);
    }

    void lower_highest(Part* part) const {
        --part->highest;
        part->of_highest =
            part->lowest == part->highest ? part->of_lowest : between(part->highest, part->highest + 1);
    }

    bool split(Part* part, std::uint32_t pivot) {
        const std::size_t smaller = part->of_lowest + between(part->lowest + 1, pivot);
        const std::size_t larger = part->of_highest + between(pivot + 1, part->highest);
        const Cursors met = exchange(*part, pivot, std::min(smaller, larger) < part->size() / kLopsided);
        Part near{part->lo, met.right, part->lowest, pivot, part->of_lowest, 0};
        Part far{met.left, part->hi, pivot, part->highest, 0, part->of_highest};
        near.of_highest = near.size() - smaller;
        far.of_lowest = far.size() - larger;
        if (near.of_highest == 0) lower_highest(&near);
        if (far.of_lowest == 0) raise_lowest(&far);
        if (near.size() >= far.size()) std::swap(near, far);
        if (far.size() > 1) stack_[depth_++] = far;
        *part = near;
        return near.size() > 1;
    }

    struct Cursors {
        std::size_t left;
        std::size_t right;
    };

    /// Moves the larger items behind the smaller ones; those equal to the pivot stay where they are.
    Cursors exchange(const Part& part, std::uint32_t pivot, bool lopsided) {
        if (lopsided && lose_patience(part.size())) return exchange_by_leaps(part, pivot);
        const Cursors met = exchange_by_steps(part, pivot);
        if (extremes_.built()) extremes_.refresh(part.lo, part.hi);
        return met;
    }

    /// Whether it is time for leaps, which they are once and for all when too many items were walked over for little.
    bool lose_patience(std::size_t size) {
        if (extremes_.built()) return true;
        wasted_ += size;
        return wasted_ / kPatience > count_ && extremes_.build(items_, count_);
    }

    Cursors exchange_by_steps(const Part& part, std::uint32_t pivot) {
        std::size_t left = part.lo;
        std::size_t right = part.hi;
        while (true) {
            do ++left;
            while (left < part.hi && rank_of(items_[left]) <= pivot);
            do --right;
            while (right > part.lo && rank_of(items_[right]) >= pivot);
            if (right < left) break;
            swap(left, right, false);
        }
        swap(part.lo, right, false);
        return {left, right};
    }

    Cursors exchange_by_leaps(const Part& part, std::uint32_t pivot) {
        std::size_t left = part.lo;
        std::size_t right = part.hi;
        while (true) {
            left = extremes_.next_above(left + 1, part.hi, pivot);
            right = extremes_.last_below(part.lo, right, pivot);
            if (right < left) break;
            swap(left, right, true);
        }
        swap(part.lo, right, true);
        return {left, right};
    }

    void swap(std::size_t a, std::size_t b, bool noted) {
        std::swap(items_[a], items_[b]);
        if (!noted) return;
        extremes_.refresh(a, a + 1);
        extremes_.refresh(b, b + 1);
    }

    RankedItem* items_;
    std::size_t count_;
    const std::uint32_t* before_;
    Part stack_[8 * sizeof(std::size_t)];
    int depth_ = 0;
    std::size_t wasted_ = 0;
    RankExtremes extremes_;
};

}  // namespace

void rank_sort(RankedItem* items, std::size_t count, const std::uint32_t* before, std::uint32_t ranks) {
    if (count < 2) return;
    const Part all{0, count, 0, ranks - 1, before[1], count - before[ranks - 1]};
    RankSorter(items, count, before).sort(all);
}

}  // namespace vlt

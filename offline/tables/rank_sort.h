// SPDX-License-Identifier: MIT
// KArray_Sort over elements whose final order is known but for equal ones: the same exchanges, element by element, in
// near-linear time where that sort is quadratic.
//
// An item carries the dense rank of its value in the upper half (0 for the smallest value, equal values alike) and
// anything in the lower. What KArray_Sort does depends on comparisons alone, and ranks compare as the values do. Of a
// partition it is known, without looking, which ranks it holds and how many of each: only its lowest and its highest
// rank can reach over into the neighbours, every rank between lies wholly inside. So when the pivot turns out to be
// the lowest rank, the right cursor is known to run to the front, and when it is the highest, the left cursor is
// known to run over the end; neither needs to walk, and what the other walks over is done with for good.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vlt {

using RankedItem = std::uint64_t;

constexpr RankedItem ranked_item(std::uint32_t rank, std::uint32_t payload) {
    return RankedItem{rank} << 32 | payload;
}

constexpr std::uint32_t rank_of(RankedItem item) {
    return static_cast<std::uint32_t>(item >> 32);
}

/// Sorts by rank. `before[r]` is the number of items with a rank below r, for r from 0 to the number of ranks.
void rank_sort(RankedItem* items, std::size_t count, const std::uint32_t* before, std::uint32_t ranks);

}  // namespace vlt

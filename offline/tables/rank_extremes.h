// SPDX-License-Identifier: MIT
// The lowest and the highest rank of every stretch of an array of ranked items, kept in a tree over blocks of items,
// so that the next item above or below a rank is found without walking over the others.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/heap.h"
#include "offline/tables/rank_sort.h"

namespace vlt {

class RankExtremes {
public:
    /// Items of a block. Blocks on the edge of a stretch are walked over.
    static constexpr std::size_t kBlock = 16;

    /// Made for the items as they are; false when memory runs out.
    bool build(const RankedItem* items, std::size_t count);

    bool built() const { return static_cast<bool>(lowest_); }

    /// The items from `lo` to `hi` - 1 have changed.
    void refresh(std::size_t lo, std::size_t hi);

    /// The first item from `from` to `hi` - 1 with a rank above `rank`, else `hi`.
    std::size_t next_above(std::size_t from, std::size_t hi, std::uint32_t rank) const;

    /// The last item from `lo` + 1 to `from` - 1 with a rank below `rank`, else `lo`.
    std::size_t last_below(std::size_t lo, std::size_t from, std::uint32_t rank) const;

private:
    void refresh_block(std::size_t block);
    std::size_t next_block_above(std::size_t block, std::uint32_t rank) const;
    std::size_t last_block_below(std::size_t block, std::uint32_t rank) const;

    const RankedItem* items_ = nullptr;
    std::size_t count_ = 0;
    std::size_t leaves_ = 0;  // a power of two; node n has the children 2n and 2n + 1, the leaves come last
    HeapBlock<std::uint32_t> lowest_;
    HeapBlock<std::uint32_t> highest_;
};

}  // namespace vlt

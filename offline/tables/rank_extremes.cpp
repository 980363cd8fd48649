// SPDX-License-Identifier: MIT
#include "offline/tables/rank_extremes.h"

#include <algorithm>
#include <bit>

namespace vlt {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);
constexpr std::uint32_t kNoLowest = 0xffffffff;  // of a block without items; its highest is 0

}  // namespace

bool RankExtremes::build(const RankedItem* items, std::size_t count) {
    leaves_ = std::bit_ceil((count + kBlock - 1) / kBlock);
    auto lowest = HeapBlock<std::uint32_t>::of(2 * leaves_);
    auto highest = HeapBlock<std::uint32_t>::of(2 * leaves_);
    if (!lowest || !highest) return false;
    std::fill_n(lowest.get(), 2 * leaves_, kNoLowest);
    std::fill_n(highest.get(), 2 * leaves_, 0);
    lowest_ = static_cast<HeapBlock<std::uint32_t>&&>(lowest);
    highest_ = static_cast<HeapBlock<std::uint32_t>&&>(highest);
    items_ = items;
    count_ = count;
    refresh(0, count);
    return true;
}

void RankExtremes::refresh(std::size_t lo, std::size_t hi) {
    std::size_t first = lo / kBlock;
    std::size_t last = (hi - 1) / kBlock;
    for (std::size_t block = first; block <= last; ++block) refresh_block(block);
    first += leaves_;
    last += leaves_;
    while (first > 1) {
        first /= 2;
        last /= 2;
        for (std::size_t node = first; node <= last; ++node) {
            lowest_[node] = std::min(lowest_[2 * node], lowest_[2 * node + 1]);
            highest_[node] = std::max(highest_[2 * node], highest_[2 * node + 1]);
        }
    }
}

void RankExtremes::refresh_block(std::size_t block) {
    const std::size_t end = std::min((block + 1) * kBlock, count_);
    std::uint32_t lowest = kNoLowest;
    std::uint32_t highest = 0;
    for (std::size_t i = block * kBlock; i < end; ++i) {
        lowest = std::min(lowest, rank_of(items_[i]));
        highest = std::max(highest, rank_of(items_[i]));
    }
    lowest_[leaves_ + block] = lowest;
    highest_[leaves_ + block] = highest;
}

std::size_t RankExtremes::next_above(std::size_t from, std::size_t hi, std::uint32_t rank) const {
    while (from < hi) {
        const std::size_t end = std::min((from / kBlock + 1) * kBlock, hi);
        for (; from < end; ++from) {
            if (rank_of(items_[from]) > rank) return from;
        }
        const std::size_t block = next_block_above(from / kBlock, rank);
        if (block == kNone) return hi;
        from = std::max(from, block * kBlock);
    }
    return hi;
}

std::size_t RankExtremes::last_below(std::size_t lo, std::size_t from, std::uint32_t rank) const {
    while (from > lo + 1) {
        const std::size_t begin = std::max((from - 1) / kBlock * kBlock, lo + 1);
        for (; from > begin; --from) {
            if (rank_of(items_[from - 1]) < rank) return from - 1;
        }
        if (from == lo + 1) return lo;
        const std::size_t block = last_block_below((from - 1) / kBlock, rank);
        if (block == kNone) return lo;
        from = std::min(from, (block + 1) * kBlock);
    }
    return lo;
}

std::size_t RankExtremes::next_block_above(std::size_t block, std::uint32_t rank) const {
    if (block >= leaves_) return kNone;
    std::size_t node = leaves_ + block;
    while (highest_[node] <= rank) {
        while (node & 1) node /= 2;  // out of the right side of every parent: its other side has been seen
        if (node == 0) return kNone;
        ++node;
    }
    while (node < leaves_) node = highest_[2 * node] > rank ? 2 * node : 2 * node + 1;
    return node - leaves_;
}

std::size_t RankExtremes::last_block_below(std::size_t block, std::uint32_t rank) const {
    std::size_t node = leaves_ + block;
    while (lowest_[node] >= rank) {
        while (!(node & 1)) node /= 2;
        if (node == 1) return kNone;
        --node;
    }
    while (node < leaves_) node = lowest_[2 * node + 1] < rank ? 2 * node + 1 : 2 * node;
    return node - leaves_;
}

}  // namespace vlt

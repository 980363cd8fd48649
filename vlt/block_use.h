// SPDX-License-Identifier: MIT
// Which blocks are free, and which ones somebody names: the one place that knows.
//
// A block may be given away when its map word says that it is free, the header and directory do not hold it, and no
// chain leads to it: no entry names it as its first, and no word that such a chain reaches names it as next. The open
// files know no other blocks than those. In a sound package a free block is never named, and every other block is
// named once. What departs from that is held in `ContestedBlocks`, so that damage stays where it is.
#pragma once

#include <cstdint>

#include "base/array.h"
#include "base/index_set.h"

namespace vlt {

struct Store;

/// Blocks of a damaged package that chains lead to more than once, or that a chain leads to though they do not exist,
/// with how many links lead there: from an entry, or from the block before. None in a sound package.
class ContestedBlocks {
public:
    /// Whether a link leads to the block still; false also for one that is not contested.
    bool contains(std::int32_t block) const { return !linked_.empty() && links_to(block) > 0; }

    /// Whether more than one link leads to the block.
    bool shared(std::int32_t block) const { return !linked_.empty() && links_to(block) > 1; }

    /// Takes one link to a block away. True when no other is left; so it is with a block that is not contested.
    bool lose_link(std::int32_t block) { return linked_.empty() || lose_link_to_contested(block); }

    // While the package is searched for them:

    /// Notes a link to a block: each one where it does not exist, each but the first where it does. False when memory
    /// runs out.
    [[nodiscard]] bool note(std::int32_t block) { return linked_.push_back({block, 1}); }
    /// Ends the search. Blocks below `existing` exist.
    void settle(std::int32_t existing);

    void clear() { linked_.clear(); }

private:
    struct Linked {
        std::int32_t block;
        std::int32_t links;
    };
    bool lose_link_to_contested(std::int32_t block);
    const Linked* find(std::int32_t block) const;
    std::int32_t links_to(std::int32_t block) const;

    Array<Linked> linked_;  // each block once, in their order
};

struct Blocks {
    bool searched = false;      // until then the rest is empty
    IndexSet free;              // blocks that may be given away
    ContestedBlocks contested;  // blocks that more links lead to than should
};

/// Searches the package for its free blocks once. False when memory runs out.
bool search_blocks(Store& store);

/// Makes room among the free blocks for every block below `limit`; false when memory runs out.
[[nodiscard]] bool reserve_blocks(Store& store, std::int32_t limit);

/// Counts a block that came into being, or got its map word: a free one, unless its word says that it is in use or a
/// chain leads to it. That is so where the host file had lost its end, and the block still belongs to a file.
void add_new_block(Store& store, std::int32_t block);

/// Takes a block out of the free ones.
void take_block(Store& store, std::int32_t block);

/// Gives back a block whose word is 0 now and which nobody names any more.
void give_block_back(Store& store, std::int32_t block);

}  // namespace vlt

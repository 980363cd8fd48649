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
/// with how often they are named. None in a sound package.
class ContestedBlocks {
public:
    /// Whether anybody names the block; false also for one that is not contested.
    bool contains(std::int32_t block) const { return !named_.empty() && names_of(block) > 0; }

    /// Whether more than one name leads to the block.
    bool shared(std::int32_t block) const { return !named_.empty() && names_of(block) > 1; }

    /// Takes one name from a block. True when nobody else names it; so it is with a block that is not contested.
    bool lose_name(std::int32_t block) { return named_.empty() || lose_name_of_contested(block); }

    // While the package is searched for them:

    /// Notes a name of a block: each one that does not exist, each but the first of one that does. False when memory
    /// runs out.
    [[nodiscard]] bool note(std::int32_t block) { return named_.push_back({block, 1}); }
    /// Ends the search. Blocks below `existing` exist.
    void settle(std::int32_t existing);

    void clear() { named_.clear(); }

private:
    struct Named {
        std::int32_t block;
        std::int32_t names;
    };
    bool lose_name_of_contested(std::int32_t block);
    const Named* find(std::int32_t block) const;
    std::int32_t names_of(std::int32_t block) const;

    Array<Named> named_;  // each block once, in their order
};

struct Blocks {
    bool counted = false;       // the package has been searched; until then the rest is empty
    IndexSet free;              // blocks that may be given away
    ContestedBlocks contested;  // blocks that are named more often than they should be
};

/// Searches the package for its free blocks once. False when memory runs out.
bool count_blocks(Store& store);

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

// SPDX-License-Identifier: MIT
// Data chains growing and being released.
#pragma once

#include <cstdint>

#include "vlt/store.h"

namespace vlt {

/// Blocks on their way into a data chain. They are allocated in memory first, so that the bytes they are wanted for
/// can be written; only the commit makes the host file's map name them. So a host file that fails, or a process that
/// ends, leaves orphaned blocks at the worst, in use and in no chain, and never a chain that leads to a free block.
class ChainExtension {
public:
    ChainExtension(Store& store, KnownChain& chain) : store_(store), chain_(chain) {}
    ChainExtension(const ChainExtension&) = delete;
    ChainExtension& operator=(const ChainExtension&) = delete;

    /// Rolls back what was allocated and not committed.
    ~ChainExtension();

    /// Allocates `count` free blocks, lowest index first, growing the package when there are too few. `stored` is how
    /// many blocks of the chain hold stored bytes; `appends`: none of those will be written before the commit. False
    /// when the package cannot grow, the chain has no end, or memory runs out; nothing is allocated then.
    bool allocate(std::int32_t stored, std::int32_t count, bool appends);

    /// Writes the map words through, after the chain's bytes were written up to the offset `end`. False when the host
    /// file fails; the blocks stay in use then, and no chain holds them.
    bool commit(std::int64_t end);

private:
    bool drop_end(std::int32_t stored);
    bool grow_unwritten(std::int32_t count);
    bool take_blocks(std::int32_t count);
    bool write_words_of_new_blocks();

    Store& store_;
    KnownChain& chain_;
    std::int32_t old_length_ = -1;     // of the chain; -1 when nothing is allocated
    std::int32_t dropped_ = -1;        // the block that followed in the chain, cut off from it; -1 for none
    std::int32_t before_ = -1;         // the block that gets the link to the new ones, -1 for none
    std::uint32_t old_word_ = 0;       // its map word
    std::int32_t unwritten_from_ = 0;  // blocks from this one on are counted, but not yet in the host file; 0: none
};

/// Frees the data chain that starts at a block number; 0 frees nothing. The walk ends at the first block that no
/// stored file can own, that looks free, or to which one more link leads, of another chain or of this one. The blocks
/// must have been counted. False when the host file fails; the blocks not yet reached stay in use.
bool release_chain(Store& store, std::uint32_t first_block);

}  // namespace vlt

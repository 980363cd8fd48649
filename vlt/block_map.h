// SPDX-License-Identifier: MIT
// What the parts of the block store share: the way from blocks to the host file, and the block map.
#pragma once

#include "vlt/block_store.h"

/// Where a block lies in the host file.
inline std::int64_t vlt_host_offset(const vlt_store& store, std::int32_t block) {
    return store.base_offset + std::int64_t{block} * VLT_BLOCK_SIZE;
}

/// Whether a block can belong to a stored file: it has a map word, and the package's own chains do not hold it.
inline bool vlt_may_hold_data(const vlt_store& store, std::int64_t block) {
    return block >= 0 && block < store.mapped_blocks() && !store.own_blocks.contains(static_cast<std::size_t>(block));
}

/// Makes the chain known up to `position`, or as far as it goes. A chain cannot be longer than the package, so one
/// that loops ends there. False when memory runs out.
bool vlt_chain_learn(vlt_store& store, vlt_chain& chain, std::int64_t position);

/// A map word with its link led to a block.
inline std::uint32_t vlt_map_link(std::uint32_t word, std::int32_t next_block) {
    return (word & ~VLT_NEXT_MASK) | static_cast<std::uint32_t>(next_block + 1);
}

/// Writes the map words of a row of blocks through. Words side by side are one piece of the header run.
bool vlt_map_put(vlt_store& store, std::int32_t block, std::int32_t count);

/// Finds the free blocks once. A block that looks free while a used word names it as next, or an entry as its first,
/// is left alone: a growth of a chain that was cut off between two writes leaves such a block, and so does damage,
/// and giving it to another file would tie the two files together.
bool vlt_blocks_count(vlt_store& store);

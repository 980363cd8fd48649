// SPDX-License-Identifier: MIT
// Blocks that look like parts of a header or of a directory, wherever in a package they lie.
#pragma once

#include <functional>

#include "inspect/package.h"

namespace inspect {

/// A block that holds directory entries. Where they begin in it tells, for a directory of any usual size, which block
/// of the directory it is: 4096 is no multiple of an entry.
struct DirectoryBlock {
    std::int32_t block;
    std::int16_t narrow_phase, wide_phase;  // offset of the first entry that begins in it, for either width
    std::int16_t narrow_hits, wide_hits;    // entries that begin where this phase has them
};

/// A block, other than the first, that holds map words.
struct HeaderBlock {
    std::int32_t block;
    std::int32_t position;  // in the header chain, as most of its words tell; -1 when they do not
};

struct Scan {
    std::vector<DirectoryBlock> directory;
    std::vector<HeaderBlock> header;
};

/// Called with pieces of the package as they are read: the index of the first block, the bytes, how many blocks.
using SeeBlocks = std::function<void(std::int32_t block, const std::uint8_t* bytes, std::int32_t count)>;

/// Reads all blocks of a package, in order. What cannot be read is zeros.
void ReadAllBlocks(const Package& package, const SeeBlocks& see);

/// Looks through all blocks; `see` may look along.
Scan ScanBlocks(const Package& package, const SeeBlocks& see = {});

/// Where in a block of the directory, by its position in the chain, the first entry begins.
constexpr int PhaseOf(std::int64_t position, int entry_size) {
    return static_cast<int>((entry_size - kBlock * position % entry_size) % entry_size);
}

/// Whether a block may be a header block at a position from 1 on, and if so, which: see HeaderBlock.
bool LooksLikeHeader(const std::uint8_t* block, std::int32_t* position);

}  // namespace inspect

// SPDX-License-Identifier: MIT
// The block map: what is in use, and which block follows which. Any word may be wrong, so every walk is bounded.
#pragma once

#include "inspect/format.h"
#include "inspect/source.h"

namespace inspect {

/// Consecutive blocks, by index.
struct Run {
    std::int32_t block = 0;
    std::int32_t count = 0;
};

/// A set of block indexes, one bit each.
class BlockSet {
public:
    explicit BlockSet(std::int32_t blocks) : bits_(static_cast<std::size_t>(blocks)) {}
    bool Has(std::int32_t block) const { return bits_[static_cast<std::size_t>(block)]; }
    void Add(std::int32_t block) { bits_[static_cast<std::size_t>(block)] = true; }

private:
    std::vector<bool> bits_;
};

class BlockMap {
public:
    BlockMap() = default;
    BlockMap(Bytes header_run, std::int32_t block_count) : run_(std::move(header_run)), block_count_(block_count) {}

    const Bytes& header_run() const { return run_; }
    std::int32_t block_count() const { return block_count_; }
    /// Words of the map, with those that stand for no block.
    std::int32_t word_count() const;

    /// The word of a block; 0 where the header run has none.
    std::uint32_t Word(std::int32_t block) const;
    bool Used(std::int32_t block) const { return (Word(block) & kUsed) != 0; }
    /// The index that a block's word leads to: -1 for none; it may lie outside of the package.
    std::int32_t Next(std::int32_t block) const { return static_cast<std::int32_t>(Word(block) & kNext) - 1; }
    bool Inside(std::int32_t block) const { return block >= 0 && block < block_count_; }

    /// The blocks of a chain. It ends where a link leads out of the package or back.
    std::vector<std::int32_t> Chain(std::int32_t start) const;

private:
    Bytes run_;
    std::int32_t block_count_ = 0;
};

/// The blocks of a chain one run after the other, `blocks` of them or as many as there are.
class ChainRuns {
public:
    ChainRuns(const BlockMap& map, std::int32_t start, std::int64_t blocks) : map_(map), at_(start), left_(blocks) {}
    /// The next run, of at most `most` blocks. False when there is none.
    bool Next(Run& run, std::int32_t most);

private:
    const BlockMap& map_;
    std::int32_t at_;
    std::int64_t left_;
};

}  // namespace inspect

// SPDX-License-Identifier: MIT
// The header run and the directory run of an open package, held in memory whole, with the chains that they come from.
// They equal what is in the host file when an operation has ended, except after a write that failed, and for stamps
// of reading that stay in memory (`EntryState`). `header_load` reads them, `own_chain_grow` lengthens them; map words
// are changed by those who write them through, entries by the operations on files.
#pragma once

#include <cstdint>

#include "base/array.h"
#include "base/index_set.h"
#include "vlt/format.h"
#include "vlt/known_chain.h"

namespace vlt {

/// A chain of the package's own, known whole, and its bytes.
struct OwnChain {
    KnownChain chain;
    Array<std::uint8_t> bytes;
};

class Images {
public:
    OwnChain header;
    OwnChain directory;
    IndexSet own_blocks;      // the blocks of both: no stored file may own one
    bool wide_names = false;  // names are UTF-16

    /// Whole map words that the header holds.
    std::int32_t map_capacity() const {
        return vlt::map_capacity(static_cast<std::int64_t>(header.bytes.size() / VLT_BLOCK_SIZE));
    }
    std::uint8_t* word_at(std::int32_t block) {
        return header.bytes.data() + VLT_MAP_OFFSET + 4 * static_cast<std::size_t>(block);
    }
    std::uint32_t word(std::int32_t block) { return load_at<std::uint32_t>(word_at(block)); }
    void set_word(std::int32_t block, std::uint32_t word) { store_at(word_at(block), word); }

    std::int32_t entry_size() const { return wide_names ? VLT_ENTRY_SIZE_WIDE : VLT_ENTRY_SIZE_NARROW; }
    std::int64_t entry_offset(std::int32_t index) const { return std::int64_t{index} * entry_size(); }
    std::uint8_t* entry_at(std::int32_t index) { return directory.bytes.data() + entry_offset(index); }
    vlt_dir_entry entry(std::int32_t index) { return vlt_dir_entry(entry_at(index)); }

    /// Number of entries that the directory image holds.
    std::int32_t vlt_dir_count() const { return entries_in(directory.bytes.size()); }
    /// Number of entries that it holds once it has grown by a block.
    std::int32_t dir_count_grown() const { return entries_in(directory.bytes.size() + VLT_BLOCK_SIZE); }

private:
    std::int32_t entries_in(std::size_t bytes) const {
        return static_cast<std::int32_t>(bytes / static_cast<std::size_t>(entry_size()));
    }
};

}  // namespace vlt

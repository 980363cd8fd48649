// SPDX-License-Identifier: MIT
// The block store: bytes in and out of chains, blocks in and out of use, growth of the package and its directory.
// Nothing else touches the host file of an open package. Callers hold the package's mutex, or own the package alone.
//
// Everything is addressed as (chain, offset within the chain). The header and directory images always equal what is
// in the host file, except after a write that failed.
#pragma once

#include <cstdint>

#include "base/array.h"
#include "base/index_set.h"
#include "base/owned.h"
#include "platform/mutex.h"
#include "vlt/chain.h"
#include "vlt/format.h"
#include "vlt/name_index.h"
#include "vlt/open_entries.h"
#include "vlt/time_stamp.h"

/// What all handles of one package share. The base slot of the package owns it.
struct vlt_store {
    vlt_store() = default;
    vlt_store(const vlt_store&) = delete;
    vlt_store& operator=(const vlt_store&) = delete;
    ~vlt_store();

    HostMutex* mutex = nullptr;
    int fd = -1;
    std::int64_t base_offset = 0;   // where block 0 lies in the host file
    bool file_read_only = false;    // the host file was opened for reading only
    bool wide_names = false;        // names are UTF-16
    std::int32_t block_count = 0;   // blocks that the host file holds
    Array<std::uint8_t> header;     // the header run: fields and block map
    Array<std::uint8_t> directory;  // the directory run

    // Derived from the images, and kept beside them.
    vlt_chain header_chain;        // known whole
    vlt_chain directory_chain;     // known whole
    IndexSet own_blocks;           // blocks of those two chains: no stored file may own one
    IndexSet free_blocks;          // blocks that may be taken; empty until blocks_counted
    bool blocks_counted = false;   // the free blocks have been found
    IndexSet free_entries;         // directory entries that may be taken; empty until entries_counted
    bool entries_counted = false;  // the free entries have been found
    vlt_name_index names;          // entries in use by name, the lowest of each name and kind
    bool names_repeat = false;     // a damaged directory: entries were left out of it
    vlt_open_entries open_files;   // entries with an open file, and their chains
    vlt_stamp_clock clock;         // the stamp of the present second
    bool directory_ahead = false;  // an entry in the image may differ from the host file
    bool entry_unwritten = false;  // because writing one failed; a stamp of reading may be in memory on purpose

    std::int32_t header_blocks() const { return static_cast<std::int32_t>(header.size() / VLT_BLOCK_SIZE); }
    std::int32_t entry_size() const { return wide_names ? VLT_ENTRY_SIZE_WIDE : VLT_ENTRY_SIZE_NARROW; }

    /// Blocks that exist and have a map word. A header chain shorter than the host file asks for, as a growth that
    /// was cut off leaves it, hides the blocks beyond its words until the next growth lengthens it.
    std::int32_t mapped_blocks() const {
        const std::int32_t capacity = vlt_map_capacity(header_blocks());
        return block_count < capacity ? block_count : capacity;
    }
    std::uint8_t* map_word_at(std::int32_t block) {
        return header.data() + VLT_MAP_OFFSET + 4 * static_cast<std::size_t>(block);
    }
    std::uint32_t map_word(std::int32_t block) { return vlt_load<std::uint32_t>(map_word_at(block)); }
    void set_map_word(std::int32_t block, std::uint32_t word) { vlt_store_at(map_word_at(block), word); }

    vlt_dir_entry entry(std::int32_t index) {
        return vlt_dir_entry(directory.data() +
                             static_cast<std::size_t>(index) * static_cast<std::size_t>(entry_size()));
    }
};

/// Reads `length` bytes at `offset` of a chain. What exists is read even when the chain ends too early; false then,
/// and when the host file fails. A data chain must have been begun with `vlt_chain_begin`.
bool vlt_chain_read(vlt_store& store, vlt_chain& chain, std::int64_t offset, void* buffer, std::int32_t length);

/// Writes `length` bytes at `offset` of a chain, in the same manner.
bool vlt_chain_write(vlt_store& store, vlt_chain& chain, std::int64_t offset, const void* data, std::int32_t length);

/// Gets a data chain ready for use: makes its first block known. `first_block` is a block number, 0 for none. False
/// when that is no block that a stored file can own, or memory runs out.
bool vlt_chain_begin(vlt_store& store, vlt_chain& chain, std::uint32_t first_block);

/// Blocks on their way into a data chain. They are taken in memory first, so that the bytes they are taken for can be
/// written; only then does the host file's map name them. So a host file that fails, or a process that ends, leaves
/// at the worst blocks in use that no chain holds, and never a chain that leads to a free block.
class vlt_chain_extension {
public:
    vlt_chain_extension(vlt_store& store, vlt_chain& chain) : store_(store), chain_(chain) {}
    vlt_chain_extension(const vlt_chain_extension&) = delete;
    vlt_chain_extension& operator=(const vlt_chain_extension&) = delete;

    /// Gives blocks that were not finished back.
    ~vlt_chain_extension();

    /// Takes `count` free blocks, lowest index first, growing the package when there are too few. `kept` is how many
    /// blocks of the chain hold stored bytes; `appends`: none of those will be written before `finish`. False when
    /// the package cannot grow, the chain has no end, or memory runs out; nothing is taken then.
    bool take(std::int32_t kept, std::int32_t count, bool appends);

    /// Writes the map words through, after the chain's bytes were written up to the offset `end`. False when the host
    /// file fails; the blocks stay in use then, and no chain holds them.
    bool finish(std::int64_t end);

private:
    bool grow_unwritten(std::int32_t count);
    bool take_blocks(std::int32_t count);
    bool put_map_words_of_new_blocks();

    vlt_store& store_;
    vlt_chain& chain_;
    std::int32_t old_length_ = -1;     // of the chain; -1 when nothing is taken
    std::int32_t before_ = -1;         // the block that gets the link to the new ones, -1 for none
    std::uint32_t old_word_ = 0;       // its map word
    std::int32_t unwritten_from_ = 0;  // blocks from this one on are counted, but not yet in the host file; 0: none
};

/// Frees the data chain that starts at a block number; 0 frees nothing. The walk ends at the first block that no
/// stored file can own, and after the `kept` blocks of stored bytes where what follows is another file's. False when
/// the host file fails; the blocks not yet reached stay in use.
bool vlt_chain_release(vlt_store& store, std::uint32_t first_block, std::int64_t kept);

/// Makes the package larger until `wanted` blocks are free. False when the host file fails or the block numbers are
/// used up; blocks added until then stay.
bool vlt_package_grow(vlt_store& store, std::int32_t wanted);

/// Adds one zero block to the directory chain and image.
bool vlt_dir_extend(vlt_store& store);

/// Number of directory entries that the directory image holds.
std::int32_t vlt_dir_count(const vlt_store& store);

/// Number of entries that it holds once it has grown by a block.
inline std::size_t vlt_dir_count_grown(const vlt_store& store) {
    return (store.directory.size() + VLT_BLOCK_SIZE) / static_cast<std::size_t>(store.entry_size());
}

/// Compares every derived structure with the images.
void vlt_check_blocks(vlt_store& store);

// SPDX-License-Identifier: MIT
#include "vlt/block_store.h"

#include <algorithm>

#include "base/check.h"
#include "platform/host_file.h"

vlt_store::~vlt_store() {
    if (mutex) mutex_destroy(mutex);
    if (fd >= 0) host_close(fd);
}

// ---- Walking and transferring ------------------------------------------------------------------------------------

namespace {

std::int64_t host_offset(const vlt_store& store, std::int32_t block) {
    return store.base_offset + std::int64_t{block} * VLT_BLOCK_SIZE;
}

/// Whether a block can belong to a stored file: it has a map word, and the package's own chains do not hold it.
bool may_hold_data(const vlt_store& store, std::int64_t block) {
    return block >= 0 && block < store.mapped_blocks() && !store.own_blocks.contains(static_cast<std::size_t>(block));
}

/// Makes the chain known up to `position`, or as far as it goes. A chain cannot be longer than the package, so one
/// that loops ends there. False when memory runs out.
bool learn(vlt_store& store, vlt_chain& chain, std::int64_t position) {
    while (!chain.empty() && chain.length() <= position && chain.length() < store.block_count) {
        const std::uint32_t next = store.map_word(chain.last_block()) & VLT_NEXT_MASK;
        if (!may_hold_data(store, std::int64_t{next} - 1)) break;
        if (!chain.append(static_cast<std::int32_t>(next) - 1)) return false;
    }
    return true;
}

/// Moves `length` bytes at `offset` of the chain, one host call for each run; `move` is (host offset, done, bytes).
template <typename Move>
bool transfer(vlt_store& store, vlt_chain& chain, std::int64_t offset, std::int32_t length, Move move) {
    if (offset < 0 || length < 0 || offset > INT64_MAX - length) return false;
    std::int64_t position = offset / VLT_BLOCK_SIZE;
    std::int32_t inside = static_cast<std::int32_t>(offset % VLT_BLOCK_SIZE);
    if (!learn(store, chain, (offset + std::max(length, 1) - 1) / VLT_BLOCK_SIZE)) return false;
    for (std::int32_t done = 0;;) {
        if (position >= chain.length()) return false;
        if (done == length) return true;
        const vlt_run run = chain.run_at(static_cast<std::int32_t>(position));
        const std::int64_t room = std::int64_t{run.count} * VLT_BLOCK_SIZE - inside;
        const auto piece = static_cast<std::int32_t>(std::min<std::int64_t>(room, length - done));
        if (!move(host_offset(store, run.block) + inside, done, static_cast<std::size_t>(piece))) return false;
        done += piece;
        if (done == length) return true;
        position += run.count;
        inside = 0;
    }
}

/// Writes the map words of a row of blocks through. Words side by side are one piece of the header run.
bool put_map_words(vlt_store& store, std::int32_t block, std::int32_t count) {
    return vlt_chain_write(store, store.header_chain, VLT_MAP_OFFSET + 4 * std::int64_t{block},
                           store.map_word_at(block), 4 * count);
}

std::uint32_t linked_to(std::uint32_t word, std::int32_t next_block) {
    return (word & ~VLT_NEXT_MASK) | static_cast<std::uint32_t>(next_block + 1);
}

}  // namespace

bool vlt_chain_read(vlt_store& store, vlt_chain& chain, std::int64_t offset, void* buffer, std::int32_t length) {
    return transfer(store, chain, offset, length, [&](std::int64_t at, std::int32_t done, std::size_t bytes) {
        return host_read(store.fd, at, static_cast<char*>(buffer) + done, bytes);
    });
}

bool vlt_chain_write(vlt_store& store, vlt_chain& chain, std::int64_t offset, const void* data, std::int32_t length) {
    return transfer(store, chain, offset, length, [&](std::int64_t at, std::int32_t done, std::size_t bytes) {
        return host_write(store.fd, at, static_cast<const char*>(data) + done, bytes);
    });
}

bool vlt_chain_begin(vlt_store& store, vlt_chain& chain, std::uint32_t first_block) {
    if (!chain.empty()) return true;
    const std::int64_t block = std::int64_t{first_block} - 1;
    return may_hold_data(store, block) && chain.append(static_cast<std::int32_t>(block));
}

// ---- Free blocks -------------------------------------------------------------------------------------------------

namespace {

/// Finds the free blocks once. A block that looks free while a word names it as next, or an entry as its first, is
/// left alone: a growth of a chain that was cut off between two writes leaves such a block, and so does damage, and
/// giving it to another file would tie the two files together.
bool count_free_blocks(vlt_store& store) {
    if (store.blocks_counted) return true;
    const std::int32_t blocks = store.mapped_blocks();
    if (!store.free_blocks.set_limit(static_cast<std::size_t>(blocks))) return false;
    for (std::int32_t block = 0; block < blocks; ++block)
        if (!(store.map_word(block) & VLT_BLOCK_USED) && !store.own_blocks.contains(static_cast<std::size_t>(block)))
            store.free_blocks.add(static_cast<std::size_t>(block));
    for (std::int32_t block = 0; block < blocks; ++block) {
        const std::uint32_t word = store.map_word(block), next = word & VLT_NEXT_MASK;
        if ((word & VLT_BLOCK_USED) && next != 0) store.free_blocks.remove(next - 1);
    }
    for (std::int32_t i = 0; i < vlt_dir_count(store); ++i)
        if (store.entry(i).in_use() && store.entry(i).first_block() != 0)
            store.free_blocks.remove(store.entry(i).first_block() - 1);
    store.blocks_counted = true;
    return true;
}

}  // namespace

namespace {

/// How many used map words and directory entries name a block. That takes a while: it is asked only of blocks that a
/// file holds beyond its bytes, which a failure must have left.
std::int32_t times_named(vlt_store& store, std::int32_t block) {
    const std::uint32_t number = static_cast<std::uint32_t>(block) + 1;
    std::int32_t times = 0;
    for (std::int32_t b = 0; b < store.mapped_blocks(); ++b)
        times += (store.map_word(b) & (VLT_BLOCK_USED | VLT_NEXT_MASK)) == (VLT_BLOCK_USED | number);
    for (std::int32_t i = 0; i < vlt_dir_count(store); ++i)
        times += store.entry(i).in_use() && store.entry(i).first_block() == number;
    return times;
}

/// Forgets what follows the stored bytes in the chain, from the first block on that is not in use: the leftover of
/// a growth that was cut off. What the chain takes next is linked over it. So it is with blocks of another file,
/// where the link to them or the entry was written in part.
void drop_unfinished_end(vlt_store& store, vlt_chain& chain, std::int32_t kept) {
    if (chain.length() > kept && !chain.end_is_own) {
        if (times_named(store, chain.run_at(kept).block) > 1) return chain.shorten(kept);
        chain.end_is_own = true;
    }
    for (std::int32_t position = kept; position < chain.length(); ++position)
        if (!(store.map_word(chain.run_at(position).block) & VLT_BLOCK_USED)) return chain.shorten(position);
}

}  // namespace

/// Counts blocks that the bytes to be written will bring into being. Only where they fill all of them, and where the
/// map has room for their words; this saves writing zeros that are overwritten at once.
bool vlt_chain_extension::grow_unwritten(std::int32_t count) {
    const std::int32_t blocks = store_.block_count;
    if (count > vlt_map_capacity(store_.header_blocks()) - blocks || count > VLT_BLOCKS_MAX - blocks) return false;
    if (!store_.free_blocks.set_limit(static_cast<std::size_t>(blocks) + static_cast<std::size_t>(count)))
        return false;
    if (!store_.own_blocks.set_limit(static_cast<std::size_t>(blocks) + static_cast<std::size_t>(count)))
        return false;
    for (std::int32_t i = 0; i < count; ++i)
        if (store_.map_word(blocks + i) != 0) return false;
    for (std::int32_t i = 0; i < count; ++i) store_.free_blocks.add(static_cast<std::size_t>(blocks + i));
    unwritten_from_ = blocks;
    store_.block_count = blocks + count;
    return true;
}

bool vlt_chain_extension::take_blocks(std::int32_t count) {
    for (std::int32_t last = before_, i = 0; i < count; ++i) {
        const std::size_t block = store_.free_blocks.lowest();
        if (!chain_.append(static_cast<std::int32_t>(block))) return false;
        store_.free_blocks.remove(block);
        store_.set_map_word(static_cast<std::int32_t>(block), VLT_BLOCK_USED);
        if (last >= 0) store_.set_map_word(last, linked_to(store_.map_word(last), static_cast<std::int32_t>(block)));
        last = static_cast<std::int32_t>(block);
    }
    return true;
}

bool vlt_chain_extension::take(std::int32_t kept, std::int32_t count, bool appends) {
    if (!count_free_blocks(store_) || !learn(store_, chain_, store_.block_count)) return false;
    if (chain_.length() >= store_.block_count) return false;  // it loops: there is no end to link to
    drop_unfinished_end(store_, chain_, kept);
    old_length_ = chain_.length();
    before_ = old_length_ > 0 ? chain_.last_block() : -1;
    old_word_ = before_ >= 0 ? store_.map_word(before_) : 0;

    const std::int32_t missing = count - static_cast<std::int32_t>(store_.free_blocks.count());
    const bool filled_at_once = appends && old_length_ == kept;
    if (missing > 0 && !(filled_at_once && grow_unwritten(missing)) && !vlt_package_grow(store_, count)) return false;
    return take_blocks(count);
}

vlt_chain_extension::~vlt_chain_extension() {
    if (old_length_ < 0) return;
    for (std::int32_t position = old_length_; position < chain_.length(); ++position) {
        const std::int32_t block = chain_.run_at(position).block;
        store_.set_map_word(block, 0);
        store_.free_blocks.add(static_cast<std::size_t>(block));
    }
    chain_.shorten(old_length_);
    if (before_ >= 0) store_.set_map_word(before_, old_word_);
    if (unwritten_from_ == 0) return;
    for (std::int32_t block = unwritten_from_; block < store_.block_count; ++block)
        store_.free_blocks.remove(static_cast<std::size_t>(block));
    store_.block_count = unwritten_from_;
}

/// The link to the new blocks is written last, or in one piece with the words right after it.
bool vlt_chain_extension::put_map_words_of_new_blocks() {
    bool link_written = before_ < 0;
    for (std::int32_t position = old_length_; position < chain_.length();) {
        const vlt_run run = chain_.run_at(position);
        const bool with_link = !link_written && run.block == before_ + 1 && position + run.count == chain_.length();
        if (!put_map_words(store_, with_link ? before_ : run.block, run.count + (with_link ? 1 : 0))) return false;
        link_written = link_written || with_link;
        position += run.count;
    }
    return link_written || put_map_words(store_, before_, 1);
}

bool vlt_chain_extension::finish(std::int64_t end) {
    if (old_length_ < 0) return true;
    const std::int64_t rest = (VLT_BLOCK_SIZE - end % VLT_BLOCK_SIZE) % VLT_BLOCK_SIZE;
    const std::int64_t host_end = host_offset(store_, store_.block_count);
    if (unwritten_from_ != 0 && rest > 0 && !host_extend(store_.fd, host_end - rest, rest)) return false;
    unwritten_from_ = 0;
    if (put_map_words_of_new_blocks()) {
        old_length_ = -1;
        return true;
    }
    // Some of the words may be in the host file: the blocks stay in use here, so that nothing else takes them.
    chain_.shorten(old_length_);
    return false;
}

bool vlt_chain_release(vlt_store& store, std::uint32_t first_block, std::int64_t kept) {
    std::int64_t block = std::int64_t{first_block} - 1;
    std::int64_t position = 0;
    const auto releasable = [&](std::int64_t b) {
        return may_hold_data(store, b) && (store.map_word(static_cast<std::int32_t>(b)) & VLT_BLOCK_USED);
    };
    std::uint32_t words[VLT_BLOCK_SIZE / 4];  // kept, for a host file that fails
    while (releasable(block)) {
        const auto first = static_cast<std::int32_t>(block);
        if (position == kept && times_named(store, first) > 0) break;  // another file's, by a link written in part
        std::int32_t count = 0;
        do {  // a row of blocks that follow each other in the chain and in the package
            words[count] = store.map_word(first + count);
            block = std::int64_t{words[count] & VLT_NEXT_MASK} - 1;
            ++count;
        } while (count < VLT_BLOCK_SIZE / 4 && position + count != kept && block == first + count &&
                 releasable(block));
        position += count;

        const std::size_t bytes = static_cast<std::size_t>(count) * 4;
        std::memset(store.map_word_at(first), 0, bytes);
        if (!put_map_words(store, first, count)) {
            std::memcpy(store.map_word_at(first), words, bytes);
            return false;
        }
        if (store.blocks_counted)
            for (std::int32_t i = 0; i < count; ++i) store.free_blocks.add(static_cast<std::size_t>(first + i));
    }
    return true;
}

// ---- Growth ------------------------------------------------------------------------------------------------------

namespace {

/// Makes the host file `count` zero blocks longer. The first of them begins where the last whole block ends, over
/// what a host file that ended in a partial block holds there.
bool append_blocks(vlt_store& store, std::int32_t count) {
    return host_extend(store.fd, host_offset(store, store.block_count), std::int64_t{count} * VLT_BLOCK_SIZE);
}

/// Counts one more block of the host file: a free one, unless its word says that it is in use. That is so where the
/// host file had lost its end, and the block still belongs to a file that lost bytes with it.
bool adopt_block(vlt_store& store) {
    const std::int32_t block = store.block_count;
    if (!store.free_blocks.set_limit(static_cast<std::size_t>(block) + 1)) return false;
    if (!store.own_blocks.set_limit(static_cast<std::size_t>(block) + 1)) return false;
    ++store.block_count;
    if (block < store.mapped_blocks() && !(store.map_word(block) & VLT_BLOCK_USED))
        store.free_blocks.add(static_cast<std::size_t>(block));
    return true;
}

/// Makes one more block, already in the host file, the last of the header chain: the map gets room for 1024 words.
/// The new block's own word is written first: until the link to it is written, nothing of it is in use.
bool adopt_header_block(vlt_store& store) {
    const std::int32_t block = store.block_count;
    const std::int32_t last = store.header_chain.last_block();
    const std::int32_t old_mapped = store.mapped_blocks();
    const std::size_t old_size = store.header.size();
    if (block >= vlt_map_capacity(store.header_blocks() + 1)) return false;  // the chain misses more than one block
    if (!store.free_blocks.set_limit(static_cast<std::size_t>(block) + 1)) return false;
    if (!store.own_blocks.set_limit(static_cast<std::size_t>(block) + 1)) return false;
    if (!store.header_chain.append(block)) return false;
    if (!store.header.resize(old_size + VLT_BLOCK_SIZE)) {
        store.header_chain.shorten(store.header_chain.length() - 1);
        return false;
    }
    ++store.block_count;
    store.set_map_word(block, VLT_BLOCK_USED);
    store.set_map_word(last, linked_to(store.map_word(last), block));
    if (!put_map_words(store, block, 1) || !put_map_words(store, last, 1)) {
        store.set_map_word(last, store.map_word(last) & ~VLT_NEXT_MASK);
        store.set_map_word(block, 0);
        store.header.shrink(old_size);
        store.header_chain.shorten(store.header_chain.length() - 1);
        return false;
    }
    store.own_blocks.add(static_cast<std::size_t>(block));
    for (std::int32_t b = old_mapped; b < block; ++b)  // blocks that had no word until now
        if (!(store.map_word(b) & VLT_BLOCK_USED)) store.free_blocks.add(static_cast<std::size_t>(b));
    return true;
}

/// One step of growth: a free block, or a header block when the map is full. The blocks are in the host file.
bool grow_step(vlt_store& store) {
    return vlt_map_capacity(store.header_blocks()) > store.block_count ? adopt_block(store)
                                                                       : adopt_header_block(store);
}

/// Blocks that the host file needs more, so that `wanted` more become free; the block numbers may allow fewer.
std::int32_t blocks_to_append(const vlt_store& store, std::int32_t wanted) {
    std::int64_t capacity = vlt_map_capacity(store.header_blocks());
    std::int64_t blocks = store.block_count;
    for (std::int32_t gained = 0; gained < wanted; ++gained) {
        const std::int64_t step = capacity > blocks ? 1 : 2;
        if (blocks + step > VLT_BLOCKS_MAX) break;
        if (step == 2) capacity += VLT_BLOCK_SIZE / 4;
        blocks += step;
    }
    return static_cast<std::int32_t>(blocks - store.block_count);
}

}  // namespace

bool vlt_package_grow(vlt_store& store, std::int32_t wanted) {
    if (!count_free_blocks(store)) return false;
    bool all_at_once = true;  // where not all of them fit, as many as do become free, one growth after the other
    for (;;) {
        const std::int32_t missing = wanted - static_cast<std::int32_t>(store.free_blocks.count());
        if (missing <= 0) return true;
        const std::int32_t count = blocks_to_append(store, all_at_once ? missing : 1);
        if (count == 0) return false;
        if (!append_blocks(store, count)) {
            if (!all_at_once) return false;
            all_at_once = false;
            continue;
        }
        for (const std::int32_t end = store.block_count + count; store.block_count < end;)
            if (!grow_step(store)) return false;
    }
}

bool vlt_dir_extend(vlt_store& store) {
    if (!count_free_blocks(store)) return false;
    const std::int32_t old_count = store.block_count;
    if (store.free_blocks.count() == 0 && !vlt_package_grow(store, 1)) return false;
    const std::size_t old_size = store.directory.size();
    const auto block = static_cast<std::int32_t>(store.free_blocks.lowest());
    static const char zeros[VLT_BLOCK_SIZE] = {};
    const bool zero_already = block >= old_count;  // just grown
    if (!zero_already && !host_write(store.fd, host_offset(store, block), zeros, sizeof zeros)) return false;

    // The image and the chain first, in memory only: nothing can fail any more but the two map words.
    if (!store.directory.resize(old_size + VLT_BLOCK_SIZE)) return false;
    const std::int32_t last = store.directory_chain.last_block();
    const std::uint32_t last_word = store.map_word(last);
    bool done = store.directory_chain.append(block);
    if (done) {
        store.free_blocks.remove(static_cast<std::size_t>(block));
        store.set_map_word(block, VLT_BLOCK_USED);
        store.set_map_word(last, linked_to(last_word, block));
        done = put_map_words(store, block, 1) && put_map_words(store, last, 1);
        if (!done) {  // the block stays used here: its word may be in the host file
            store.set_map_word(last, last_word);
            store.directory_chain.shorten(store.directory_chain.length() - 1);
        }
    }
    if (!done) {
        store.directory.shrink(old_size);
        return false;
    }
    store.own_blocks.add(static_cast<std::size_t>(block));
    return true;
}

std::int32_t vlt_dir_count(const vlt_store& store) {
    return static_cast<std::int32_t>(static_cast<std::int64_t>(store.directory.size()) / store.entry_size());
}

// ---- The plain truth ---------------------------------------------------------------------------------------------

namespace {

void check_own_chain(vlt_store& store, const vlt_chain& chain, std::int32_t start) {
    std::int32_t block = start;
    for (std::int32_t position = 0; position < chain.length(); ++position) {
        check_truth(chain.run_at(position).block == block &&
                    store.own_blocks.contains(static_cast<std::size_t>(block)));
        block = static_cast<std::int32_t>(store.map_word(block) & VLT_NEXT_MASK) - 1;
    }
}

}  // namespace

void vlt_check_blocks(vlt_store& store) {
    check_own_chain(store, store.header_chain, VLT_HEADER_START);
    check_own_chain(store, store.directory_chain, VLT_DIRECTORY_START);
    if (!store.blocks_counted) return;
    std::size_t free_blocks = 0;
    std::int32_t lowest = -1;
    for (std::int32_t block = store.mapped_blocks(); block-- > 0;)
        if (store.free_blocks.contains(static_cast<std::size_t>(block))) {
            check_truth(!(store.map_word(block) & VLT_BLOCK_USED));
            ++free_blocks;
            lowest = block;
        }
    check_truth(free_blocks == store.free_blocks.count());
    check_truth(free_blocks == 0 || store.free_blocks.lowest() == static_cast<std::size_t>(lowest));
}

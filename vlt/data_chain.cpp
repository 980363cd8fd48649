// SPDX-License-Identifier: MIT
// Data chains growing and being released.
#include <algorithm>

#include "platform/host_file.h"
#include "vlt/block_map.h"

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
        if (last >= 0)
            store_.set_map_word(last, vlt_map_link(store_.map_word(last), static_cast<std::int32_t>(block)));
        last = static_cast<std::int32_t>(block);
    }
    return true;
}

bool vlt_chain_extension::take(std::int32_t kept, std::int32_t count, bool appends) {
    if (!vlt_blocks_count(store_) || !vlt_chain_learn(store_, chain_, store_.block_count)) return false;
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
        if (!vlt_map_put(store_, with_link ? before_ : run.block, run.count + (with_link ? 1 : 0))) return false;
        link_written = link_written || with_link;
        position += run.count;
    }
    return link_written || vlt_map_put(store_, before_, 1);
}

bool vlt_chain_extension::finish(std::int64_t end) {
    if (old_length_ < 0) return true;
    const std::int64_t rest = (VLT_BLOCK_SIZE - end % VLT_BLOCK_SIZE) % VLT_BLOCK_SIZE;
    const std::int64_t host_end = vlt_host_offset(store_, store_.block_count);
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
        return vlt_may_hold_data(store, b) && (store.map_word(static_cast<std::int32_t>(b)) & VLT_BLOCK_USED);
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
        if (!vlt_map_put(store, first, count)) {
            std::memcpy(store.map_word_at(first), words, bytes);
            return false;
        }
        if (store.blocks_counted)
            for (std::int32_t i = 0; i < count; ++i) store.free_blocks.add(static_cast<std::size_t>(first + i));
    }
    return true;
}

// SPDX-License-Identifier: MIT
#include "vlt/data_chain.h"

#include "vlt/chain_io.h"
#include "vlt/map_words.h"
#include "vlt/package_grow.h"

namespace vlt {

// ---- Growing -----------------------------------------------------------------------------------------------------

/// Counts blocks that the bytes to be written will bring into being. Only where they fill all of them, and where the
/// map has room for their words; this saves writing zeros that are overwritten at once.
bool ChainExtension::grow_unwritten(std::int32_t count) {
    const std::int32_t blocks = store_.host.block_count();
    if (count > store_.images.map_capacity() - blocks || count > VLT_BLOCKS_MAX - blocks) return false;
    if (!reserve_blocks(store_, blocks + count)) return false;
    for (std::int32_t block = blocks; block < blocks + count; ++block)
        if (store_.images.word(block) != 0 || store_.blocks.contested.contains(block)) return false;
    store_.host.set_block_count(blocks + count);
    for (std::int32_t block = blocks; block < blocks + count; ++block) add_new_block(store_, block);
    unwritten_from_ = blocks;
    return true;
}

bool ChainExtension::take_blocks(std::int32_t count) {
    for (std::int32_t last = before_, i = 0; i < count; ++i) {
        const std::int32_t block = store_.blocks.free.lowest();
        if (!chain_.append(block)) return false;
        take_block(store_, block);
        store_.images.set_word(block, VLT_BLOCK_USED);
        if (last >= 0) store_.images.set_word(last, linked(store_.images.word(last), block));
        last = block;
    }
    return true;
}

/// Forgets what follows the stored bytes in the chain, from the first block on that is not in use: the leftover of
/// a growth that was cut off. So it is with blocks that another chain holds too, because the link to them or the
/// entry is damaged or was written in part. What the chain gets next is linked over the link to them.
bool ChainExtension::drop_end(std::int32_t stored) {
    if (!follow_chain(store_, chain_, store_.host.block_count())) return false;
    if (chain_.length() >= store_.host.block_count()) return false;  // it loops: there is no end to link to
    for (std::int32_t position = stored; position < chain_.length(); ++position) {
        const std::int32_t block = chain_.block_at(position);
        if (is_used(store_.images.word(block)) && !store_.blocks.contested.shared(block)) continue;
        dropped_ = block;
        chain_.shorten(position);
    }
    return true;
}

bool ChainExtension::allocate(std::int32_t stored, std::int32_t count, bool appends) {
    if (!search_blocks(store_) || !drop_end(stored)) return false;
    old_length_ = chain_.length();
    before_ = old_length_ > 0 ? chain_.last_block() : -1;
    old_word_ = before_ >= 0 ? store_.images.word(before_) : 0;

    const std::int32_t missing = count - store_.blocks.free.count();
    const bool filled_at_once = appends && old_length_ == stored;
    if (missing > 0 && !(filled_at_once && grow_unwritten(missing)) && !vlt_package_grow(store_, count)) return false;
    return take_blocks(count);
}

ChainExtension::~ChainExtension() {
    if (old_length_ < 0) return;
    for (std::int32_t position = old_length_; position < chain_.length(); ++position) {
        const std::int32_t block = chain_.block_at(position);
        store_.images.set_word(block, 0);
        give_block_back(store_, block);
    }
    chain_.shorten(old_length_);
    if (before_ >= 0) store_.images.set_word(before_, old_word_);
    if (unwritten_from_ == 0) return;
    for (std::int32_t block = unwritten_from_; block < store_.host.block_count(); ++block) take_block(store_, block);
    store_.host.set_block_count(unwritten_from_);
}

/// The link to the new blocks is written last, or together with the words right after it: that is one write, or one
/// for each block of the header that they lie in. Where only the first of these is done, the link leads to blocks
/// that look free, and these are given to nobody.
bool ChainExtension::write_words_of_new_blocks() {
    bool link_written = before_ < 0;
    for (std::int32_t position = old_length_; position < chain_.length();) {
        const Run run = chain_.run_at(position);
        const bool with_link = !link_written && run.block == before_ + 1 && position + run.count == chain_.length();
        if (!write_map_words(store_, with_link ? before_ : run.block, run.count + (with_link ? 1 : 0))) return false;
        link_written = link_written || with_link;
        position += run.count;
    }
    return link_written || write_map_words(store_, before_, 1);
}

bool ChainExtension::commit(std::int64_t end) {
    if (old_length_ < 0) return true;
    const auto inside = static_cast<std::int32_t>(end % VLT_BLOCK_SIZE);
    if (unwritten_from_ != 0 && inside > 0 && !store_.host.fill_last_block(inside)) return false;
    unwritten_from_ = 0;
    if (!write_words_of_new_blocks()) {
        // Some of the words may be in the host file: the blocks stay in use here, so that nothing else takes them.
        chain_.shorten(old_length_);
        return false;
    }
    old_length_ = -1;
    if (dropped_ >= 0) {
        store_.blocks.contested.lose_link(dropped_);
        store_.open_files.forget_chains_but(chain_);  // on a damaged package another one may follow the link cut here
    }
    return true;
}

// ---- Being released ----------------------------------------------------------------------------------------------

bool release_chain(Store& store, std::uint32_t first_block) {
    std::int32_t block = index_of(first_block);
    // The question takes the name away that led to the block, and is asked once for each.
    const auto is_released = [&](std::int32_t b) {
        return store.may_hold_data(b) && is_used(store.images.word(b)) && store.blocks.contested.lose_link(b);
    };
    std::uint32_t words[VLT_BLOCK_SIZE / 4];  // for a host file that fails
    for (bool more = is_released(block); more;) {
        const std::int32_t first = block;
        std::int32_t count = 0;
        do {  // blocks that follow each other in the chain and in the package
            words[count] = store.images.word(first + count);
            block = next_of(words[count]);
            ++count;
            more = is_released(block);
        } while (more && count < VLT_BLOCK_SIZE / 4 && block == first + count);

        const std::size_t bytes = static_cast<std::size_t>(count) * 4;
        std::memset(store.images.word_at(first), 0, bytes);
        if (!write_map_words(store, first, count)) {
            std::memcpy(store.images.word_at(first), words, bytes);
            return false;
        }
        for (std::int32_t i = 0; i < count; ++i) give_block_back(store, first + i);
    }
    return true;
}

}  // namespace vlt

// SPDX-License-Identifier: MIT
#include "vlt/own_chain_grow.h"

#include "vlt/map_words.h"

namespace vlt {

namespace {

/// Lengthens the image and the chain, in memory only.
bool append_in_memory(OwnChain& own, std::int32_t block) {
    const std::size_t old_size = own.bytes.size();
    if (!own.bytes.resize(old_size + VLT_BLOCK_SIZE)) return false;
    if (own.chain.append(block)) return true;
    own.bytes.shrink(old_size);
    return false;
}

}  // namespace

bool append_own_block(Store& store, OwnChain& own, std::int32_t block) {
    const std::int32_t last = own.chain.last_block();
    const std::uint32_t last_word = store.images.word(last);
    if (!store.images.own_blocks.set_limit(block + 1) || !append_in_memory(own, block)) return false;

    take_block(store, block);
    store.images.set_word(block, VLT_BLOCK_USED);
    store.images.set_word(last, linked(last_word, block));
    if (write_map_words(store, block, 1) && write_map_words(store, last, 1)) {
        store.images.own_blocks.add(block);
        return true;
    }
    // The block's word may be in the host file: where the image still holds it, the block stays in use here.
    store.images.set_word(last, last_word);
    own.chain.shorten(own.chain.length() - 1);
    own.bytes.shrink(own.bytes.size() - VLT_BLOCK_SIZE);
    return false;
}

}  // namespace vlt

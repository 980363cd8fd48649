// SPDX-License-Identifier: MIT
#include <algorithm>

#include "platform/host_file.h"
#include "vlt/block_map.h"

namespace {

/// Makes the host file `count` zero blocks longer. The first of them begins where the last whole block ends, over
/// what a host file that ended in a partial block holds there.
bool append_blocks(vlt_store& store, std::int32_t count) {
    return host_extend(store.fd, vlt_host_offset(store, store.block_count), std::int64_t{count} * VLT_BLOCK_SIZE);
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
    store.set_map_word(last, vlt_map_link(store.map_word(last), block));
    if (!vlt_map_put(store, block, 1) || !vlt_map_put(store, last, 1)) {
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
    if (!vlt_blocks_count(store)) return false;
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
    if (!vlt_blocks_count(store)) return false;
    const std::int32_t old_count = store.block_count;
    if (store.free_blocks.count() == 0 && !vlt_package_grow(store, 1)) return false;
    const std::size_t old_size = store.directory.size();
    const auto block = static_cast<std::int32_t>(store.free_blocks.lowest());
    static const char zeros[VLT_BLOCK_SIZE] = {};
    const bool zero_already = block >= old_count;  // just grown
    if (!zero_already && !host_write(store.fd, vlt_host_offset(store, block), zeros, sizeof zeros)) return false;

    // The image and the chain first, in memory only: nothing can fail any more but the two map words.
    if (!store.directory.resize(old_size + VLT_BLOCK_SIZE)) return false;
    const std::int32_t last = store.directory_chain.last_block();
    const std::uint32_t last_word = store.map_word(last);
    bool done = store.directory_chain.append(block);
    if (done) {
        store.free_blocks.remove(static_cast<std::size_t>(block));
        store.set_map_word(block, VLT_BLOCK_USED);
        store.set_map_word(last, vlt_map_link(last_word, block));
        done = vlt_map_put(store, block, 1) && vlt_map_put(store, last, 1);
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

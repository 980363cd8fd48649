// SPDX-License-Identifier: MIT
#include "vlt/package_grow.h"

#include "vlt/own_chain_grow.h"

namespace vlt {

namespace {

/// Counts one more block of the host file.
bool add_block(Store& store) {
    const std::int32_t block = store.host.block_count();
    if (!reserve_blocks(store, block + 1)) return false;
    store.host.set_block_count(block + 1);
    add_new_block(store, block);
    return true;
}

/// Makes one more block of the host file the last of the header chain: the map gets room for 1024 words.
bool add_header_block(Store& store) {
    const std::int32_t block = store.host.block_count();
    const std::int32_t old_mapped = store.mapped_blocks();
    const std::int32_t header_blocks = store.images.header.chain.length();
    if (block >= map_capacity(header_blocks + 1)) return false;  // the chain misses more than one block
    if (!reserve_blocks(store, block + 1) || !append_own_block(store, store.images.header, block)) return false;
    store.host.set_block_count(block + 1);
    for (std::int32_t b = old_mapped; b < block; ++b) add_new_block(store, b);  // they had no word until now
    return true;
}

/// One step of growth: a free block, or a header block when the map is full. The blocks are in the host file.
bool grow_step(Store& store) {
    return store.images.map_capacity() > store.host.block_count() ? add_block(store) : add_header_block(store);
}

/// Blocks that the host file needs more, so that `wanted` more become free; the block numbers may allow fewer. So
/// does the header: a growth that is cut off before its words are written must not miss more than one header block,
/// since the next one could not mend that.
std::int32_t blocks_to_append(const Store& store, std::int32_t wanted) {
    std::int64_t capacity = store.images.map_capacity();
    std::int64_t blocks = store.host.block_count();
    const std::int64_t limit = capacity + VLT_BLOCK_SIZE / 4 - 2;
    for (std::int32_t gained = 0; gained < wanted; ++gained) {
        const std::int64_t step = capacity > blocks ? 1 : 2;
        if (blocks + step > VLT_BLOCKS_MAX || (gained > 0 && blocks + step > limit)) break;
        if (step == 2) capacity += VLT_BLOCK_SIZE / 4;
        blocks += step;
    }
    return static_cast<std::int32_t>(blocks - store.host.block_count());
}

}  // namespace

bool vlt_package_grow(Store& store, std::int32_t wanted) {
    if (!search_blocks(store)) return false;
    bool all_at_once = true;  // where not all of them fit, as many as do become free, one growth after the other
    for (;;) {
        const std::int32_t missing = wanted - store.blocks.free.count();
        if (missing <= 0) return true;
        const std::int32_t count = blocks_to_append(store, all_at_once ? missing : 1);
        if (count == 0) return false;
        if (!store.host.extend(count)) {
            if (!all_at_once) return false;
            all_at_once = false;
            continue;
        }
        for (const std::int32_t end = store.host.block_count() + count; store.host.block_count() < end;)
            if (!grow_step(store)) return false;
    }
}

}  // namespace vlt

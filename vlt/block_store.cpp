// SPDX-License-Identifier: MIT
#include "vlt/block_store.h"

#include <algorithm>

#include "base/check.h"
#include "platform/host_file.h"
#include "vlt/block_map.h"

vlt_store::~vlt_store() {
    if (mutex) mutex_destroy(mutex);
    if (fd >= 0) host_close(fd);
}

// ---- Walking and transferring ------------------------------------------------------------------------------------

bool vlt_chain_learn(vlt_store& store, vlt_chain& chain, std::int64_t position) {
    while (!chain.empty() && chain.length() <= position && chain.length() < store.block_count) {
        const std::uint32_t next = store.map_word(chain.last_block()) & VLT_NEXT_MASK;
        if (!vlt_may_hold_data(store, std::int64_t{next} - 1)) break;
        if (!chain.append(static_cast<std::int32_t>(next) - 1)) return false;
    }
    return true;
}

namespace {

/// Moves `length` bytes at `offset` of the chain, one host call for each run; `move` is (host offset, done, bytes).
template <typename Move>
bool transfer(vlt_store& store, vlt_chain& chain, std::int64_t offset, std::int32_t length, Move move) {
    if (offset < 0 || length < 0 || offset > INT64_MAX - length) return false;
    std::int64_t position = offset / VLT_BLOCK_SIZE;
    std::int32_t inside = static_cast<std::int32_t>(offset % VLT_BLOCK_SIZE);
    if (!vlt_chain_learn(store, chain, (offset + std::max(length, 1) - 1) / VLT_BLOCK_SIZE)) return false;
    for (std::int32_t done = 0;;) {
        if (position >= chain.length()) return false;
        if (done == length) return true;
        const vlt_run run = chain.run_at(static_cast<std::int32_t>(position));
        const std::int64_t room = std::int64_t{run.count} * VLT_BLOCK_SIZE - inside;
        const auto piece = static_cast<std::int32_t>(std::min<std::int64_t>(room, length - done));
        if (!move(vlt_host_offset(store, run.block) + inside, done, static_cast<std::size_t>(piece))) return false;
        done += piece;
        if (done == length) return true;
        position += run.count;
        inside = 0;
    }
}

}  // namespace

bool vlt_map_put(vlt_store& store, std::int32_t block, std::int32_t count) {
    return vlt_chain_write(store, store.header_chain, VLT_MAP_OFFSET + 4 * std::int64_t{block},
                           store.map_word_at(block), 4 * count);
}

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
    return vlt_may_hold_data(store, block) && chain.append(static_cast<std::int32_t>(block));
}

// ---- Free blocks -------------------------------------------------------------------------------------------------

bool vlt_blocks_count(vlt_store& store) {
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

// SPDX-License-Identifier: MIT
#include "vlt/chain_io.h"

namespace vlt {

bool follow_chain(Store& store, KnownChain& chain, std::int64_t position) {
    while (!chain.empty() && chain.length() <= position && chain.length() < store.host.block_count()) {
        const std::int32_t next = next_of(store.images.word(chain.last_block()));
        if (!store.may_hold_data(next)) break;
        if (!chain.append(next)) return false;
    }
    return true;
}

bool begin_chain(Store& store, KnownChain& chain, std::uint32_t first_block) {
    if (!chain.empty()) return true;
    return store.may_hold_data(index_of(first_block)) && chain.append(index_of(first_block));
}

namespace {

/// Moves `length` bytes at `offset` of the chain, one host call for each run; `move` is (block, inside it, done,
/// bytes).
template <typename Move>
bool transfer(Store& store, KnownChain& chain, std::int64_t offset, std::int32_t length, Move move) {
    if (offset < 0 || length < 0 || offset > INT64_MAX - length) return false;
    std::int64_t position = offset / VLT_BLOCK_SIZE;
    auto inside = static_cast<std::int32_t>(offset % VLT_BLOCK_SIZE);
    if (!follow_chain(store, chain, (offset + std::max(length, 1) - 1) / VLT_BLOCK_SIZE)) return false;
    for (std::int32_t done = 0;;) {
        if (position >= chain.length()) return false;
        if (done == length) return true;
        const Run run = chain.run_at(static_cast<std::int32_t>(position));
        const std::int64_t room = std::int64_t{run.count} * VLT_BLOCK_SIZE - inside;
        const auto piece = static_cast<std::int32_t>(std::min<std::int64_t>(room, length - done));
        if (!move(run.block, inside, done, static_cast<std::size_t>(piece))) return false;
        done += piece;
        if (done == length) return true;
        position += run.count;
        inside = 0;
    }
}

}  // namespace

bool vlt_chain_read(Store& store, KnownChain& chain, std::int64_t offset, void* buffer, std::int32_t length) {
    return transfer(store, chain, offset, length,
                    [&](std::int32_t block, std::int32_t inside, std::int32_t done, std::size_t bytes) {
                        return store.host.read(block, inside, static_cast<char*>(buffer) + done, bytes);
                    });
}

bool vlt_chain_write(Store& store, KnownChain& chain, std::int64_t offset, const void* data, std::int32_t length) {
    return transfer(store, chain, offset, length,
                    [&](std::int32_t block, std::int32_t inside, std::int32_t done, std::size_t bytes) {
                        return store.host.write(block, inside, static_cast<const char*>(data) + done, bytes);
                    });
}

}  // namespace vlt

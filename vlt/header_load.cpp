// SPDX-License-Identifier: MIT
#include "vlt/header_load.h"

#include "vlt/directory.h"

namespace vlt {

namespace {

/// Takes a block into one of the package's own chains. False for a link out of the package, and for a block that one
/// of the two chains holds already: it loops, or both run into each other.
bool claim(Store& store, OwnChain& own, std::int32_t block) {
    if (block < 0 || block >= store.host.block_count() || store.images.own_blocks.contains(block)) return false;
    store.images.own_blocks.add(block);
    return own.chain.append(block);
}

/// Whether the part of the header that has been read holds the map word of a block.
bool has_word(const Store& store, std::int32_t block) {
    return block < store.images.map_capacity();
}

/// The block that follows the last one of a chain; -1 for none, and as long as its map word has not been read.
std::int32_t next_block(Store& store, const OwnChain& own) {
    const std::int32_t last = own.chain.last_block();
    return has_word(store, last) ? next_of(store.images.word(last)) : -1;
}

/// Reads the part of a chain that is claimed but not in its image yet, one host call for each run.
bool read_claimed(Store& store, OwnChain& own) {
    auto position = static_cast<std::int32_t>(own.bytes.size() / VLT_BLOCK_SIZE);
    if (static_cast<std::size_t>(own.chain.length()) > SIZE_MAX / 2 / VLT_BLOCK_SIZE) return false;
    if (!own.bytes.resize(static_cast<std::size_t>(own.chain.length()) * VLT_BLOCK_SIZE)) return false;
    while (position < own.chain.length()) {
        const Run run = own.chain.run_at(position);
        if (!store.host.read(run.block, 0, own.bytes.data() + std::int64_t{position} * VLT_BLOCK_SIZE,
                             static_cast<std::size_t>(run.count) * VLT_BLOCK_SIZE))
            return false;
        position += run.count;
    }
    return true;
}

/// The links of the header chain lie in the header itself, so it is read part by part: what has been read tells where
/// more of it lies.
bool load_header(Store& store) {
    OwnChain& header = store.images.header;
    const std::int32_t expected = header_blocks_for(store.host.block_count());
    if (!header.bytes.reserve(static_cast<std::size_t>(expected) * VLT_BLOCK_SIZE)) return false;
    for (;;) {
        if (!read_claimed(store, header)) return false;
        const std::int32_t known = header.chain.length();
        for (std::int32_t next; (next = next_block(store, header)) >= 0;)
            if (header.chain.length() >= expected || !claim(store, header, next)) return false;
        if (header.chain.length() == known) return has_word(store, header.chain.last_block());
    }
}

bool load_directory(Store& store) {
    OwnChain& directory = store.images.directory;
    for (std::int32_t next; (next = next_block(store, directory)) >= 0;)
        if (!claim(store, directory, next)) return false;
    return has_word(store, directory.chain.last_block()) && read_claimed(store, directory);
}

bool read_magic(Store& store) {
    std::uint8_t magic[4];
    if (!store.host.read(VLT_HEADER_START, 0, magic, sizeof magic)) return false;
    store.images.wide_names = std::memcmp(magic, "wvlt", 4) == 0;
    return store.images.wide_names || std::memcmp(magic, "vlt", 3) == 0;
}

}  // namespace

bool vlt_header_load(Store& store) {
    if (!store.host.measure() || store.host.block_count() < 2 || !read_magic(store)) return false;
    if (!store.images.own_blocks.set_limit(store.host.block_count())) return false;
    return claim(store, store.images.header, VLT_HEADER_START) &&
           claim(store, store.images.directory, VLT_DIRECTORY_START) && load_header(store) && load_directory(store) &&
           begin_directory(store);
}

}  // namespace vlt

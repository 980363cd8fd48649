// SPDX-License-Identifier: MIT
#include "vlt/header_load.h"

#include "platform/host_file.h"

namespace {

bool read_blocks(vlt_store& store, std::int32_t block, std::int32_t count, std::uint8_t* to) {
    return host_read(store.fd, store.base_offset + std::int64_t{block} * VLT_BLOCK_SIZE, to,
                     static_cast<std::size_t>(count) * VLT_BLOCK_SIZE);
}

/// Takes a block into one of the package's own chains. False for a link out of the package, and for a block that one
/// of the two chains holds already: it loops, or both run into each other.
bool claim(vlt_store& store, vlt_chain& chain, std::uint32_t number) {
    if (number == 0 || number > static_cast<std::uint32_t>(store.block_count)) return false;
    const auto block = static_cast<std::int32_t>(number - 1);
    if (store.own_blocks.contains(static_cast<std::size_t>(block))) return false;
    store.own_blocks.add(static_cast<std::size_t>(block));
    return chain.append(block);
}

/// Whether the part of the header that has been read holds the map word of a block.
bool has_word(const vlt_store& store, std::int32_t block) {
    return block < vlt_map_capacity(store.header_blocks());
}

/// The link in a block's map word; 0 as long as that word has not been read.
std::uint32_t link_of(vlt_store& store, std::int32_t block) {
    return has_word(store, block) ? store.map_word(block) & VLT_NEXT_MASK : 0;
}

/// Reads the part of a chain that is claimed but not in its image yet, one host call for each run.
bool read_claimed(vlt_store& store, const vlt_chain& chain, Array<std::uint8_t>& image) {
    auto position = static_cast<std::int32_t>(image.size() / VLT_BLOCK_SIZE);
    if (static_cast<std::size_t>(chain.length()) > SIZE_MAX / 2 / VLT_BLOCK_SIZE) return false;
    if (!image.resize(static_cast<std::size_t>(chain.length()) * VLT_BLOCK_SIZE)) return false;
    while (position < chain.length()) {
        const vlt_run run = chain.run_at(position);
        if (!read_blocks(store, run.block, run.count, image.data() + std::int64_t{position} * VLT_BLOCK_SIZE))
            return false;
        position += run.count;
    }
    return true;
}

/// The links of the header chain lie in the header itself, so it is read part by part: what has been read tells where
/// more of it lies.
bool load_header(vlt_store& store) {
    const std::int32_t expected = vlt_header_blocks_for(store.block_count);
    if (!store.header.reserve(static_cast<std::size_t>(expected) * VLT_BLOCK_SIZE)) return false;
    for (;;) {
        if (!read_claimed(store, store.header_chain, store.header)) return false;
        const std::int32_t known = store.header_chain.length();
        for (std::uint32_t link; (link = link_of(store, store.header_chain.last_block())) != 0;)
            if (store.header_chain.length() >= expected || !claim(store, store.header_chain, link)) return false;
        if (store.header_chain.length() == known) return has_word(store, store.header_chain.last_block());
    }
}

bool load_directory(vlt_store& store) {
    for (std::uint32_t link; (link = link_of(store, store.directory_chain.last_block())) != 0;)
        if (!claim(store, store.directory_chain, link)) return false;
    return has_word(store, store.directory_chain.last_block()) &&
           read_claimed(store, store.directory_chain, store.directory);
}

bool read_magic(vlt_store& store) {
    std::uint8_t magic[4];
    if (!host_read(store.fd, store.base_offset, magic, sizeof magic)) return false;
    store.wide_names = std::memcmp(magic, "wvlt", 4) == 0;
    return store.wide_names || std::memcmp(magic, "vlt", 3) == 0;
}

}  // namespace

bool vlt_header_load(vlt_store& store) {
    std::int64_t host_length = 0;
    if (!host_size(store.fd, &host_length) || host_length <= store.base_offset) return false;
    const std::int64_t blocks = (host_length - store.base_offset) / VLT_BLOCK_SIZE;
    if (blocks < 2 || !read_magic(store)) return false;
    // Blocks that no number can name are out of reach; the package ends before them.
    store.block_count = static_cast<std::int32_t>(blocks < VLT_BLOCKS_MAX ? blocks : VLT_BLOCKS_MAX);
    if (!store.own_blocks.set_limit(static_cast<std::size_t>(store.block_count))) return false;
    return claim(store, store.header_chain, VLT_HEADER_START + 1) &&
           claim(store, store.directory_chain, VLT_DIRECTORY_START + 1) && load_header(store) &&
           load_directory(store);
}

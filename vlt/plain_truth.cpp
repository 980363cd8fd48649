// SPDX-License-Identifier: MIT
#include "vlt/plain_truth.h"

#include "base/check.h"

namespace vlt {

namespace {

void check_own_chain(Store& store, const KnownChain& chain, std::int32_t start) {
    std::int32_t block = start;
    for (std::int32_t position = 0; position < chain.length(); ++position) {
        check_truth(chain.block_at(position) == block && store.images.own_blocks.contains(block));
        block = next_of(store.images.word(block));
    }
}

void check_free_blocks(Store& store) {
    IndexSet& free = store.blocks.free;
    std::int32_t count = 0, lowest = -1;
    for (std::int32_t block = store.mapped_blocks(); block-- > 0;) {
        if (!free.contains(block)) continue;
        check_truth(!is_used(store.images.word(block)) && !store.images.own_blocks.contains(block));
        ++count;
        lowest = block;
    }
    check_truth(count == free.count() && (count == 0 || free.lowest() == lowest));
}

/// No chain of a file leads to a block that may be given away.
void check_chain(Store& store, std::int32_t block) {
    for (std::int32_t steps = store.host.block_count(); store.may_hold_data(block) && steps > 0; --steps) {
        check_truth(!store.blocks.free.contains(block));
        block = next_of(store.images.word(block));
    }
}

void check_open_chain(Store& store, std::int32_t index) {
    const OpenFile* open = store.open_files.find(index);
    if (!open || open->chain.empty()) return;
    const KnownChain& chain = open->chain;
    check_truth(chain.first_block() == store.images.entry(index).first_index());
    for (std::int32_t position = 1; position < chain.length(); ++position)
        check_truth(next_of(store.images.word(chain.block_at(position - 1))) == chain.block_at(position));
}

/// The name index leads from an entry's name to the lowest entry of that name.
void check_name(Store& store, std::int32_t index) {
    const std::uint8_t* name = store.images.entry(index).name();
    const std::int32_t file = store.entries.names.find_file(name), in_use = store.entries.names.find_in_use(name);
    check_truth(in_use >= 0 && in_use <= index && store.images.entry(in_use).in_use());
    if (store.images.entry(index).kind() == VLT_ENTRY_FILE)
        check_truth(file >= 0 && file <= index && store.images.entry(file).kind() == VLT_ENTRY_FILE);
}

}  // namespace

void check_store(Store& store) {
    if (store.host.block_count() > 16384) return;  // small packages meet every case, and large ones would take hours
    check_own_chain(store, store.images.header.chain, VLT_HEADER_START);
    check_own_chain(store, store.images.directory.chain, VLT_DIRECTORY_START);
    if (store.blocks.searched) check_free_blocks(store);
    for (std::int32_t i = 0; i < store.images.vlt_dir_count(); ++i) {
        const vlt_dir_entry entry = store.images.entry(i);
        if (store.entries.entries_counted) check_truth(store.entries.free_entries.contains(i) == !entry.in_use());
        if (!entry.in_use()) continue;
        if (store.entries.names.built()) check_name(store, i);
        check_chain(store, entry.first_index());
        check_open_chain(store, i);
    }
}

}  // namespace vlt

// SPDX-License-Identifier: MIT
#include "vlt/directory.h"

#include "base/check.h"
#include "vlt/stored_name.h"

namespace {

/// The hash of an entry's name.
std::uint32_t entry_hash(vlt_store& store, std::int32_t index) {
    const std::uint8_t* name = store.entry(index).name();
    if (store.wide_names)
        return vlt_name_hash([&](std::size_t i) -> std::uint32_t { return vlt_name_unit<char16_t>(name, i); });
    return vlt_name_hash([&](std::size_t i) -> std::uint32_t { return vlt_name_unit<char>(name, i); });
}

/// Whether two entries have the same kind and name, letter case aside.
bool same_name(vlt_store& store, std::int32_t a, std::int32_t b) {
    const vlt_dir_entry left = store.entry(a), right = store.entry(b);
    if (left.kind() != right.kind()) return false;
    return store.wide_names ? vlt_names_equal<char16_t>(left.name(), right.name())
                            : vlt_names_equal<char>(left.name(), right.name());
}

/// Enters an entry into the name index, unless a lower one of the same name and kind is there: no lookup finds it.
void index_name(vlt_store& store, std::int32_t index) {
    const std::uint32_t hash = entry_hash(store, index);
    bool repeats = false;
    store.names.for_each(hash, [&](std::int32_t i) { repeats = repeats || same_name(store, i, index); });
    if (repeats) {
        store.names_repeat = true;
    } else {
        store.names.add(index, hash);
    }
}

/// Enters the entries from `first` on into the name index.
bool index_names(vlt_store& store, std::int32_t first) {
    const std::int32_t count = vlt_dir_count(store);
    if (!store.names.set_limit(static_cast<std::size_t>(count))) return false;
    for (std::int32_t i = first; i < count; ++i)
        if (store.entry(i).in_use()) index_name(store, i);
    return true;
}

/// Enters the free entries from `first` on into the set of free entries.
bool count_free_entries(vlt_store& store, std::int32_t first) {
    const std::int32_t count = vlt_dir_count(store);
    if (!store.free_entries.set_limit(static_cast<std::size_t>(count))) return false;
    for (std::int32_t i = first; i < count; ++i)
        if (!store.entry(i).in_use()) store.free_entries.add(static_cast<std::size_t>(i));
    store.entries_counted = true;
    return true;
}

/// Makes sure that there is a free entry. Room to count and to index the entries of a new directory block is had
/// before the block is added: after that nothing may fail any more. In a damaged directory the first of them can be
/// in use: it begins in the bytes after the last whole entry.
bool provide_free_entry(vlt_store& store) {
    if (!store.entries_counted && !count_free_entries(store, 0)) return false;
    while (store.free_entries.count() == 0) {
        const std::int32_t count = vlt_dir_count(store);
        const std::size_t limit = vlt_dir_count_grown(store);
        if (!store.free_entries.set_limit(limit) || !store.names.set_limit(limit)) return false;
        if (!vlt_dir_extend(store) || !index_names(store, count) || !count_free_entries(store, count)) return false;
    }
    return true;
}

}  // namespace

template <typename Char>
bool vlt_dir_find(vlt_store& store, const Char* name, vlt_lookup lookup, std::int32_t* index) {
    *index = vlt_no_entry;
    if (!store.names.built() && !index_names(store, 0)) return false;
    const std::uint32_t hash = vlt_name_hash(
        [&](std::size_t i) -> std::uint32_t { return static_cast<std::make_unsigned_t<Char>>(name[i]); });
    store.names.for_each(hash, [&](std::int32_t i) {
        const vlt_dir_entry entry = store.entry(i);
        const bool wanted = lookup == vlt_lookup::files ? entry.kind() == VLT_ENTRY_FILE : entry.in_use();
        if (wanted && (*index == vlt_no_entry || i < *index) && vlt_name_equals(entry.name(), name)) *index = i;
    });
    return true;
}

template <typename Char>
std::int32_t vlt_dir_add(vlt_store& store, const Char* name) {
    if (!provide_free_entry(store)) return vlt_no_entry;
    const auto index = static_cast<std::int32_t>(store.free_entries.lowest());
    vlt_dir_entry entry = store.entry(index);
    std::memset(entry.name() - VLT_ENTRY_NAME_OFFSET, 0, static_cast<std::size_t>(store.entry_size()));
    std::memcpy(entry.name(), name, vlt_name_length(name) * sizeof(Char));
    const double now = store.clock.vlt_stamp_now();
    entry.set_kind(VLT_ENTRY_FILE);
    entry.set_created(now);
    entry.set_accessed(now);
    entry.set_written(now);
    store.free_entries.remove(static_cast<std::size_t>(index));
    store.names.add(index, entry_hash(store, index));
    return vlt_dir_put(store, index) ? index : vlt_no_entry;
}

template bool vlt_dir_find(vlt_store&, const char*, vlt_lookup, std::int32_t*);
template bool vlt_dir_find(vlt_store&, const vlt_wchar*, vlt_lookup, std::int32_t*);
template std::int32_t vlt_dir_add(vlt_store&, const char*);
template std::int32_t vlt_dir_add(vlt_store&, const vlt_wchar*);

bool vlt_dir_put(vlt_store& store, std::int32_t index) {
    const std::int32_t size = store.entry_size();
    const std::uint8_t* bytes = store.directory.data() + std::int64_t{index} * size;
    if (vlt_chain_write(store, store.directory_chain, std::int64_t{index} * size, bytes, size)) return true;
    store.directory_ahead = store.entry_unwritten = true;
    return false;
}

void vlt_dir_free(vlt_store& store, std::int32_t index) {
    store.entry(index).set_kind(VLT_ENTRY_FREE);
    if (store.names_repeat) {
        store.names.clear();  // the next lookup builds it anew, with the entries that this one hid
        store.names_repeat = false;
    } else if (store.names.built()) {
        store.names.remove(index, entry_hash(store, index));
    }
    if (store.entries_counted) store.free_entries.add(static_cast<std::size_t>(index));
}

namespace {

/// In a damaged package another file can have shared blocks with a chain that was released. Its own chain ends there
/// now; as the two had one end, its last block tells.
void forget_released_chains(vlt_store& store) {
    store.open_files.for_each([&](vlt_open_entry& open) {
        if (!open.chain.empty() && !(store.map_word(open.chain.last_block()) & VLT_BLOCK_USED)) open.chain.clear();
    });
}

}  // namespace

bool vlt_file_empty(vlt_store& store, std::int32_t index) {
    vlt_dir_entry entry = store.entry(index);
    const std::uint32_t first_block = entry.first_block();
    const std::int64_t kept = vlt_blocks_for(entry.size());
    const double now = store.clock.vlt_stamp_now();
    entry.set_size(0);
    entry.set_first_block(0);
    entry.set_accessed(now);
    entry.set_written(now);
    if (vlt_open_entry* open = store.open_files.find(index)) open->chain.clear();
    if (!vlt_dir_put(store, index)) return false;
    const bool released = vlt_chain_release(store, first_block, kept);
    if (first_block != 0) forget_released_chains(store);
    return released;
}

// ---- The plain truth ---------------------------------------------------------------------------------------------

namespace {

/// Whether the name index leads to an entry, or to one of the same name and kind.
bool indexed(vlt_store& store, std::int32_t index) {
    bool found = false;
    store.names.for_each(entry_hash(store, index),
                         [&](std::int32_t i) { found = found || same_name(store, i, index); });
    return found;
}

void check_open_chain(vlt_store& store, std::int32_t index) {
    const vlt_open_entry* open = store.open_files.find(index);
    if (!open || open->chain.empty()) return;
    check_truth(open->chain.first_block() == static_cast<std::int32_t>(store.entry(index).first_block()) - 1);
    for (std::int32_t position = 1; position < open->chain.length(); ++position) {
        const std::uint32_t word = store.map_word(open->chain.run_at(position - 1).block);
        check_truth(static_cast<std::int32_t>(word & VLT_NEXT_MASK) == open->chain.run_at(position).block + 1);
    }
}

}  // namespace

void vlt_check_store(vlt_store& store) {
    if (store.block_count > 16384) return;  // small packages meet every case, and large ones would take hours
    vlt_check_blocks(store);
    for (std::int32_t i = 0; i < vlt_dir_count(store); ++i) {
        const bool used = store.entry(i).in_use();
        if (store.entries_counted) check_truth(store.free_entries.contains(static_cast<std::size_t>(i)) == !used);
        if (store.names.built() && used) check_truth(indexed(store, i));
        check_open_chain(store, i);
    }
}

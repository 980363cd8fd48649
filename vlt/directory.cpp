// SPDX-License-Identifier: MIT
#include "vlt/directory.h"

#include "vlt/chain_io.h"
#include "vlt/directory_grow.h"
#include "vlt/stored_name.h"

namespace vlt {

namespace {

/// Enters the entries from `first` on into the name index.
bool index_names(Store& store, std::int32_t first) {
    const std::int32_t count = store.images.vlt_dir_count();
    if (!store.entries.names.set_limit(count)) return false;
    for (std::int32_t i = first; i < count; ++i)
        if (store.images.entry(i).in_use()) store.entries.names.add(i);
    return true;
}

/// Enters the free entries from `first` on into the set of free entries.
bool count_free_entries(Store& store, std::int32_t first) {
    const std::int32_t count = store.images.vlt_dir_count();
    if (!store.entries.free_entries.set_limit(count)) return false;
    for (std::int32_t i = first; i < count; ++i)
        if (!store.images.entry(i).in_use()) store.entries.free_entries.add(i);
    store.entries.entries_counted = true;
    return true;
}

/// Reserves what is kept for each entry of a directory that has grown by a block: after that nothing may fail.
bool reserve_entries(KnownEntries& entries, std::int32_t limit) {
    return entries.free_entries.set_limit(limit) && entries.names.set_limit(limit) &&
           entries.states.reserve(static_cast<std::size_t>(limit));
}

/// Makes sure that there is a free entry. In a damaged directory the first entry of a new block can be in use: it
/// begins in the bytes after the last whole entry.
bool provide_free_entry(Store& store) {
    if (!store.entries.entries_counted && !count_free_entries(store, 0)) return false;
    while (store.entries.free_entries.count() == 0) {
        const std::int32_t count = store.images.vlt_dir_count();
        if (!reserve_entries(store.entries, store.images.dir_count_grown()) || !vlt_dir_extend(store)) return false;
        if (!begin_directory(store) || !index_names(store, count) || !count_free_entries(store, count)) return false;
    }
    return true;
}

}  // namespace

bool begin_directory(Store& store) {
    return store.entries.states.resize(static_cast<std::size_t>(store.images.vlt_dir_count()));
}

template <typename Char>
bool vlt_dir_find(Store& store, const Char* name, Lookup lookup, std::int32_t* index) {
    *index = no_entry;
    if (!store.entries.names.built() && !index_names(store, 0)) return false;
    const NameField field(name);
    const NameIndex& names = store.entries.names;
    *index = lookup == Lookup::files ? names.find_file(field.bytes()) : names.find_in_use(field.bytes());
    return true;
}

template <typename Char>
std::int32_t vlt_dir_add(Store& store, const Char* name) {
    if (!provide_free_entry(store)) return no_entry;
    const std::int32_t index = store.entries.free_entries.lowest();
    const NameField field(name);
    std::memset(store.images.entry_at(index), 0, static_cast<std::size_t>(store.images.entry_size()));
    vlt_dir_entry entry = store.images.entry(index);
    std::memcpy(entry.name(), field.bytes(), field.length());
    const double now = store.clock.stamp_now();
    entry.set_kind(VLT_ENTRY_FILE);
    entry.set_created(now);
    entry.set_accessed(now);
    entry.set_written(now);
    store.entries.free_entries.remove(index);
    store.entries.names.add(index);
    store.entries.states[static_cast<std::size_t>(index)] = EntryState::never_written;
    return vlt_dir_put(store, index) ? index : no_entry;
}

template bool vlt_dir_find(Store&, const char*, Lookup, std::int32_t*);
template bool vlt_dir_find(Store&, const vlt_wchar*, Lookup, std::int32_t*);
template std::int32_t vlt_dir_add(Store&, const char*);
template std::int32_t vlt_dir_add(Store&, const vlt_wchar*);

bool vlt_dir_put(Store& store, std::int32_t index) {
    const bool written = vlt_chain_write(store, store.images.directory.chain, store.images.entry_offset(index),
                                         store.images.entry_at(index), store.images.entry_size());
    EntryState& state = store.entries.states[static_cast<std::size_t>(index)];
    if (written)
        state = EntryState::stored;
    else if (state != EntryState::never_written)
        state = EntryState::writing_failed;
    return written;
}

bool vlt_dir_put_if(Store& store, std::int32_t index, bool changed) {
    if (!changed && store.entries.states[static_cast<std::size_t>(index)] == EntryState::stored) return true;
    return vlt_dir_put(store, index);
}

void keep_stamp_here(Store& store, std::int32_t index) {
    EntryState& state = store.entries.states[static_cast<std::size_t>(index)];
    if (state == EntryState::stored) state = EntryState::stamped_here;
}

void free_entry(Store& store, std::int32_t index) {
    if (store.entries.names.built()) store.entries.names.remove(index);
    store.images.entry(index).set_kind(VLT_ENTRY_FREE);
    if (store.entries.entries_counted) store.entries.free_entries.add(index);
}

}  // namespace vlt

// SPDX-License-Identifier: MIT
// The stored files that are open, over all handles of a package: how often and how each is open, and what is known of
// its chain. Several opens of one file share this, so a chain that grows or is released is known to all of them.
#pragma once

#include <cstdint>

#include "base/array.h"
#include "base/owned.h"
#include "vlt/chain.h"

/// One directory entry with at least one open file.
struct vlt_open_entry {
    std::int32_t opens = 0;            // slots that have the file open
    std::int32_t writers = 0;          // of these, opened for writing or appending
    std::int32_t exclusive_opens = 0;  // of these, opened exclusively
    vlt_chain chain;
    vlt_open_entry* previous = nullptr;  // in the list of all open entries
    vlt_open_entry* next = nullptr;
};

class vlt_open_entries {
public:
    vlt_open_entries() = default;
    vlt_open_entries(const vlt_open_entries&) = delete;
    vlt_open_entries& operator=(const vlt_open_entries&) = delete;
    ~vlt_open_entries() {
        for (vlt_open_entry* entry : by_index_) Owned<vlt_open_entry>{entry};
    }

    /// What is open of an entry, null for nothing.
    vlt_open_entry* find(std::int32_t index) {
        return static_cast<std::size_t>(index) < by_index_.size() ? by_index_[static_cast<std::size_t>(index)]
                                                                  : nullptr;
    }

    /// Makes room for one more open of any of the first `entries` entries; false when memory runs out.
    [[nodiscard]] bool provide(std::size_t entries) {
        if (!by_index_.resize(entries > by_index_.size() ? entries : by_index_.size())) return false;
        if (!spare_) spare_ = make_owned<vlt_open_entry>();
        return spare_ != nullptr;
    }

    /// Counts one more open of an entry that room was made for.
    void add(std::int32_t index, bool writes, bool exclusive) {
        vlt_open_entry*& entry = by_index_[static_cast<std::size_t>(index)];
        if (!entry) {
            entry = spare_.release();
            entry->next = list_;
            entry->previous = nullptr;
            if (list_) list_->previous = entry;
            list_ = entry;
        }
        count(*entry, writes, exclusive, 1);
    }

    /// Counts one open less, and forgets the entry with its last.
    void remove(std::int32_t index, bool writes, bool exclusive) {
        vlt_open_entry*& entry = by_index_[static_cast<std::size_t>(index)];
        count(*entry, writes, exclusive, -1);
        if (entry->opens > 0) return;
        (entry->previous ? entry->previous->next : list_) = entry->next;
        if (entry->next) entry->next->previous = entry->previous;
        entry->chain.clear();
        spare_.reset(entry);
        entry = nullptr;
    }

    template <typename Use>
    void for_each(Use use) {
        for (vlt_open_entry* entry = list_; entry; entry = entry->next) use(*entry);
    }

private:
    static void count(vlt_open_entry& entry, bool writes, bool exclusive, std::int32_t by) {
        entry.opens += by;
        if (writes) entry.writers += by;
        if (exclusive) entry.exclusive_opens += by;
    }

    Array<vlt_open_entry*> by_index_;
    vlt_open_entry* list_ = nullptr;
    Owned<vlt_open_entry> spare_;  // for the next file to be opened: as a rule one is closed before
};

// SPDX-License-Identifier: MIT
// The stored files that are open, over all handles of a package: how often and how each is open, and what is known of
// its chain. Several opens of one file share this, so a chain that grows or is released is known to all of them.
#pragma once

#include <algorithm>
#include <cstdint>

#include "base/array.h"
#include "base/owned.h"
#include "vlt/known_chain.h"

namespace vlt {

/// One directory entry with at least one open file.
struct OpenFile {
    std::int32_t opens = 0;            // slots that have the file open
    std::int32_t writers = 0;          // of these, opened for writing or appending
    std::int32_t exclusive_opens = 0;  // of these, opened exclusively
    KnownChain chain;
};

class OpenFiles {
public:
    OpenFiles() = default;
    OpenFiles(const OpenFiles&) = delete;
    OpenFiles& operator=(const OpenFiles&) = delete;
    ~OpenFiles() {
        for (OpenFile* entry : by_index_) destroy(entry);
    }

    /// What is open of an entry, null for nothing.
    OpenFile* find(std::int32_t index) const {
        return static_cast<std::size_t>(index) < by_index_.size() ? by_index_[static_cast<std::size_t>(index)]
                                                                  : nullptr;
    }

    /// Reserves one more open of any of the first `entries` entries; false when memory runs out.
    [[nodiscard]] bool reserve(std::int32_t entries) {
        if (!by_index_.resize(std::max(static_cast<std::size_t>(entries), by_index_.size()))) return false;
        if (!spare_) spare_ = make_owned<OpenFile>();
        return spare_ != nullptr;
    }

    /// Counts one more open of an entry for which it was reserved.
    void add(std::int32_t index, bool writes, bool exclusive) {
        OpenFile*& entry = by_index_[static_cast<std::size_t>(index)];
        if (!entry) entry = spare_.release();
        count(*entry, writes, exclusive, 1);
    }

    /// Counts one open less, and forgets the entry with its last.
    void remove(std::int32_t index, bool writes, bool exclusive) {
        OpenFile*& entry = by_index_[static_cast<std::size_t>(index)];
        count(*entry, writes, exclusive, -1);
        if (entry->opens > 0) return;
        entry->chain.clear();
        spare_.reset(entry);
        entry = nullptr;
    }

    /// Forgets what is known of every other chain.
    void forget_chains_but(const KnownChain& kept) {
        for (OpenFile* entry : by_index_)
            if (entry && &entry->chain != &kept) entry->chain.clear();
    }

private:
    static void count(OpenFile& entry, bool writes, bool exclusive, std::int32_t by) {
        entry.opens += by;
        if (writes) entry.writers += by;
        if (exclusive) entry.exclusive_opens += by;
    }

    Array<OpenFile*> by_index_;
    Owned<OpenFile> spare_;  // for the next file to be opened: as a rule one is closed before
};

}  // namespace vlt

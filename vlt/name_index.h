// SPDX-License-Identifier: MIT
// Which directory entries bear a name: a hash table over the entries in use, so that a file is found without a scan.
#pragma once

#include <cstdint>

#include "base/array.h"

class vlt_name_index {
public:
    static constexpr std::int32_t none = -1;

    bool built() const { return !heads_.empty(); }

    /// Makes room for entries 0 to `entries` - 1; false when memory runs out. Entries added before are kept.
    [[nodiscard]] bool set_limit(std::size_t entries);

    /// Adds an entry under the hash of its name; the limit must cover it.
    void add(std::int32_t entry, std::uint32_t hash);

    /// Removes an entry; one that is not there is ignored.
    void remove(std::int32_t entry);

    /// The first entry that may bear a name of this hash, and the one after it; `none` at the end. In no order.
    std::int32_t first(std::uint32_t hash) const { return heads_[hash & (heads_.size() - 1)] - 1; }
    std::int32_t next(std::int32_t entry) const { return links_[static_cast<std::size_t>(entry)].next - 1; }

private:
    struct Link {
        std::uint32_t hash;
        std::int32_t next;  // entry + 1, 0 at the end
        bool present;
    };
    [[nodiscard]] bool rehash(std::size_t heads);

    Array<std::int32_t> heads_;  // entry + 1, 0 for none; a power of two of them
    Array<Link> links_;          // one for each entry
};

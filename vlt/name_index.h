// SPDX-License-Identifier: MIT
// Which directory entries bear a name: a hash table over the entries in use, so that a file is found without a scan.
#pragma once

#include <cstdint>

#include "base/array.h"

class vlt_name_index {
public:
    bool built() const { return !slots_.empty(); }

    /// Makes room for `entries` entries; false when memory runs out. Entries added before are kept.
    [[nodiscard]] bool set_limit(std::size_t entries);

    /// Adds an entry under the hash of its name; the limit must cover it.
    void add(std::int32_t entry, std::uint32_t hash);

    /// Removes an entry that was added under that hash; one that is not there is ignored.
    void remove(std::int32_t entry, std::uint32_t hash);

    /// Forgets everything; it is not built then.
    void clear() { slots_.clear(); }

    /// Calls `use(entry)` for every entry whose name has that hash, in no order.
    template <typename Use>
    void for_each(std::uint32_t hash, Use use) const {
        for (std::size_t i = hash & mask(); slots_[i].entry != 0; i = (i + 1) & mask())
            if (slots_[i].hash == hash) use(slots_[i].entry - 1);
    }

private:
    struct Slot {
        std::uint32_t hash;
        std::int32_t entry;  // index plus 1; 0 in an empty slot
    };
    std::size_t mask() const { return slots_.size() - 1; }

    Array<Slot> slots_;  // a power of two of them, at most half of them taken
};

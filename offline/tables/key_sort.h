// SPDX-License-Identifier: MIT
// Sorting the records of a table by the value of one field, several times faster than comparing texts: by eight
// folded bytes at a time, in one flat array. Equal values are left in no particular order.
#pragma once

#include <cstddef>
#include <cstdint>

#include "offline/tables/index.h"

namespace vlt {

struct KeyEntry {
    std::uint64_t key;  // the eight bytes sorted by last
    std::int32_t record;
    std::uint32_t is_repeated;  // 1 when the value equals that of the entry before
};

/// Fills `entries` with the records 0 to `count` - 1 in order of their values. `scratch` has room for as many.
void key_sort(const IndexContext& context, KeyEntry* entries, KeyEntry* scratch, std::size_t count);

}  // namespace vlt

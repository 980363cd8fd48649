// SPDX-License-Identifier: MIT
// The drawings and process plans of items.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "bom/graph.h"

namespace bom {

/// The records of one table that a table of links ties to items, by item, in record order of the links.
class ItemLinks {
public:
    static ItemLinks drawings(KOfflineDb* db);  // records of BDWG
    static ItemLinks plans(KOfflineDb* db);     // records of BCAPP

    std::span<const std::int32_t> of(Item item) const {
        const auto i = static_cast<std::size_t>(item);
        return {records_.data() + begin_[i], records_.data() + begin_[i + 1]};
    }

private:
    ItemLinks(KOfflineDb* db, KOfflineTable* links, KOfflineTable* targets);

    std::vector<std::int32_t> begin_;    // by item, and the end
    std::vector<std::int32_t> records_;  // of all items one after another
};

}  // namespace bom

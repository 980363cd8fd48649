// SPDX-License-Identifier: MIT
// Finding the entries of an index that equal a key.
#pragma once

#include <cstdint>

#include "offline/tables/index.h"

namespace vlt {

/// The entries that equal a key, in index order.
class IndexMatches {
public:
    IndexMatches() = default;
    explicit IndexMatches(std::int32_t only_record) : only_(only_record), count_(1) {}
    IndexMatches(const std::int32_t* entries, std::int32_t count) : entries_(entries), count_(count) {}

    std::int32_t count() const { return count_; }
    std::int32_t operator[](std::int32_t i) const { return entries_ ? entries_[i] : only_; }

private:
    const std::int32_t* entries_ = nullptr;
    std::int32_t only_ = -1;
    std::int32_t count_ = 0;
};

/// Looks a key up in a current index.
IndexMatches index_find(const KOfflineTable* table, std::int32_t field, const char* key);

/// The position of the first of `count` sorted entries that is not below the key, or, for `above`, is above it.
std::int32_t index_bound(const IndexContext& context, const std::int32_t* index, std::int32_t count, const char* key,
                         bool above);

}  // namespace vlt

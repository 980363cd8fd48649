// SPDX-License-Identifier: MIT
// Records by their NIDs. Links name a record by the text of its NID, so "7" does not name record "007".
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "include/offline.h"

namespace bom {

/// Whether every NID is a plain number above that of the record before: then none is there twice.
bool has_ascending_nids(KOfflineTable* table, std::int32_t field);

class NidMap {
public:
    NidMap(KOfflineTable* table, std::int32_t field);

    /// The record with this NID; of several the first. -1 when there is none, or no text is given.
    std::int32_t find(const char* nid) const;

    /// Records whose NID an earlier one has, in record order.
    const std::vector<std::int32_t>& doubles() const { return doubles_; }

private:
    struct Entry {
        std::uint32_t number;
        std::int32_t rec;
        auto operator<=>(const Entry&) const = default;
    };

    void read_run(KOfflineTable* table, std::int32_t field);
    void add(const char* nid, std::int32_t rec);
    bool is_in_run(std::int64_t number) const { return number >= run_first_ && number - run_first_ < run_; }

    void sort_numbers();
    std::size_t bucket(std::uint32_t number) const { return (number - numbers_.front().number) >> shift_; }

    void list_dense();
    std::int32_t find_text(const char* nid) const;
    std::int32_t find_number(std::uint32_t number) const;

    // The first records, as long as each has the number after that of the one before. All others stand below.
    std::int64_t run_first_ = 0;
    std::int32_t run_ = 0;

    // NIDs that are plain numbers one after another, or nearly: the record of each number from the first on.
    std::vector<std::int32_t> dense_;

    // NIDs that are plain numbers, sorted, and where the numbers with the same upper bits begin: about as many
    // buckets as numbers, so that a search looks at one or two, and never at more than a halving search does.
    std::vector<Entry> numbers_;
    std::vector<std::uint32_t> begin_;
    unsigned shift_ = 0;
    std::map<std::string, std::int32_t> texts_;  // all others
    std::vector<std::int32_t> doubles_;
};

}  // namespace bom

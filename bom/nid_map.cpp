// SPDX-License-Identifier: MIT
#include "bom/nid_map.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "bom/text.h"

namespace bom {

namespace {

/// The number that a text stands for if it is written as numbers are: without sign and leading zeros.
std::optional<std::uint32_t> plain_number(const char* text) {
    if (*text == '\0' || (*text == '0' && text[1] != '\0')) return std::nullopt;
    std::uint64_t number = 0;
    for (; *text; ++text) {
        if (*text < '0' || *text > '9') return std::nullopt;
        number = number * 10 + static_cast<std::uint64_t>(*text - '0');
        if (number > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
    }
    return static_cast<std::uint32_t>(number);
}

}  // namespace

bool has_ascending_nids(KOfflineTable* table, std::int32_t field) {
    const std::int32_t records = KOfflineTable_GetRecsCount(table);
    std::int64_t last = -1;
    for (std::int32_t rec = 0; rec < records; ++rec) {
        const char* nid = KOfflineTable_GetFldValue(table, rec, field);
        const auto number = nid ? plain_number(nid) : std::nullopt;
        if (!number || *number <= last) return false;
        last = *number;
    }
    return true;
}

NidMap::NidMap(KOfflineTable* table, std::int32_t field) {
    const std::int32_t records = KOfflineTable_GetRecsCount(table);
    numbers_.reserve(static_cast<std::size_t>(records));
    for (std::int32_t rec = 0; rec < records; ++rec) {
        const char* nid = KOfflineTable_GetFldValue(table, rec, field);
        if (!nid || !*nid) continue;
        if (const auto number = plain_number(nid)) {
            numbers_.push_back({*number, rec});
        } else if (!texts_.emplace(folded(nid), rec).second) {
            doubles_.push_back(rec);
        }
    }
    if (!numbers_.empty()) sort_numbers();
    std::sort(doubles_.begin(), doubles_.end());
}

void NidMap::sort_numbers() {
    if (!std::is_sorted(numbers_.begin(), numbers_.end())) std::sort(numbers_.begin(), numbers_.end());
    const auto is_double = [this](const Entry& a, const Entry& b) {
        if (a.number != b.number) return false;
        doubles_.push_back(b.rec);
        return true;
    };
    numbers_.erase(std::unique(numbers_.begin(), numbers_.end(), is_double), numbers_.end());
    const std::uint32_t range = numbers_.back().number - numbers_.front().number;
    if (range / 4 < numbers_.size()) return list_dense();
    while (bucket(numbers_.back().number) > numbers_.size()) ++shift_;
    begin_.assign(bucket(numbers_.back().number) + 2, 0);
    for (const Entry& entry : numbers_) ++begin_[bucket(entry.number) + 1];
    for (std::size_t i = 1; i < begin_.size(); ++i) begin_[i] += begin_[i - 1];
}

void NidMap::list_dense() {
    dense_.assign(numbers_.back().number - numbers_.front().number + std::size_t{1}, -1);
    for (const Entry& entry : numbers_) dense_[entry.number - numbers_.front().number] = entry.rec;
}

std::int32_t NidMap::find(const char* nid) const {
    if (!nid || !*nid) return -1;
    const auto number = plain_number(nid);
    if (!number) {
        const auto found = texts_.find(folded(nid));
        return found == texts_.end() ? -1 : found->second;
    }
    if (numbers_.empty() || *number < numbers_.front().number || *number > numbers_.back().number) return -1;
    if (!dense_.empty()) return dense_[*number - numbers_.front().number];
    const auto begin = numbers_.begin() + begin_[bucket(*number)],
               end = numbers_.begin() + begin_[bucket(*number) + 1];
    const auto found = std::lower_bound(begin, end, Entry{*number, 0});
    return found != end && found->number == *number ? found->rec : -1;
}

}  // namespace bom

// SPDX-License-Identifier: MIT
#include "bom/nid_map.h"

#include <algorithm>
#include <limits>

#include "bom/text.h"

namespace bom {

namespace {

constexpr std::int64_t kNoNumber = -1;
constexpr std::int64_t kGreatest = std::numeric_limits<std::uint32_t>::max();
constexpr std::ptrdiff_t kMostDigits = std::numeric_limits<std::uint32_t>::digits10 + 1;

/// The number of 32 bits that a text stands for if it is written as numbers are: without sign and leading zeros;
/// kNoNumber for any other. Called for every end of a line, and an optional would come back by way of memory.
std::int64_t plain_number(const char* text) {
    if (*text == '\0' || (*text == '0' && text[1] != '\0')) return kNoNumber;
    std::uint64_t number = 0;
    const char* at = text;
    for (; *at >= '0' && *at <= '9'; ++at) number = number * 10 + static_cast<std::uint64_t>(*at - '0');
    if (*at || at - text > kMostDigits || number > kGreatest) return kNoNumber;
    return static_cast<std::int64_t>(number);
}

}  // namespace

bool has_ascending_nids(KOfflineTable* table, std::int32_t field) {
    const std::int32_t records = KOfflineTable_GetRecsCount(table);
    std::int64_t last = -1;
    for (std::int32_t rec = 0; rec < records; ++rec) {
        const char* nid = KOfflineTable_GetFldValue(table, rec, field);
        const std::int64_t number = nid ? plain_number(nid) : kNoNumber;
        if (number <= last) return false;
        last = number;
    }
    return true;
}

NidMap::NidMap(KOfflineTable* table, std::int32_t field) {
    read_run(table, field);
    const std::int32_t records = KOfflineTable_GetRecsCount(table);
    numbers_.reserve(static_cast<std::size_t>(records - run_));
    for (std::int32_t rec = run_; rec < records; ++rec) {
        const char* nid = KOfflineTable_GetFldValue(table, rec, field);
        if (nid && *nid) add(nid, rec);
    }
    if (!numbers_.empty()) sort_numbers();
    std::sort(doubles_.begin(), doubles_.end());
}

void NidMap::read_run(KOfflineTable* table, std::int32_t field) {
    const std::int32_t records = KOfflineTable_GetRecsCount(table);
    for (; run_ < records; ++run_) {
        const char* nid = KOfflineTable_GetFldValue(table, run_, field);
        const std::int64_t number = nid ? plain_number(nid) : kNoNumber;
        if (run_ == 0) run_first_ = number;
        if (number == kNoNumber || number != run_first_ + run_) return;
    }
}

void NidMap::add(const char* nid, std::int32_t rec) {
    const std::int64_t number = plain_number(nid);
    if (number == kNoNumber) {
        if (!texts_.emplace(folded(nid), rec).second) doubles_.push_back(rec);
    } else if (is_in_run(number)) {
        doubles_.push_back(rec);
    } else {
        numbers_.push_back({static_cast<std::uint32_t>(number), rec});
    }
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
    const std::int64_t number = plain_number(nid);
    if (is_in_run(number)) return static_cast<std::int32_t>(number - run_first_);
    if (number == kNoNumber) return find_text(nid);
    if (numbers_.empty() || number < numbers_.front().number || number > numbers_.back().number) return -1;
    const auto wanted = static_cast<std::uint32_t>(number);
    return dense_.empty() ? find_number(wanted) : dense_[wanted - numbers_.front().number];
}

std::int32_t NidMap::find_text(const char* nid) const {
    const auto found = texts_.find(folded(nid));
    return found == texts_.end() ? -1 : found->second;
}

std::int32_t NidMap::find_number(std::uint32_t number) const {
    const auto begin = numbers_.begin() + begin_[bucket(number)], end = numbers_.begin() + begin_[bucket(number) + 1];
    const auto found = std::lower_bound(begin, end, Entry{number, 0});
    return found != end && found->number == number ? found->rec : -1;
}

}  // namespace bom

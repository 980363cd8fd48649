// SPDX-License-Identifier: MIT
#include "tests/support/reference_table.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace {

std::string Folded(std::string text) {
    for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    return text;
}

/// The sort that fixes the order of equal keys, written recursively: the order of the parts does not matter.
void Sort(const std::vector<std::string>& keys, std::int32_t* lo, std::int32_t* hi) {
    const auto key = [&](const std::int32_t* at) -> const std::string& {
        return keys[static_cast<std::size_t>(*at)];
    };
    const auto size = hi - lo + 1;
    if (size <= 8) {
        for (; hi > lo; --hi) {
            std::int32_t* largest = lo;
            for (std::int32_t* at = lo; at <= hi; ++at) largest = key(at) > key(largest) ? at : largest;
            std::swap(*largest, *hi);
        }
        return;
    }
    std::swap(*lo, lo[size / 2]);
    std::int32_t* left = lo;
    std::int32_t* right = hi + 1;
    while (true) {
        do ++left;
        while (left <= hi && key(left) <= key(lo));
        do --right;
        while (right > lo && key(right) >= key(lo));
        if (right < left) break;
        std::swap(*left, *right);
    }
    std::swap(*lo, *right);
    Sort(keys, lo, right - 1);
    Sort(keys, left, hi);
}

bool IsWhole(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

void ReferenceTable::Add(const std::vector<Value>& values) {
    std::vector<Value> record = values;
    record.resize(static_cast<std::size_t>(fields_));
    if (record[0].value_or("").empty()) GiveNid(&record);
    records_.push_back(record);
    stale_ = true;
}

void ReferenceTable::Copy(std::size_t record) {
    std::vector<Value> copy = records_[record];
    GiveNid(&copy);
    records_.push_back(copy);
    stale_ = true;
}

void ReferenceTable::Set(std::size_t record, int field, const std::string& value) {
    if (indexes_.count(field)) stale_ = true;
    Value& old = records_[record][static_cast<std::size_t>(field)];
    if (old || !value.empty()) old = value;
}

void ReferenceTable::Delete(std::size_t record) {
    if (watermark_ < 0) NextNidBase();
    records_.erase(records_.begin() + static_cast<std::ptrdiff_t>(record));
    const auto number = static_cast<std::int32_t>(record);
    for (auto& [field, index] : indexes_) {
        index.erase(std::remove(index.begin(), index.end(), number), index.end());
        for (std::int32_t& entry : index) entry -= entry > number;
    }
}

void ReferenceTable::LoadIndex(int field) {
    indexes_[field] = Sorted(field);
}

int ReferenceTable::Search(int field, const std::string& key, std::vector<std::int32_t>* found) {
    const bool indexed = indexes_.count(field) != 0;
    if (indexed && stale_) {
        for (auto& [each, index] : indexes_) index = Sorted(each);
        stale_ = false;
    }
    std::vector<std::int32_t> order(records_.size());
    std::iota(order.begin(), order.end(), 0);
    found->clear();
    for (const std::int32_t record : indexed ? indexes_[field] : order) {
        const Value& value = records_[static_cast<std::size_t>(record)][static_cast<std::size_t>(field)];
        if (Folded(value.value_or("")) == Folded(key)) found->push_back(record);
    }
    return found->empty() && indexed ? -1 : static_cast<int>(found->size());
}

void ReferenceTable::GiveNid(std::vector<Value>* values) {
    (*values)[0] = std::to_string(NextNidBase() + 1);
}

int ReferenceTable::NextNidBase() {
    if (watermark_ >= 0) return ++watermark_;
    watermark_ = 0;
    for (const auto& record : records_) {
        if (record[0] && IsWhole(*record[0])) watermark_ = std::max(watermark_, std::atoi(record[0]->c_str()));
    }
    return watermark_;
}

std::vector<std::int32_t> ReferenceTable::Sorted(int field) const {
    std::vector<std::string> keys;
    for (const auto& record : records_) keys.push_back(Folded(record[static_cast<std::size_t>(field)].value_or("")));
    std::vector<std::int32_t> order(keys.size());
    std::iota(order.begin(), order.end(), 0);
    if (order.size() > 1) Sort(keys, order.data(), order.data() + order.size() - 1);
    return order;
}

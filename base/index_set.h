// SPDX-License-Identifier: MIT
// A set of small numbers that knows its lowest member: free blocks, free directory entries, free file slots.
#pragma once

#include <bit>
#include <cstdint>

#include "base/array.h"

/// One bit a number, and one bit for each word of those, so that the lowest member of a hundred million numbers is
/// found after a few thousand words at the worst, and after one or two as a rule.
class IndexSet {
public:
    /// The numbers that may be members are 0 to `limit` - 1. False when memory runs out, and nothing has changed.
    [[nodiscard]] bool set_limit(std::size_t limit) {
        const std::size_t words = (limit + 63) / 64;
        if (words <= bits_.size()) return true;
        if (!bits_.reserve(words)) return false;
        return upper_.resize((words + 63) / 64) && bits_.resize(words);
    }

    std::size_t limit() const { return bits_.size() * 64; }
    std::size_t count() const { return count_; }

    bool contains(std::size_t number) const {
        return number < limit() && (bits_[number / 64] >> (number % 64) & 1) != 0;
    }

    void add(std::size_t number) {
        if (contains(number)) return;
        const std::size_t word = number / 64;
        bits_[word] |= std::uint64_t{1} << (number % 64);
        upper_[word / 64] |= std::uint64_t{1} << (word % 64);
        if (word / 64 < lowest_upper_) lowest_upper_ = word / 64;
        ++count_;
    }

    void remove(std::size_t number) {
        if (!contains(number)) return;
        const std::size_t word = number / 64;
        bits_[word] &= ~(std::uint64_t{1} << (number % 64));
        if (bits_[word] == 0) upper_[word / 64] &= ~(std::uint64_t{1} << (word % 64));
        --count_;
    }

    /// The lowest member. There must be one.
    std::size_t lowest() {
        while (upper_[lowest_upper_] == 0) ++lowest_upper_;
        const std::size_t word =
            lowest_upper_ * 64 + static_cast<std::size_t>(std::countr_zero(upper_[lowest_upper_]));
        return word * 64 + static_cast<std::size_t>(std::countr_zero(bits_[word]));
    }

    void clear() {
        bits_.clear();
        upper_.clear();
        count_ = lowest_upper_ = 0;
    }

private:
    Array<std::uint64_t> bits_;
    Array<std::uint64_t> upper_;
    std::size_t count_ = 0;
    std::size_t lowest_upper_ = 0;
};

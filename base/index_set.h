// SPDX-License-Identifier: MIT
// A set of small numbers that knows its lowest member: free blocks, free directory entries, free file slots.
#pragma once

#include <bit>
#include <cstdint>

#include "base/array.h"

namespace vlt {

/// One bit a number, and one bit for each word of those, so that the lowest member of a hundred million numbers is
/// found after a few thousand words at the worst, and after one or two as a rule.
class IndexSet {
public:
    /// The numbers that may be members are 0 to `limit` - 1. False when memory runs out, and nothing has changed.
    [[nodiscard]] bool set_limit(std::int32_t limit) {
        const std::size_t words = (static_cast<std::size_t>(limit) + 63) / 64;
        if (words <= bits_.size()) return true;
        if (!bits_.reserve(words)) return false;
        return upper_.resize((words + 63) / 64) && bits_.resize(words);
    }

    std::int32_t count() const { return count_; }

    /// Any number may be asked for, also one that cannot be a member.
    bool contains(std::int32_t number) const {
        return word_of(number) < bits_.size() && (bits_[word_of(number)] & bit_of(number)) != 0;
    }

    void add(std::int32_t number) {
        if (contains(number)) return;
        const std::size_t word = word_of(number);
        bits_[word] |= bit_of(number);
        upper_[word / 64] |= std::uint64_t{1} << (word % 64);
        if (word / 64 < lowest_upper_) lowest_upper_ = word / 64;
        ++count_;
    }

    void remove(std::int32_t number) {
        if (!contains(number)) return;
        const std::size_t word = word_of(number);
        bits_[word] &= ~bit_of(number);
        if (bits_[word] == 0) upper_[word / 64] &= ~(std::uint64_t{1} << (word % 64));
        --count_;
    }

    /// The lowest member. There must be one.
    std::int32_t lowest() {
        while (upper_[lowest_upper_] == 0) ++lowest_upper_;
        const std::size_t word =
            lowest_upper_ * 64 + static_cast<std::size_t>(std::countr_zero(upper_[lowest_upper_]));
        return static_cast<std::int32_t>(word * 64) + std::countr_zero(bits_[word]);
    }

    void clear() {
        bits_.clear();
        upper_.clear();
        count_ = 0;
        lowest_upper_ = 0;
    }

private:
    // A number below 0 has a word far beyond those of the set.
    static std::size_t word_of(std::int32_t number) { return static_cast<std::uint32_t>(number) / 64; }
    static std::uint64_t bit_of(std::int32_t number) {
        return std::uint64_t{1} << (static_cast<std::uint32_t>(number) % 64);
    }

    Array<std::uint64_t> bits_;
    Array<std::uint64_t> upper_;
    std::int32_t count_ = 0;
    std::size_t lowest_upper_ = 0;
};

}  // namespace vlt

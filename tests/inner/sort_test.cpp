// SPDX-License-Identifier: MIT
#include "offline/tables/tie_order_sort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "offline/tables/folded_key.h"
#include "offline/tables/rank_sort.h"

using namespace vlt;

namespace {

using Numbers = std::vector<std::uint32_t>;

int CompareRanks(const void* left, const void* right, void*) {
    const std::uint32_t a = rank_of(*static_cast<const RankedItem*>(left));
    const std::uint32_t b = rank_of(*static_cast<const RankedItem*>(right));
    return a < b ? -1 : a > b;
}

std::vector<RankedItem> Items(const Numbers& ranks) {
    std::vector<RankedItem> items;
    for (const std::uint32_t rank : ranks)
        items.push_back(ranked_item(rank, static_cast<std::uint32_t>(items.size())));
    return items;
}

/// The order in which the sort leaves elements with these keys, as their former positions.
Numbers SortedPositions(const std::string& keys) {
    const auto exchange = [](void* left, void* right, std::int32_t width, void* exchanges) {
        ++*static_cast<int*>(exchanges);
        std::swap_ranges(static_cast<char*>(left), static_cast<char*>(left) + width, static_cast<char*>(right));
    };
    int exchanges = 0;
    std::vector<RankedItem> items = Items(Numbers(keys.begin(), keys.end()));
    KArray_Sort(items.data(), static_cast<int>(items.size()), sizeof(RankedItem), CompareRanks, exchange, &exchanges);
    EXPECT_GT(exchanges, 0);
    return Numbers(items.begin(), items.end());
}

TEST(Sort, TheOrderOfEqualElementsIsFixed) {
    EXPECT_EQ(SortedPositions(std::string(8, 'A')), (Numbers{1, 2, 3, 4, 5, 6, 7, 0}));
    EXPECT_EQ(SortedPositions(std::string(9, 'A')), (Numbers{4, 1, 2, 3, 0, 5, 6, 7, 8}));
    EXPECT_EQ(SortedPositions("BABABABABAC"), (Numbers{5, 1, 3, 7, 9, 2, 0, 8, 4, 6, 10}));
    KArray_Sort(nullptr, 1, 1, nullptr, nullptr, nullptr);
    KArray_Sort(nullptr, 5, 0, nullptr, nullptr, nullptr);
}

struct Pattern {
    const char* name;
    std::function<std::uint32_t(std::uint32_t at, std::uint32_t size, std::mt19937& random)> value;
};

const Pattern kPatterns[] = {
    {"random", [](auto, auto size, auto& random) { return std::uint32_t(random() % size); }},
    {"mostly one", [](auto, auto size, auto& random) { return random() % 4 ? 0 : std::uint32_t(random() % size); }},
    {"rising", [](auto at, auto, auto&) { return at; }},
    {"falling", [](auto at, auto size, auto&) { return size - 1 - at; }},
    {"organ pipe", [](auto at, auto size, auto&) { return std::min(at, size - 1 - at); }},
    {"twice rising", [](auto at, auto size, auto&) { return at % (size / 2 + 1); }},
    {"outside in", [](auto at, auto size, auto&) { return at < size / 2 ? 2 * at : 2 * (size - 1 - at); }},
    {"inside out", [](auto at, auto size, auto&) { return at < size / 2 ? size - 1 - 2 * at : 2 * at - size; }},
    {"valley", [](auto at, auto size, auto&) { return std::max(at, size - 1 - at); }},
};

/// Items in the order of a pattern, with dense ranks.
struct Ranked {
    Ranked(const Pattern& pattern, std::uint32_t size, std::uint32_t distinct, std::mt19937& random) {
        Numbers ranks;
        for (std::uint32_t i = 0; i < size; ++i)
            ranks.push_back(std::uint32_t(std::uint64_t{pattern.value(i, size, random)} * distinct / size));
        Numbers sorted = ranks;
        std::sort(sorted.begin(), sorted.end());
        sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
        before.resize(sorted.size() + 1);
        for (std::uint32_t& rank : ranks) {
            rank = std::uint32_t(std::lower_bound(sorted.begin(), sorted.end(), rank) - sorted.begin());
            ++before[rank + 1];
        }
        std::partial_sum(before.begin(), before.end(), before.begin());
        items = Items(ranks);
    }
    void Sort() { rank_sort(items.data(), items.size(), before.data(), std::uint32_t(before.size() - 1)); }

    std::vector<RankedItem> items;
    Numbers before;  // how many items are below each rank
};

TEST(Sort, SortingRanksLeavesEveryElementWhereThePlainSortDoes) {
    std::mt19937 random(1);
    for (int round = 0; round < 6000; ++round) {
        const bool large = round % 3000 < std::ssize(kPatterns);  // enough for every short cut
        const auto size = std::uint32_t(large ? 9000 : 1 + random() % (round % 40 ? 60 : 1500));
        const auto distinct = large ? size / 2 : std::uint32_t(1 + random() % (1 + random() % size));
        const Pattern& pattern = kPatterns[round % std::size(kPatterns)];
        Ranked fast(pattern, size, distinct, random);
        std::vector<RankedItem> plain = fast.items;
        KArray_Sort(plain.data(), int(size), sizeof(RankedItem), CompareRanks, nullptr, nullptr);
        fast.Sort();
        ASSERT_EQ(fast.items, plain) << pattern.name << " size " << size << " distinct " << distinct;
    }
}

TEST(Sort, NoPatternTakesLong) {
    constexpr std::uint32_t kSize = 100000;  // the plain sort would make a thousand million comparisons
    std::mt19937 random(1);
    for (const std::uint32_t distinct : {1u, 2u, 3u, 1000u, kSize / 2}) {
        for (const Pattern& pattern : kPatterns) {
            Ranked ranked(pattern, kSize, distinct, random);
            ranked.Sort();
            EXPECT_TRUE(std::ranges::is_sorted(ranked.items, {}, rank_of)) << pattern.name;
        }
    }
}

TEST(Sort, KeysCompareAsFoldedBytes) {
    for (int c = 0; c < 256; ++c) {
        const char text[16] = {char(c), 'Z', char(c), 0, 'x'};
        const int folded = c >= 'A' && c <= 'Z' ? c + 32 : c;
        const std::uint64_t expected =
            (std::uint64_t(folded) << 56) | (std::uint64_t('z') << 48) | (std::uint64_t(folded) << 40);
        EXPECT_EQ(folded_key(text), c ? expected : 0) << c;
    }
    EXPECT_FALSE(key_goes_on(folded_key("1234567\0margin")));
    EXPECT_TRUE(key_goes_on(folded_key("12345678\0margin")));
}

}  // namespace

// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/table.h"

namespace {

using Records = std::vector<std::int32_t>;

TEST(Index, OrdersValuesAsTextWithLettersFoldedAndNoValueFirst) {
    Table numbers({"NID"}, {"1", "2", "10", "9"});
    EXPECT_EQ(KOfflineTable_LoadIdx(numbers, "NID"), 1);
    EXPECT_EQ(numbers.Index("NID"), (Records{0, 2, 1, 3}));

    Table texts({"NID", "A"}, {"1\tb", "2\tB0", "3\t_", "4\t\xe9", "5\ta", "6", "7\tB"});
    EXPECT_EQ(KOfflineTable_LoadIdx(texts, "TABLE.a"), 1);
    EXPECT_EQ(texts.Index("A"), (Records{5, 2, 4, 6, 0, 1, 3}));
}

TEST(Index, LeavesEqualValuesInTheOrderOfTheSort) {
    Table three({"A"}, {"x", "X", "x"});
    EXPECT_EQ(KOfflineTable_LoadIdx(three, "A"), 1);
    EXPECT_EQ(three.Index("A"), (Records{1, 2, 0}));
    EXPECT_EQ(three.Find("A", "x"), (Records{1, 2, 0}));
    Table two({"A"}, {"x", "x"});
    EXPECT_EQ(KOfflineTable_LoadIdx(two, "A"), 1);
    EXPECT_EQ(two.Index("A"), (Records{1, 0}));
}

TEST(Index, OfAFieldThatIsNotThereIsRefusedWithItsNameAsItWasGiven) {
    Table table({"A"}, {"x"});
    EXPECT_EQ(KOfflineTable_LoadIdx(table, "TABLE.None"), 0);
    EXPECT_EQ(table.error(), KOFFLINE_ERR_INDEX);
    EXPECT_EQ(table.error_text(), "TABLE.None");
    EXPECT_EQ(KOfflineTable_LoadIdx(table, std::string(1000, 'n').c_str()), 0);
    EXPECT_EQ(table.error_text(), std::string(255, 'n'));
    EXPECT_EQ(KOfflineTable_LoadIdx(table, nullptr), 0);
    EXPECT_EQ(table.error_text(), "");
    EXPECT_EQ(KOfflineTable_GetIndexRecs(table, 0), nullptr);
    EXPECT_EQ(KOfflineTable_GetIndexRecs(table, 1), nullptr);
}

TEST(Index, IsNotGivenToATableThatHasHeldNoRecord) {
    Table table({"A"});
    EXPECT_EQ(KOfflineTable_LoadIdx(table, "A"), 1);
    EXPECT_EQ(KOfflineTable_GetIndexRecs(table, 0), nullptr);
    table.Add("x");
    EXPECT_EQ(table.Find("A", "x"), Records{0}) << "by a scan";
    EXPECT_EQ(table.Find("A", "y"), Records{0}) << "a scan counts none";
    EXPECT_EQ(table->indexes_stale, 1);
    KOfflineTable_DelRec(table, 0);
    EXPECT_EQ(KOfflineTable_LoadIdx(table, "A"), 1);
    EXPECT_NE(KOfflineTable_GetIndexRecs(table, 0), nullptr);
    EXPECT_EQ(table.Find("A", "x"), Records{-1});
    KOfflineTable_Clear(table);
    EXPECT_EQ(KOfflineTable_GetIndexRecs(table, 0), nullptr);
}

TEST(Search, FindsInAnyLetterCaseButOnlyWholeValues) {
    for (const bool indexed : {false, true}) {
        Table table({"NID", "CCODE"}, {"12\tabc", "1\tABCD", "2\t", "3"});
        if (indexed) KOfflineTable_LoadIdx(table, "NID");
        if (indexed) KOfflineTable_LoadIdx(table, "CCODE");
        const Records none{indexed ? -1 : 0};
        EXPECT_EQ(table.Find("CCODE", "ABC"), Records{0});
        EXPECT_EQ(table.Find("CCODE", "ab"), none);
        EXPECT_EQ(table.Find("NID", "012"), none);
        EXPECT_EQ(table.Find("CCODE", ""), (indexed ? Records{3, 2} : Records{2, 3}));
        EXPECT_EQ(table.Find("CCODE", nullptr), table.Find("CCODE", ""));
        EXPECT_EQ(table.Find("NONE", "x"), Records{-1});
    }
}

TEST(Search, CountsAllMatchesWhateverTheRoom) {
    for (const bool indexed : {false, true}) {
        Table table({"A"}, {"x", "x", "x", "x"});
        if (indexed) KOfflineTable_LoadIdx(table, "A");
        std::int32_t found[2] = {-7, -7};
        EXPECT_EQ(KOfflineTable_Search(table, 0, "x", found, 1), 4);
        EXPECT_EQ(found[0], indexed ? 1 : 0);
        EXPECT_EQ(found[1], -7);
        EXPECT_EQ(KOfflineTable_Search(table, 0, "x", nullptr, 5), 4);
        EXPECT_EQ(KOfflineTable_Search(table, 0, "x", found + 1, -1), 4);
        EXPECT_EQ(found[1], -7);
    }
}

TEST(Index, IsLeftAsItIsUntilASearchRefreshesIt) {
    Table table({"A", "B"}, {"b", "d"});
    KOfflineTable_LoadIdx(table, "A");
    EXPECT_EQ(table->indexes_stale, 1) << "building an index does not make the others current";
    EXPECT_EQ(table.Find("A", "b"), Records{0});
    EXPECT_EQ(table->indexes_stale, 0);
    table.Add("a");
    table.Add("c");
    EXPECT_EQ(table.Index("A"), (Records{0, 1, 0, 0})) << "the old entries, then none";
    EXPECT_EQ(table.Find("B", "b"), Records{0}) << "a scan refreshes nothing";
    EXPECT_EQ(table.Index("A"), (Records{0, 1, 0, 0}));
    EXPECT_EQ(table.Find("A", "c"), Records{3});
    EXPECT_EQ(table.Index("A"), (Records{2, 0, 3, 1}));
    table.Set(0, 1, "not indexed");
    EXPECT_EQ(table->indexes_stale, 0);
    table.Set(0, 0, "B");
    EXPECT_EQ(table->indexes_stale, 1) << "even where the order stays";
    table.Set(0, 0, "z");
    EXPECT_EQ(table.Index("A"), (Records{2, 0, 3, 1}));
    EXPECT_EQ(table.Find("A", "z"), Records{0});
    EXPECT_EQ(table.Index("A"), (Records{2, 3, 1, 0}));
}

TEST(Index, IsMendedByADeletion) {
    Table table({"A"}, {"c", "e", "b", "d", "a"});
    KOfflineTable_LoadIdx(table, "A");
    EXPECT_EQ(table.Index("A"), (Records{4, 2, 0, 3, 1}));
    EXPECT_EQ(KOfflineTable_DelRec(table, 2), 1);
    EXPECT_EQ(table.Index("A"), (Records{3, 0, 2, 1}));
    EXPECT_EQ(table->indexes_stale, 1);
    EXPECT_EQ(table.Find("A", "a"), Records{3});
}

TEST(Index, KeepsAMendedOrderOfEqualValuesUntilTheNextRefresh) {
    Table table({"A"}, {"x", "x", "x", "x"});
    KOfflineTable_LoadIdx(table, "A");
    EXPECT_EQ(table.Find("A", "x"), (Records{1, 2, 3, 0}));
    EXPECT_EQ(KOfflineTable_DelRec(table, 0), 1);
    EXPECT_EQ(table.Find("A", "x"), (Records{0, 1, 2})) << "what is left of 1 2 3 0, each lowered";
    table.Add("y");
    EXPECT_EQ(table.Find("A", "x"), (Records{1, 2, 0})) << "three equal values sorted anew";
}

TEST(Index, IsNeverReadBeyondWhatItHolds) {
    Table table({"A"}, {"x"});
    KOfflineTable_LoadIdx(table, "A");
    for (int i = 0; i < 600; ++i) table.Add(std::to_string(i));
    EXPECT_EQ(KOfflineTable_DelRec(table, 600), 1);
    EXPECT_EQ(KOfflineTable_DelRec(table, 0), 1);
    EXPECT_EQ(*KOfflineTable_GetIndexRecs(table, 0), 0);
    EXPECT_EQ(table.Find("A", "0"), Records{0});
    EXPECT_EQ(table.Find("A", "599"), Records{-1});
    for (int i = 599; i > 0; --i) EXPECT_EQ(KOfflineTable_DelRec(table, i - 1), 1);
    EXPECT_EQ(KOfflineTable_GetRecsCount(table), 0);
    EXPECT_EQ(table.Find("A", "0"), Records{-1});
}

}  // namespace

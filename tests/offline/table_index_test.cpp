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

TEST(Search, OfNumbersComparesThemAsText) {
    Table table({"NID"});
    for (int i = 5; i < 105; ++i) table.Add(std::to_string(i));
    EXPECT_EQ(KOfflineTable_LoadIdx(table, "NID"), 1);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(table.Find("NID", "7"), Records{2}) << "more than once, which prepares a table";
    for (const char* none : {"07", "4", "105", "+7", ""}) EXPECT_EQ(table.Find("NID", none), Records{-1}) << none;
}

TEST(Index, KeepsAMendedOrderOfEqualValuesUntilTheNextRefresh) {
    Table table({"A"}, {"x", "X", "x", "x"});
    EXPECT_EQ(KOfflineTable_LoadIdx(table, "A"), 1);
    EXPECT_EQ(table.Find("A", "x"), (Records{1, 2, 3, 0}));
    EXPECT_EQ(KOfflineTable_DelRec(table, 0), 1);
    EXPECT_EQ(table.Find("A", "x"), (Records{0, 1, 2})) << "what is left of 1 2 3 0, each lowered";
    table.Add("y");
    EXPECT_EQ(table.Find("A", "x"), (Records{1, 2, 0})) << "three equal values sorted anew";
    EXPECT_EQ(KOfflineTable_DelRec(table, 2), 1);
    EXPECT_EQ(KOfflineTable_GetIndexRecs(table, 0)[3], 0) << "the slot that is free now";
    table.Add("y");
    EXPECT_EQ(table.Find("A", "x"), (Records{1, 0})) << "and two";
    EXPECT_EQ(KOfflineTable_Search(table, 0, "x", nullptr, 5), 2);
    while (KOfflineTable_DelRec(table, 0)) {
    }
    EXPECT_EQ(table.Find("A", "x"), Records{-1});
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
}

TEST(Index, IsLeftAsItIsUntilASearchRefreshesIt) {
    Table table({"A", "B"}, {"b", "d"});
    KOfflineTable_LoadIdx(table, "A");
    EXPECT_EQ(table->indexes_stale, 1) << "building an index does not make the others current";
    table.Add("a");
    table.Add("c");
    EXPECT_EQ(table.Index("A"), (Records{0, 1, 0, 0})) << "the old entries, then none";
    EXPECT_EQ(table.Find("B", "b"), Records{0}) << "a scan refreshes nothing, and counts none";
    EXPECT_EQ(table.Index("A"), (Records{0, 1, 0, 0}));
    EXPECT_EQ(table.Find("A", "c"), Records{3});
    EXPECT_EQ(table.Index("A"), (Records{2, 0, 3, 1}));
    EXPECT_EQ(table->indexes_stale, 0);
    table.Set(0, 0, "B");
    EXPECT_EQ(table->indexes_stale, 1) << "even where the order stays";
}

}  // namespace

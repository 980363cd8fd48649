// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

#include "tests/support/colliding_values.h"
#include "tests/support/table.h"

namespace {

using Records = std::vector<std::int32_t>;

double SecondsToFind(const std::vector<std::string>& values) {
    Table table({"A"});
    for (const std::string& value : values) table.Add(value);
    KOfflineTable_LoadIdx(table, "A");
    const std::clock_t begin = std::clock();
    for (std::int32_t i = 0; i < std::ssize(values); ++i) {
        std::int32_t found = -1;
        EXPECT_EQ(KOfflineTable_Search(table, 0, values[static_cast<std::size_t>(i)].c_str(), &found, 1), 1);
        EXPECT_EQ(found, i);
    }
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

TEST(Search, OfValuesMadeToCollideTakesNoLonger) {
    constexpr std::size_t kValues = 20000;
    const double honest = SecondsToFind(ValuesOfEightBytes(kValues, false));
    EXPECT_LT(SecondsToFind(ValuesOfEightBytes(kValues, true)), 10 * honest + 0.2);
}

TEST(Search, FindsEveryOneOfAPowerOfTwoOfValues) {
    Table table({"A", "B"});
    for (int i = 0; i < 256; ++i) table.Add("v" + std::to_string(i) + "\tw" + std::to_string(i / 2));
    for (const char* field : {"A", "B"}) KOfflineTable_LoadIdx(table, field);
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(table.Find("A", ("V" + std::to_string(i)).c_str()), Records{i});
        EXPECT_EQ(table.Find("B", ("W" + std::to_string(i)).c_str()).size(), i < 128 ? 2U : 1U);
        EXPECT_EQ(table.Find("A", ("none" + std::to_string(i)).c_str()), Records{-1});
    }
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

}  // namespace

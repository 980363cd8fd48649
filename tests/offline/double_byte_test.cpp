// SPDX-License-Identifier: MIT
// Characters of two bytes whose second byte looks like a character that means something.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "offline.h"
#include "tests/support/database.h"
#include "tests/support/double_byte.h"
#include "tests/support/table.h"

namespace {

// Literals, so that they join with others.
#define BACKSLASH_TRAIL "\x81\x5c"
#define BAR_TRAIL "\x81\x7c"

class DoubleByte : public DatabaseTest {
protected:
    void SetUp() override {
        if (!scope_.entered()) GTEST_SKIP() << "no double-byte character set is installed";
    }

    static std::string Swapped(const std::string& text, int direction) {
        std::vector<char> output(2 * text.size() + 1);
        const auto size = static_cast<int>(output.size());
        return KOfflineDb_StrSwap(text.c_str(), output.data(), size, direction) ? output.data() : "failed";
    }

    DoubleByteScope scope_;
};

TEST_F(DoubleByte, ATrailByteIsNeitherEscapedNorTakenForAnEscape) {
    EXPECT_EQ(Swapped(BACKSLASH_TRAIL ",n", 1), BACKSLASH_TRAIL "\\cn");
    EXPECT_EQ(Swapped(BACKSLASH_TRAIL "n\\n", 0), BACKSLASH_TRAIL "n\n");
    EXPECT_EQ(Swapped("\\\x81", 0), "failed");
    EXPECT_EQ(Swapped("a\x81", 1), "a\x81") << "a lead byte at the end stands for itself";
}

TEST_F(DoubleByte, ATrailByteIsNoSeparator) {
    Table table({"A", "B", "C"});
    EXPECT_EQ(KOfflineTable_AddRec(table, BAR_TRAIL "|" BACKSLASH_TRAIL "t|x\\t.", "|"), 0);
    EXPECT_EQ(KOfflineTable_AddRec(table, "a" BAR_TRAIL "|b||c", "||"), 1);
    EXPECT_STREQ(table.Get(0, 0), BAR_TRAIL);
    EXPECT_STREQ(table.Get(0, 1), BACKSLASH_TRAIL "t");
    EXPECT_STREQ(table.Get(0, 2), "x\t.");
    EXPECT_STREQ(table.Get(1, 0), "a" BAR_TRAIL "|b");
    EXPECT_STREQ(table.Get(1, 1), "c");
    ASSERT_EQ(KOfflineTable_WriteFile(table, At("f").c_str(), "|"), 1);
    EXPECT_EQ(Read("f"), BAR_TRAIL "|" BACKSLASH_TRAIL "t|x\\t.\r\na" BAR_TRAIL "|b|c|\r\n");
}

TEST_F(DoubleByte, ValuesCompareByteByByte) {
    Table table({"A"}, {"\x81\x41", "\x81\x61"});
    EXPECT_EQ(KOfflineTable_LoadIdx(table, "A"), 1);
    EXPECT_EQ(table.Find("A", "\x81\x41").size(), 2u) << "a trail byte that looks like a letter is folded as one";
}

}  // namespace

// SPDX-License-Identifier: MIT
// Characters of two bytes whose second byte is that of '\', '|' or a letter.
#include "tests/support/database.h"
#include "tests/support/double_byte.h"
#include "tests/support/table.h"

namespace {

// Literals, so that they join with others.
#define BACKSLASH_TRAIL "\x95\x5C"
#define BAR_TRAIL "\x95\x7C"

class DoubleByte : public DatabaseTest {
protected:
    void SetUp() override {
        if (!scope_.entered()) GTEST_SKIP() << "no double-byte character set here";
    }

    static std::string Swapped(const std::string& text, int direction) {
        char output[100];
        return KOfflineDb_StrSwap(text.c_str(), output, sizeof output, direction) ? output : "failed";
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
    EXPECT_EQ(table.Row(0), BAR_TRAIL "|" BACKSLASH_TRAIL "t|x\t.");
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

TEST_F(DoubleByte, ATrailByteEndsNoNameOfAStoredFileAndNoSeparatorOfASchema) {
    const std::string name = BACKSLASH_TRAIL ".txt", items = "1|\t" BAR_TRAIL "|\tname" BACKSLASH_TRAIL "\r\n";
    Files files = Changed(MinimalDatabase(), "kdbmain.txt", "TAB", "|+tab\r\n1.1, root, " BAR_TRAIL);
    files[name] = "contents";
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, Put(Changed(files, "bitm.txt", "", items), Place::package).c_str()), 1);
    EXPECT_EQ(KOfflineDb_CheckPackageFileExist(db, ("docs\\" + name).c_str()), 1);
    EXPECT_EQ(db->root_nid, 1);
    EXPECT_EQ(ValuesOf(KOfflineDb_GetTable_BITM(db), "CCODE"), BAR_TRAIL);
    EXPECT_EQ(ValuesOf(KOfflineDb_GetTable_BITM(db), "CNAME"), "name" BACKSLASH_TRAIL);
    ASSERT_EQ(KOfflineDb_Save(db), 1);
    files = Stored(db, "");
    EXPECT_EQ(files["bitm.txt"], "1|\t" BAR_TRAIL "|\tname" BACKSLASH_TRAIL "|\t\r\n");
    EXPECT_NE(files["kdbmain.txt"].find("|+TAB\r\n"), std::string::npos);
}

#ifndef _WIN32  // Windows itself decides there
TEST_F(DoubleByte, ATrailByteIsNoSeparatorOfAHostPath) {
    std::string path = At(BACKSLASH_TRAIL);
    path[path.size() - 3] = '\\';
    EXPECT_EQ(vlt_package_create(path.c_str(), 0, 1, "", ""), 1);
    EXPECT_TRUE(Exists(BACKSLASH_TRAIL));
}
#endif

}  // namespace

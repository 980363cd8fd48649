// SPDX-License-Identifier: MIT
#include <array>

#include "tests/support/database.h"

namespace {

class Save : public DatabaseTest, public testing::WithParamInterface<Place> {
protected:
    void SetUp() override {
        path_ = Put(SmallDatabase(), GetParam());
        Load();
    }

    void Load() {
        KOfflineDb_Reset(db_);
        ASSERT_EQ(KOfflineDb_Load(db_, path_.c_str()), 1) << db_->error_text;
    }

    std::string path_;
    Database db_;
};

INSTANTIATE_TEST_SUITE_P(Places, Save, testing::Values(Place::directory, Place::package));

TEST_P(Save, WritesChangesAndAddedFieldsThatALoadReadsBack) {
    KOfflineTable* items = KOfflineDb_GetTable_BITM(db_);
    EXPECT_EQ(KOfflineTable_AddRec(items, "\tLAMP\tLamp, 6 V \\/ 3 W", "\t"), 4);
    EXPECT_EQ(KOfflineTable_SetFldValue(items, 0, KOfflineDb_GetFld_BITM_CNAME(db_), "a,b\r\nc//d\\"), 1);
    EXPECT_GE(KOfflineTable_AddFld(KOfflineDb_GetTable_BBOM(db_), "BBOM.CPOS"), 0);
    EXPECT_EQ(KOfflineDb_SetRootNode(db_, 0), 1);
    ASSERT_EQ(KOfflineDb_Save(db_), 1) << db_->error_text;
    Files stored = Stored(db_, path_);
    EXPECT_NE(stored["kdbmain.txt"].find("1.1, field, BBOM.CPOS\r\n"), std::string::npos);
    EXPECT_NE(stored["kdbmain.txt"].find("1.1, separator, TAB\r\n1.1, root, BIKE\r\n"), std::string::npos);
    EXPECT_NE(stored["bitm.txt"].find("1\tBIKE\ta\\cb\\r\\nc\\/\\/d\\\\\tmade\r\n"), std::string::npos);
    EXPECT_NE(stored["bitm.txt"].find("5\tLAMP\tLamp\\c 6 V \\/ 3 W\t\r\n"), std::string::npos);
    EXPECT_EQ(stored["bbom.txt"], Lines({"1\t1\t2\t1\t", "2\t1\t3\t2\t"}));
    Load();
    EXPECT_EQ(db_->root_nid, 1);
    EXPECT_STREQ(KOfflineTable_GetFldValue(items, 0, 2), "a,b\r\nc//d\\");
    EXPECT_EQ(KOfflineDb_GetNIDByCCODE(db_, "lamp"), 5);
}

/// The code of the first item of a number, and the number of the first item of a code, need not lead back.
TEST_P(Save, KeepsSomeRootWhereItemsShareNumbersAndCodes) {
    KOfflineTable* items = KOfflineDb_GetTable_BITM(db_);
    KOfflineTable_Clear(items);
    for (const char* line : {"1\tY", "1\tX", "2\tX", "2\tY"}) KOfflineTable_AddRec(items, line, "\t");
    EXPECT_EQ(KOfflineDb_SetRootNode(db_, 0), 1);
    for (int round = 0; round < 4; ++round) {
        EXPECT_EQ(KOfflineDb_Save(db_), 1);
        Load();
        EXPECT_EQ(KOfflineDb_GetRootNodes(db_, nullptr, 0), 1);
    }
}

TEST_P(Save, FailsWhenTheSchemaCannotBeComposed) {
    const Files before = SmallDatabase();
    ASSERT_EQ(KOfflineDb_SetRootNode(db_, 1), 1);
    ASSERT_EQ(KOfflineTable_DelRec(KOfflineDb_GetTable_BITM(db_), 1), 1);
    EXPECT_EQ(KOfflineDb_Save(db_), 0);
    EXPECT_EQ(db_->error_code, KOFFLINE_ERR_SCHEMA_WRITE);
    EXPECT_EQ(Stored(db_, path_), before) << "the schema is written up to the root that is gone";
    db_->separator[0] = 0;
    db_->error_code = 0;
    EXPECT_EQ(KOfflineDb_Save(db_), 0);
    EXPECT_EQ(db_->error_code, KOFFLINE_ERR_SCHEMA_WRITE);
    EXPECT_EQ(Stored(db_, path_), Changed(before, "kdbmain.txt", "1.1, separator, TAB\r\n", ""));
}

TEST_P(Save, ElsewhereMeansAnotherDirectoryOrStillThePackage) {
    const bool in_package = GetParam() == Place::package;
    const std::string target = " " + At("copy") + "\\";
    Files expected = SmallDatabase();
    expected["bdwg.txt"] = "";
    KOfflineTable_Clear(KOfflineDb_GetTable_BDWG(db_));
    MakeDirectory("copy");
    EXPECT_EQ(KOfflineDb_SaveAs(db_, target.c_str()), 1) << db_->error_text;
    EXPECT_EQ(db_->path, target);
    EXPECT_EQ(Stored(db_, At("copy")), expected);
    EXPECT_EQ(Exists("copy/bitm.txt"), !in_package);
    Remove("copy/bitm.txt");
    EXPECT_EQ(KOfflineDb_Save(db_), 1);
    EXPECT_EQ(Exists("copy/bitm.txt"), !in_package) << "the place is remembered";
}

TEST_P(Save, IntoAPackageNeedsNoPathThatMeansAnything) {
    const bool in_package = GetParam() == Place::package;
    EXPECT_GE(KOfflineTable_AddRec(KOfflineDb_GetTable_BITM(db_), "9\tNEW", "\t"), 0);
    for (const std::string& path : {std::string(" \t"), std::string(300, 'x')})
        EXPECT_EQ(KOfflineDb_SaveAs(db_, path.c_str()), in_package) << path << db_->error_text;
    EXPECT_EQ(Stored(db_, path_)["bitm.txt"].find("9\tNEW") != std::string::npos, in_package);
}

using SaveOf = DatabaseTest;

TEST_F(SaveOf, SeparatorsWritesThemByTheirNamesBesideSixFilesOfData) {
    const std::vector<std::array<std::string, 3>> cases = {
        {"tab", "\t", "TAB"},
        {"TAB & blank+ comma", "\t ,", "TAB+BLANK+COMMA"},
        {"+Comma&tab+", ",\t", "COMMA+TAB"},
        {"+TAB++x y+", "\tx y", "TABx+BLANKy"},
        {"blank+semicolon", " ;", "BLANK+SEMICOLON"},
        {"blank+blank", "  ", "BLANK+BLANK"},
        {"Tabs", "Tabs", "Tabs"},
        {"|", "|", "|"},
        {"| + TAB", "|\t", "|+TAB"},
        {"TAB+|;", "\t|;", "TAB|+SEMICOLON"},
        {"fifteen letters", "fifteen letters", "fifteen+BLANKletters"}};
    for (const auto& [names, characters, written] : cases) {
        Database db;
        const std::string path = Put(Changed(MinimalDatabase(), "kdbmain.txt", "TAB", names));
        ASSERT_EQ(KOfflineDb_Load(db, path.c_str()), 1) << names;
        EXPECT_EQ(db->separator, characters);
        ASSERT_EQ(KOfflineDb_Save(db), 1);
        Files stored = Stored(db, path);
        EXPECT_NE(stored["kdbmain.txt"].find("1.1, separator, " + written + "\r\n"), std::string::npos) << names;
        EXPECT_EQ(stored.size(), 7U);
    }
}

TEST_F(SaveOf, WhatCannotBeWrittenKeepsThePath) {
    const std::string path = Put(SmallDatabase());
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, path.c_str()), 1);
    MakeDirectory("half/bbom.txt");
    const std::string missing = At("missing"), too_long(300, 'x'), half = At("half");
    for (const auto& [target, text] : std::map<std::string, std::string>{{missing, missing + "\\kdbmain.txt"},
                                                                         {too_long, too_long.substr(0, 255)},
                                                                         {"  ", "\\kdbmain.txt"},
                                                                         {half, half + "\\bbom.txt"}}) {
        db->error_code = 0;
        EXPECT_EQ(KOfflineDb_SaveAs(db, target.c_str()), 0);
        EXPECT_EQ(db->error_code, KOFFLINE_ERR_FILE);
        EXPECT_EQ(db->error_text, text);
        EXPECT_EQ(db->path, path);
    }
    EXPECT_TRUE(Exists("half/bitm.txt")) << "files before the failing one are written";
    EXPECT_FALSE(Exists("half/bdwg.txt"));
}

}  // namespace

// SPDX-License-Identifier: MIT
#include <array>

#include "tests/support/database.h"

namespace {

class Save : public DatabaseTest, public testing::WithParamInterface<Place> {
protected:
    void SetUp() override { path_ = Put(SmallDatabase(), GetParam()); }

    std::string path_;
};

INSTANTIATE_TEST_SUITE_P(Places, Save, testing::Values(Place::directory, Place::package));

TEST_P(Save, OfAnUnchangedDatabaseChangesNoByte) {
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, path_.c_str()), 1);
    EXPECT_EQ(KOfflineDb_Save(db), 1);
    EXPECT_EQ(Stored(db, path_), SmallDatabase());
}

TEST_P(Save, WritesChangesAndAddedFieldsThatALoadReadsBack) {
    const std::string path = GetParam() == Place::package ? path_ : Put(SmallDatabase());
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, path.c_str()), 1);
    KOfflineTable* items = KOfflineDb_GetTable_BITM(db);
    const std::int32_t rec = KOfflineTable_AddRec(items, "\tLAMP\tLamp, 6 V \\/ 3 W", "\t");
    ASSERT_EQ(rec, 4);
    EXPECT_EQ(KOfflineTable_SetFldValue(items, 0, KOfflineDb_GetFld_BITM_CNAME(db), "a,b\r\nc//d\\"), 1);
    EXPECT_GE(KOfflineTable_AddFld(KOfflineDb_GetTable_BBOM(db), "BBOM.CPOS"), 0);
    EXPECT_EQ(KOfflineDb_SetRootNode(db, 0), 1);
    ASSERT_EQ(KOfflineDb_Save(db), 1) << db->error_text;
    Files stored = Stored(db, path);
    EXPECT_NE(stored["kdbmain.txt"].find("1.1, field, BBOM.CPOS\r\n"), std::string::npos);
    EXPECT_NE(stored["kdbmain.txt"].find("1.1, separator, TAB\r\n1.1, root, BIKE\r\n"), std::string::npos);
    EXPECT_NE(stored["bitm.txt"].find("1\tBIKE\ta\\cb\\r\\nc\\/\\/d\\\\\tmade\r\n"), std::string::npos);
    EXPECT_NE(stored["bitm.txt"].find("5\tLAMP\tLamp\\c 6 V \\/ 3 W\t\r\n"), std::string::npos);
    EXPECT_EQ(stored["bbom.txt"], Lines({"1\t1\t2\t1\t", "2\t1\t3\t2\t"}));
    KOfflineDb_Reset(db);
    ASSERT_EQ(KOfflineDb_Load(db, path.c_str()), 1);
    EXPECT_EQ(db->root_nid, 1);
    EXPECT_STREQ(KOfflineTable_GetFldValue(KOfflineDb_GetTable_BITM(db), 0, 2), "a,b\r\nc//d\\");
    EXPECT_EQ(KOfflineDb_GetNIDByCCODE(db, "lamp"), 5);
}

TEST_P(Save, WritesHundredsOfFields) {
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, path_.c_str()), 1);
    KOfflineTable* items = KOfflineDb_GetTable_BITM(db);
    for (int i = 0; i < 700; ++i) ASSERT_GE(KOfflineTable_AddFld(items, ("FIELD" + std::to_string(i)).c_str()), 4);
    const std::string names = FieldNames(items);
    ASSERT_EQ(KOfflineDb_Save(db), 1);
    KOfflineDb_Reset(db);
    ASSERT_EQ(KOfflineDb_Load(db, path_.c_str()), 1);
    EXPECT_EQ(FieldNames(items), names);
}

TEST_P(Save, WritesSixFilesOfDataEvenForEmptyTables) {
    const std::string path = Put(MinimalDatabase());
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, path.c_str()), 1);
    ASSERT_EQ(KOfflineDb_Save(db), 1);
    Files stored = Stored(db, path);
    for (const char* name : {"bitm.txt", "bbom.txt", "bdwg.txt", "bitdwg.txt", "bcapp.txt", "bitcap.txt"}) {
        EXPECT_EQ(stored.count(name), 1U) << name;
    }
}

TEST_P(Save, FailsAtTheSchemaWhenTheRootItemIsGone) {
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, path_.c_str()), 1);
    ASSERT_EQ(KOfflineDb_SetRootNode(db, 1), 1);
    ASSERT_EQ(KOfflineTable_DelRec(KOfflineDb_GetTable_BITM(db), 1), 1);
    EXPECT_EQ(KOfflineDb_Save(db), 0);
    EXPECT_EQ(db->error_code, KOFFLINE_ERR_SCHEMA_WRITE);
    Files stored = Stored(db, path_);
    EXPECT_EQ(stored["kdbmain.txt"], SmallDatabase()["kdbmain.txt"]) << "written as far as it could be composed";
    EXPECT_EQ(stored["bitm.txt"], SmallDatabase()["bitm.txt"]);
}

TEST_P(Save, NeedsASeparator) {
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, path_.c_str()), 1);
    db->separator[0] = 0;
    EXPECT_EQ(KOfflineDb_Save(db), 0);
    EXPECT_EQ(db->error_code, KOFFLINE_ERR_SCHEMA_WRITE);
}

TEST_P(Save, WritesSeparatorsByTheirNames) {
    const std::vector<std::array<std::string, 3>> cases = {
        {"tab", "\t", "TAB"},
        {"TAB + comma", "\t,", "TAB+COMMA"},
        {"+Comma&tab+", ",\t", "COMMA+TAB"},
        {"blank+semicolon", " ;", "BLANK+SEMICOLON"},
        {"|", "|", "|"},
        {"| + TAB", "|\t", "|+TAB"},
        {"TAB+|", "\t|", "TAB|"},
        {"TAB|", "TAB|", "TAB|"},
        {"fifteen letters", "fifteen letters", "fifteen+BLANKletters"}};
    for (const auto& [names, characters, written] : cases) {
        Files files = MinimalDatabase();
        std::string& schema = files["kdbmain.txt"];
        schema.replace(schema.find("TAB"), 3, names);
        Database db;
        const std::string path = Put(files);
        ASSERT_EQ(KOfflineDb_Load(db, path.c_str()), 1) << names;
        EXPECT_EQ(db->separator, characters);
        ASSERT_EQ(KOfflineDb_Save(db), 1);
        EXPECT_NE(Read("data/kdbmain.txt").find("1.1, separator, " + written + "\r\n"), std::string::npos) << names;
    }
}

using SaveAs = DatabaseTest;

TEST_F(SaveAs, WritesADirectoryDatabaseElsewhereAndRemembersIt) {
    const std::string path = Put(SmallDatabase());
    MakeDirectory("copy");
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, path.c_str()), 1);
    std::string target = " ";
    target.append(At("copy")).append("\\");
    EXPECT_EQ(KOfflineDb_SaveAs(db, target.c_str()), 1) << db->error_text;
    EXPECT_EQ(Stored(db, At("copy")), SmallDatabase());
    EXPECT_EQ(db->path, target);
    Remove("copy/bitm.txt");
    EXPECT_EQ(KOfflineDb_Save(db), 1);
    EXPECT_TRUE(Exists("copy/bitm.txt"));
}

TEST_F(SaveAs, KeepsAPackagedDatabaseInItsPackage) {
    const std::string path = Put(SmallDatabase(), Place::package);
    MakeDirectory("copy");
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, path.c_str()), 1);
    KOfflineTable_Clear(KOfflineDb_GetTable_BDWG(db));
    EXPECT_EQ(KOfflineDb_SaveAs(db, At("copy").c_str()), 1);
    EXPECT_EQ(db->path, At("copy"));
    EXPECT_FALSE(Exists("copy/bitm.txt"));
    EXPECT_EQ(Stored(db, path)["bdwg.txt"], "");
}

TEST_F(SaveAs, ReportsWhatCannotBeWrittenAndKeepsThePath) {
    const std::string path = Put(SmallDatabase());
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, path.c_str()), 1);
    const std::string missing = At("missing"), too_long(300, 'x');
    for (const auto& [target, text] : std::map<std::string, std::string>{
             {missing, missing + "\\kdbmain.txt"}, {too_long, too_long.substr(0, 255)}, {"  ", "\\kdbmain.txt"}}) {
        db->error_code = 0;
        EXPECT_EQ(KOfflineDb_SaveAs(db, target.c_str()), 0);
        EXPECT_EQ(db->error_code, KOFFLINE_ERR_FILE);
        EXPECT_EQ(db->error_text, text);
        EXPECT_EQ(db->path, path);
    }
    MakeDirectory("half/bbom.txt");
    EXPECT_EQ(KOfflineDb_SaveAs(db, At("half").c_str()), 0);
    EXPECT_EQ(db->error_text, At("half") + "\\bbom.txt");
    EXPECT_TRUE(Exists("half/bitm.txt")) << "files before the failing one are written";
    EXPECT_FALSE(Exists("half/bdwg.txt"));
}

TEST_F(SaveAs, WithoutAPlaceDoesNothing) {
    Database db;
    EXPECT_EQ(KOfflineDb_Save(db), 0);
    EXPECT_EQ(KOfflineDb_SaveAs(db, ""), 0);
    EXPECT_EQ(KOfflineDb_SaveAs(db, nullptr), 0);
    EXPECT_EQ(db->error_code, KOFFLINE_ERR_NONE);
}

}  // namespace

// SPDX-License-Identifier: MIT
// The database record itself, and the files attached to a database.
#include <cstring>

#include "tests/support/database.h"

namespace {

using Record = DatabaseTest;

TEST_F(Record, IsEmptyAfterConstruction) {
    Database db;
    char path[260] = "x";
    KOfflineDb_GetPath(db, path);
    EXPECT_STREQ(path, "");
    EXPECT_EQ(KOfflineDb_GetPackageHandle(db), 0);
    EXPECT_EQ(KOfflineDb_GetCheckInRec(db), -1);
    EXPECT_EQ(db->root_nid, -1);
    EXPECT_EQ(KOfflineDb_GetFld_BITCAP_NCID(db), 0);
    std::int32_t size = 7;
    EXPECT_EQ(KOfflineDb_GetUserData(db, &size), nullptr);
    EXPECT_EQ(size, 0);
    const char* names[] = {"BITM", "BBOM", "BDWG", "BITDWG", "BCAPP", "BITCAP"};
    for (int i = 0; i < 6; ++i) {
        EXPECT_STREQ(KOfflineTable_GetTblName(&db->tables[i]), names[i]);
        EXPECT_EQ(KOfflineTable_GetOfflineDb(&db->tables[i]), static_cast<KOfflineDb*>(db));
    }
}

TEST_F(Record, KeepsUserDataThatFits) {
    Database db;
    auto* block = static_cast<char*>(KOfflineDb_InitUserData(db, 32, 1));
    std::memset(block, 'u', 32);
    block = static_cast<char*>(KOfflineDb_InitUserData(db, 64, 1));
    EXPECT_EQ(std::string(block, 64), std::string(32, 'u') + std::string(32, '\0'));
    std::memset(block, 'u', 64);
    EXPECT_EQ(std::string(static_cast<char*>(KOfflineDb_InitUserData(db, 16, 1)), 16), std::string(16, '\0'));
    block = static_cast<char*>(KOfflineDb_InitUserData(db, 16, 0));
    EXPECT_EQ(KOfflineDb_InitUserData(db, -1, 1), nullptr);
    std::int32_t size = 0;
    EXPECT_EQ(KOfflineDb_GetUserData(db, &size), block);
    EXPECT_EQ(size, 16);
    EXPECT_NE(KOfflineDb_InitUserData(db, 0, 1), nullptr);
}

TEST_F(Record, ResetClosesThePackageAndForgetsEverything) {
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, Put(SmallDatabase(), Place::package).c_str()), 1);
    const std::int32_t package = KOfflineDb_GetPackageHandle(db);
    KOfflineDb_SetCheckInRec(db, 3);
    KOfflineDb_InitUserData(db, 8, 0);
    KOfflineDb_SetRootNode(db, 0);
    KOfflineDb_Reset(db);
    EXPECT_EQ(vlt_package_is_unicode_files(package), -1);
    EXPECT_EQ(KOfflineDb_GetPackageHandle(db), 0);
    EXPECT_EQ(db->root_nid, -1);
    EXPECT_EQ(KOfflineDb_GetCheckInRec(db), -1);
    EXPECT_EQ(KOfflineDb_GetUserData(db, nullptr), nullptr);
    for (KOfflineTable& table : db->tables) {
        EXPECT_EQ(KOfflineTable_GetFldsCount(&table) + KOfflineTable_GetRecsCount(&table), 0);
    }
}

TEST_F(Record, UserDataAndCheckInRecordOutliveALoad) {
    Database db;
    void* block = KOfflineDb_InitUserData(db, 8, 0);
    KOfflineDb_SetCheckInRec(db, 3);
    ASSERT_EQ(KOfflineDb_Load(db, Put(SmallDatabase()).c_str()), 1);
    EXPECT_EQ(KOfflineDb_GetUserData(db, nullptr), block);
    EXPECT_EQ(KOfflineDb_GetCheckInRec(db), 3);
}

TEST_F(Record, FunctionsBearTheLackOfADatabase) {
    KOfflineDb_Constructor(nullptr);
    KOfflineDb_Reset(nullptr);
    EXPECT_EQ(KOfflineDb_Load(nullptr, "x") + KOfflineDb_Save(nullptr) + KOfflineDb_SaveAs(nullptr, "x"), 0);
    EXPECT_EQ(KOfflineDb_GetRecByNID_BITM(nullptr, 1), -1);
    EXPECT_EQ(KOfflineDb_GetNIDByRec_BBOM(nullptr, 0), -1);
    EXPECT_EQ(KOfflineDb_GetCCODEByNID(nullptr, 1, nullptr), 0);
    EXPECT_EQ(KOfflineDb_GetRootNodes(nullptr, nullptr, 0), 0);
    EXPECT_EQ(KOfflineDb_CheckPackageFileExist(nullptr, "x"), 0);
}

class Transfer : public DatabaseTest {
protected:
    void SetUp() override {
        ASSERT_EQ(KOfflineDb_Load(db_, Put(SmallDatabase(), Place::package).c_str()), 1);
        Write("in", "contents");
    }

    std::int32_t Save(const char* stored) { return KOfflineDb_SavePackageFile(db_, At("in").c_str(), stored); }
    std::int32_t Get(const char* stored) { return KOfflineDb_GetPackageFile(db_, stored, At("out").c_str()); }

    Database db_;
};

TEST_F(Transfer, CopiesFilesOfAnyLengthInAndOut) {
    for (const std::size_t length : {0U, 1U, 32767U, 32768U, 32769U, 200000U}) {
        std::string contents(length, 0);
        for (std::size_t i = 0; i < length; ++i) contents[i] = static_cast<char>(i * 7 + i / 256);
        Write("in", contents);
        EXPECT_EQ(Save("part.dwg"), 1);
        EXPECT_EQ(KOfflineDb_CheckPackageFileExist(db_, "part.dwg"), 1);
        EXPECT_EQ(Get("PART.DWG"), 1);
        EXPECT_EQ(Read("out"), contents) << length;
    }
}

TEST_F(Transfer, NamesStoredFilesByTheLastComponent) {
    EXPECT_EQ(Save("docs\\a.txt"), 1);
    EXPECT_EQ(Get("a.txt"), 1);
    EXPECT_EQ(Read("out"), "contents");
    EXPECT_EQ(KOfflineDb_CheckPackageFileExist(db_, "D:/other\\docs/A.TXT"), 1);
}

TEST_F(Transfer, RefusesNamesThatNoStoredFileHas) {
    const std::string fits(255, 'n'), too_long(256, 'n');
    EXPECT_EQ(Save(fits.c_str()), 1);
    EXPECT_EQ(Get(fits.c_str()), 1);
    for (const char* name : {"", "docs/", "docs\\", too_long.c_str(), static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(Save(name), 0);
        EXPECT_EQ(Get(name), 0);
        EXPECT_EQ(KOfflineDb_CheckPackageFileExist(db_, name), 0);
    }
}

TEST_F(Transfer, OfAMissingStoredFileLeavesAnEmptyDiskFile) {
    EXPECT_EQ(Get("missing"), 0);
    EXPECT_TRUE(Exists("out"));
    EXPECT_EQ(Read("out"), "");
}

TEST_F(Transfer, OfAMissingDiskFileLeavesThePackageAlone) {
    Remove("in");
    EXPECT_EQ(Save("part.dwg"), 0);
    EXPECT_EQ(KOfflineDb_SavePackageFile(db_, nullptr, "part.dwg"), 0);
    EXPECT_EQ(KOfflineDb_CheckPackageFileExist(db_, "part.dwg"), 0);
    EXPECT_EQ(KOfflineDb_GetPackageFile(db_, "bitm.txt", At("no/such/place").c_str()), 0);
}

TEST_F(Transfer, DoesNothingForADirectoryDatabase) {
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, Put(SmallDatabase()).c_str()), 1);
    EXPECT_EQ(KOfflineDb_SavePackageFile(db, At("in").c_str(), "a"), 0);
    EXPECT_EQ(KOfflineDb_GetPackageFile(db, "bitm.txt", At("out").c_str()), 0);
    EXPECT_EQ(KOfflineDb_CheckPackageFileExist(db, "bitm.txt"), 0);
    EXPECT_FALSE(Exists("out"));
    EXPECT_EQ(db->error_code, KOFFLINE_ERR_NONE);
}

}  // namespace

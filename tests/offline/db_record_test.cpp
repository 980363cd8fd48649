// SPDX-License-Identifier: MIT
// The database record itself, and the files attached to a database.
#include <cstring>

#include "tests/support/database.h"

namespace {

using Record = DatabaseTest;

/// What holds of an empty database and of none at all.
void ExpectNothingIn(KOfflineDb* db) {
    char text[260] = "x";
    KOfflineDb_GetPath(db, nullptr);
    KOfflineDb_GetPath(db, text);
    EXPECT_STREQ(text, "");
    text[0] = 'x';
    EXPECT_EQ(KOfflineDb_GetCCODEByRec(db, 0, text), db != nullptr);
    EXPECT_STREQ(text, "");
    std::int32_t size = 7, rec = 0;
    EXPECT_EQ(KOfflineDb_GetUserData(db, &size), nullptr);
    for (const std::int32_t zero :
         {size, KOfflineDb_GetPackageHandle(db), KOfflineDb_Save(db), KOfflineDb_SaveAs(db, ""),
          KOfflineDb_SaveAs(db, nullptr), KOfflineDb_SetRootNode(db, 0), KOfflineDb_GetRootNodes(db, &rec, 1),
          KOfflineDb_GetNoParentNodes(db, &rec, 1), KOfflineDb_GetCCODEByNID(db, 1, nullptr),
          KOfflineDb_GetPackageFile(db, "a", "b"), KOfflineDb_SavePackageFile(db, "a", "b"),
          KOfflineDb_CheckPackageFileExist(db, "a")})
        EXPECT_EQ(zero, 0);
    for (const std::int32_t none : {KOfflineDb_GetCheckInRec(db), KOfflineDb_GetRecByNID_BITM(db, 1),
                                    KOfflineDb_GetNIDByRec_BITM(db, 0), KOfflineDb_GetNIDByCCODE(db, "BIKE")})
        EXPECT_EQ(none, -1);
}

TEST(NoDatabase, AnswersAsOneThatHoldsNothing) {
    KOfflineDb* const none = nullptr;
    KOfflineDb_Constructor(none);
    KOfflineDb_Reset(none);
    KOfflineDb_SetCheckInRec(none, 3);
    ExpectNothingIn(none);
    EXPECT_EQ(KOfflineDb_Load(none, "x") + KOfflineDb_SaveAs(none, "x"), 0);
    EXPECT_EQ(KOfflineDb_InitUserData(none, 8, 0), nullptr);
    for (const auto table : {KOfflineDb_GetTable_BITM, KOfflineDb_GetTable_BBOM, KOfflineDb_GetTable_BDWG,
                             KOfflineDb_GetTable_BITDWG, KOfflineDb_GetTable_BCAPP, KOfflineDb_GetTable_BITCAP})
        EXPECT_EQ(table(none), nullptr);
    for (const auto field :
         {KOfflineDb_GetFld_BITM_NID, KOfflineDb_GetFld_BBOM_FCOUNT, KOfflineDb_GetFld_BITCAP_NCID})
        EXPECT_EQ(field(none), -1);
}

void ExpectEmpty(KOfflineDb* db) {
    ExpectNothingIn(db);
    EXPECT_EQ(db->error_code, KOFFLINE_ERR_NONE);
    EXPECT_EQ(db->root_nid, -1);
    EXPECT_EQ(KOfflineDb_GetFld_BITCAP_NCID(db), 0);
    const char* names[] = {"BITM", "BBOM", "BDWG", "BITDWG", "BCAPP", "BITCAP"};
    for (int i = 0; i < 6; ++i) {
        KOfflineTable* table = &db->tables[i];
        EXPECT_STREQ(KOfflineTable_GetTblName(table), names[i]);
        EXPECT_EQ(KOfflineTable_GetOfflineDb(table), db);
        EXPECT_EQ(KOfflineTable_GetFldsCount(table) + KOfflineTable_GetRecsCount(table), 0);
    }
}

TEST_F(Record, IsEmptyAtFirstAndAfterAReset) {
    const std::string package = Put(SmallDatabase(), Place::package), directory = Put(SmallDatabase());
    Database db;
    ExpectEmpty(db);
    void* block = KOfflineDb_InitUserData(db, 8, 0);
    KOfflineDb_SetCheckInRec(db, 3);
    ASSERT_EQ(KOfflineDb_Load(db, package.c_str()), 1);
    const std::int32_t first = KOfflineDb_GetPackageHandle(db);
    ASSERT_EQ(KOfflineDb_Load(db, directory.c_str()), 1);
    EXPECT_EQ(vlt_package_is_unicode_files(first), -1) << "closed by the load of another database";
    EXPECT_EQ(KOfflineDb_GetPackageHandle(db), 0);
    EXPECT_EQ(KOfflineDb_GetUserData(db, nullptr), block) << "what is the caller's outlives a load";
    EXPECT_EQ(KOfflineDb_GetCheckInRec(db), 3);
    ASSERT_EQ(KOfflineDb_Load(db, package.c_str()), 1);
    const std::int32_t second = KOfflineDb_GetPackageHandle(db);
    EXPECT_EQ(vlt_package_is_unicode_files(second), 0);
    KOfflineDb_SetRootNode(db, 0);
    KOfflineDb_Reset(db);
    EXPECT_EQ(vlt_package_is_unicode_files(second), -1);
    ExpectEmpty(db);
}

TEST_F(Record, KeepsUserDataThatFits) {
    Database db;
    const auto ask = [&](std::int32_t size, std::int32_t keep) {
        return static_cast<char*>(KOfflineDb_InitUserData(db, size, keep));
    };
    std::memset(ask(32, 1), 'u', 32);
    char* block = ask(64, 1);
    EXPECT_EQ(std::string(block, 64), std::string(32, 'u') + std::string(32, '\0'));
    std::memset(block, 'u', 64);
    EXPECT_EQ(std::string(ask(16, 1), 16), std::string(16, '\0'));
    block = ask(16, 0);
    EXPECT_EQ(ask(-1, 1), nullptr);
    std::int32_t size = 0;
    EXPECT_EQ(KOfflineDb_GetUserData(db, &size), block);
    EXPECT_EQ(size, 16);
    EXPECT_NE(ask(0, 1), nullptr);
}

class Transfer : public DatabaseTest {
protected:
    void SetUp() override {
        ASSERT_EQ(KOfflineDb_Load(db_, Put(SmallDatabase(), Place::package).c_str()), 1);
        Write("in", "contents");
    }

    std::int32_t Save(const char* stored) { return KOfflineDb_SavePackageFile(db_, At("in").c_str(), stored); }
    std::int32_t Get(const char* stored) { return KOfflineDb_GetPackageFile(db_, stored, At("out").c_str()); }
    std::int32_t Has(const char* stored) { return KOfflineDb_CheckPackageFileExist(db_, stored); }

    Database db_;
};

TEST_F(Transfer, CopiesFilesOfAnyLengthInAndOut) {
    for (const std::size_t length : {0U, 1U, 32767U, 32768U, 32769U, 200000U}) {
        std::string contents(length, 0);
        for (std::size_t i = 0; i < length; ++i) contents[i] = static_cast<char>(i * 7 + i / 256);
        Write("in", contents);
        EXPECT_EQ(Save("part.dwg"), 1);
        EXPECT_EQ(Has("part.dwg"), 1);
        EXPECT_EQ(Get("PART.DWG"), 1);
        EXPECT_EQ(Read("out"), contents) << length;
    }
}

TEST_F(Transfer, NamesStoredFilesByTheLastComponentThatIsAName) {
    const std::string fits(255, 'n'), too_long(256, 'n');
    for (const char* name : {"docs\\a.txt", fits.c_str()}) EXPECT_EQ(Save(name), 1);
    for (const char* name : {"a.txt", "D:/other\\docs/A.TXT", fits.c_str()}) {
        EXPECT_EQ(Has(name), 1);
        EXPECT_EQ(Get(name), 1);
        EXPECT_EQ(Read("out"), "contents");
    }
    for (const char* name : {"", "docs/", "docs\\", too_long.c_str(), static_cast<const char*>(nullptr)})
        EXPECT_EQ(Save(name) + Get(name) + Has(name), 0);
}

/// The handles of files in packages from the 32,768th on are negative as signed numbers.
TEST_F(Transfer, WorksInPackagesOfAnyHandle) {
    const std::string host = At("other.vlt");
    ASSERT_EQ(vlt_package_create(host.c_str(), 0, 1, "", ""), 1);
    std::vector<std::int32_t> packages;
    for (std::int32_t package = 0; package < 32767;) {
        package = vlt_package_open(host.c_str(), 0, 0, "", "", nullptr, nullptr);
        ASSERT_GT(package, 0);
        packages.push_back(package);
    }
    {
        Database db;
        ASSERT_EQ(KOfflineDb_Load(db, db_->path), 1);
        EXPECT_GT(db->package, 32767);
        EXPECT_EQ(KOfflineDb_SavePackageFile(db, At("in").c_str(), "part.dwg"), 1);
    }
    EXPECT_EQ(Get("part.dwg"), 1);
    EXPECT_EQ(Read("out"), "contents");
    for (const std::int32_t package : packages) vlt_package_close(package);
}

TEST_F(Transfer, OfAMissingFileLeavesAnEmptyDiskFileAndThePackageAlone) {
    EXPECT_EQ(Get("missing"), 0);
    EXPECT_TRUE(Exists("out"));
    EXPECT_EQ(Read("out"), "");
    Remove("in");
    EXPECT_EQ(Save("part.dwg"), 0);
    EXPECT_EQ(KOfflineDb_SavePackageFile(db_, nullptr, "part.dwg"), 0);
    EXPECT_EQ(Has("part.dwg"), 0);
    EXPECT_EQ(KOfflineDb_GetPackageFile(db_, "bitm.txt", At("no/such/place").c_str()), 0);
}

TEST_F(Transfer, DoesNothingForADirectoryDatabase) {
    KOfflineDb_Reset(db_);
    ASSERT_EQ(KOfflineDb_Load(db_, Put(SmallDatabase()).c_str()), 1);
    EXPECT_EQ(Save("a") + Get("bitm.txt") + Has("bitm.txt"), 0);
    EXPECT_FALSE(Exists("out"));
    EXPECT_EQ(db_->error_code, KOFFLINE_ERR_NONE);
}

}  // namespace

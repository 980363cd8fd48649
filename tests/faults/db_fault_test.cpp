// SPDX-License-Identifier: MIT
// Loads and saves during which the n-th allocation or host call fails, for every n: the result is the documented one,
// nothing is held afterwards, and the database works again once the reason is gone.
#include "tests/support/database.h"
#include "tests/support/host_faults.h"

namespace {

struct FaultCase {
    Place place;
    unsigned calls;
    FaultManner manner;
    bool from_then_on;
    std::int32_t code;  ///< what a load that fails reports
};

class DatabaseFault : public DatabaseTest, public testing::WithParamInterface<FaultCase> {
protected:
    void SetUp() override {
        Files files = SmallDatabase();
        for (int i = 5; i < 1000; ++i)
            files["bitm.txt"] += std::to_string(i) + "\tC" + std::to_string(i) + "\t\t\r\n";
        files_ = files;
        path_ = Put(files, GetParam().place);
    }

    Fault NthFault(int n) const { return {GetParam().calls, n, GetParam().manner, GetParam().from_then_on}; }

    Files files_;
    std::string path_;
};

const FaultCase kCases[] = {{Place::directory, kFaultMemory, FaultManner::cleanly, false, KOFFLINE_ERR_MEMORY},
                            {Place::directory, kFaultMemory, FaultManner::cleanly, true, KOFFLINE_ERR_MEMORY},
                            {Place::directory, kFaultDisk, FaultManner::cleanly, false, KOFFLINE_ERR_FILE},
                            {Place::directory, kFaultDisk, FaultManner::cut_short, true, KOFFLINE_ERR_FILE},
                            {Place::package, kFaultMemory, FaultManner::cleanly, false, KOFFLINE_ERR_MEMORY},
                            {Place::package, kFaultHost, FaultManner::cleanly, false, KOFFLINE_ERR_FILE},
                            {Place::package, kFaultHost, FaultManner::cut_short, true, KOFFLINE_ERR_FILE}};

INSTANTIATE_TEST_SUITE_P(Calls, DatabaseFault, testing::ValuesIn(kCases));

TEST_P(DatabaseFault, InALoadIsReportedAndLeavesNothingBehind) {
    const HeldResources before = HeldNow();
    int failed = 0;
    for (int n = 1; n < 2000; ++n) {
        bool hit;
        {
            Database db;
            std::int32_t loaded;
            {
                const Fault fault = NthFault(n);
                loaded = KOfflineDb_Load(db, path_.c_str());
                hit = fault.hit();
            }
            if (loaded == 0) {
                ++failed;
                // A file that cannot be opened for want of memory is a file that cannot be opened, and a package that
                // cannot be opened has no code.
                const bool unopened = GetParam().place == Place::package && db->package == 0;
                EXPECT_TRUE(db->error_code == GetParam().code || db->error_code == KOFFLINE_ERR_FILE ||
                            (unopened && db->error_code == KOFFLINE_ERR_NONE))
                    << n << ": " << db->error_code << " " << db->error_text;
            } else {
                EXPECT_EQ(KOfflineTable_GetRecsCount(KOfflineDb_GetTable_BITM(db)), 999) << n;
                EXPECT_EQ(KOfflineDb_GetRecByNID_BITM(db, 500), 499);
            }
        }
        EXPECT_EQ(HeldNow(), before) << n;
        if (!hit) break;
    }
    EXPECT_GT(failed, 3);
    Database db;
    EXPECT_EQ(KOfflineDb_Load(db, path_.c_str()), 1);
}

TEST_P(DatabaseFault, InASaveIsReportedAndMendedByTheNextSave) {
    for (int n = 1; n < 2000; ++n) {
        Database db;
        ASSERT_EQ(KOfflineDb_Load(db, path_.c_str()), 1) << n;
        bool hit;
        {
            const Fault fault = NthFault(n);
            const std::int32_t saved = KOfflineDb_Save(db);
            hit = fault.hit();
            EXPECT_TRUE(saved || db->error_code == GetParam().code || db->error_code == KOFFLINE_ERR_FILE) << n;
        }
        ASSERT_EQ(KOfflineDb_Save(db), 1) << n;
        ASSERT_EQ(Stored(db, path_), files_) << n;
        if (!hit) break;
    }
}

TEST_P(DatabaseFault, InAChangeLeavesTheTableAsItWas) {
    for (int n = 1; n < 200; ++n) {
        Database db;
        ASSERT_EQ(KOfflineDb_Load(db, path_.c_str()), 1) << n;
        KOfflineTable* items = KOfflineDb_GetTable_BITM(db);
        bool hit;
        {
            const Fault fault = NthFault(n);
            const bool added = KOfflineTable_AddFld(items, "EXTRA") == 4;
            EXPECT_EQ(KOfflineTable_GetFldsCount(items), added ? 5 : 4);
            const bool copied = KOfflineTable_CopyRec(items, 0) == 999;
            EXPECT_EQ(KOfflineTable_GetRecsCount(items), copied ? 1000 : 999);
            const bool set = KOfflineTable_SetFldValue(items, 1, 2, "a value that is longer than before") == 1;
            EXPECT_STREQ(KOfflineTable_GetFldValue(items, 1, 2),
                         set ? "a value that is longer than before" : "Frame");
            EXPECT_EQ(KOfflineDb_GetNIDByCCODE(db, "c777"), 777) << "by a scan where an index cannot be built";
            hit = fault.hit();
        }
        EXPECT_EQ(KOfflineDb_GetNIDByCCODE(db, "c778"), 778);
        if (!hit) break;
    }
}

TEST(UserDataFault, KeepsTheOldBlock) {
    Database db;
    void* block = KOfflineDb_InitUserData(db, 8, 0);
    const Fault fault(kFaultMemory, 1);
    EXPECT_EQ(KOfflineDb_InitUserData(db, 16, 1), nullptr);
    EXPECT_EQ(KOfflineDb_GetUserData(db, nullptr), block);
}

}  // namespace

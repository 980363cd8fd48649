// SPDX-License-Identifier: MIT
// No database at all: every function answers as for one that holds nothing.
#include <cstring>

#include "tests/support/database.h"

namespace {

TEST(NoDatabase, HasNoTablesAndNoFields) {
    for (const auto table : {KOfflineDb_GetTable_BITM, KOfflineDb_GetTable_BBOM, KOfflineDb_GetTable_BDWG,
                             KOfflineDb_GetTable_BITDWG, KOfflineDb_GetTable_BCAPP, KOfflineDb_GetTable_BITCAP})
        EXPECT_EQ(table(nullptr), nullptr);
    for (const auto field :
         {KOfflineDb_GetFld_BITM_NID, KOfflineDb_GetFld_BBOM_FCOUNT, KOfflineDb_GetFld_BITCAP_NCID})
        EXPECT_EQ(field(nullptr), -1);
}

TEST(NoDatabase, HasNoRecords) {
    for (const auto find : {KOfflineDb_GetRecByNID_BDWG, KOfflineDb_GetNIDByRec_BITM, KOfflineDb_GetNIDByRec_BITCAP})
        EXPECT_EQ(find(nullptr, 1), -1);
    for (const auto copy : {KOfflineDb_GetCCODEByRec, KOfflineDb_GetCCODEByNID, KOfflineDb_GetCCODEByRec_BDWG}) {
        char code[] = "old";
        EXPECT_EQ(copy(nullptr, 1, code), 0);
        EXPECT_STREQ(code, "");
    }
    EXPECT_EQ(KOfflineDb_GetNIDByCCODE(nullptr, "a"), -1);
    EXPECT_EQ(KOfflineDb_SetRootNode(nullptr, 0), 0);
    std::int32_t recs[1];
    EXPECT_EQ(KOfflineDb_GetRootNodes(nullptr, recs, 1), 0);
    EXPECT_EQ(KOfflineDb_GetNoParentNodes(nullptr, recs, 1), 0);
}

TEST(NoDatabase, KeepsNothing) {
    KOfflineDb_SetCheckInRec(nullptr, 3);
    EXPECT_EQ(KOfflineDb_GetCheckInRec(nullptr), -1);
    std::int32_t size = 9;
    EXPECT_EQ(KOfflineDb_InitUserData(nullptr, 8, 0), nullptr);
    EXPECT_EQ(KOfflineDb_GetUserData(nullptr, &size), nullptr);
    EXPECT_EQ(size, 0);
    char path[260] = "old";
    KOfflineDb_GetPath(nullptr, path);
    EXPECT_STREQ(path, "");
    KOfflineDb_GetPath(nullptr, nullptr);
    EXPECT_EQ(KOfflineDb_GetPackageHandle(nullptr), 0);
    EXPECT_EQ(KOfflineDb_GetPackageFile(nullptr, "a", "b") + KOfflineDb_SavePackageFile(nullptr, "a", "b"), 0);
    EXPECT_EQ(KOfflineDb_CheckPackageFileExist(nullptr, "a"), 0);
}

}  // namespace

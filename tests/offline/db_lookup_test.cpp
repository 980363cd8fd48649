// SPDX-License-Identifier: MIT
#include "tests/support/database.h"

namespace {

class Lookup : public DatabaseTest {
protected:
    void SetUp() override { Load(SmallDatabase()); }

    void Load(const Files& files) {
        KOfflineDb_Reset(db_);
        ASSERT_EQ(KOfflineDb_Load(db_, Put(files).c_str()), 1) << db_->error_text;
    }

    void LoadItems(const std::vector<std::string>& items, const std::vector<std::string>& lines) {
        Files files = MinimalDatabase();
        files["bitm.txt"] = Lines(items);
        files["bbom.txt"] = Lines(lines);
        Load(files);
    }

    /// What a function that copies a code returns and copies.
    template <typename Function>
    std::string Code(Function function, std::int32_t number) {
        char code[100] = "before";
        const std::int32_t result = function(db_, number, code);
        EXPECT_EQ(function(db_, number, nullptr), result);
        return std::to_string(result) + code;
    }

    template <typename Function>
    std::vector<std::int32_t> Nodes(Function function, std::int32_t max, std::int32_t* count) {
        std::vector<std::int32_t> recs(10, -7);
        *count = function(db_, recs.data(), max);
        EXPECT_EQ(function(db_, nullptr, max), *count);
        while (!recs.empty() && recs.back() == -7) recs.pop_back();
        return recs;
    }

    Database db_;
};

TEST_F(Lookup, FieldNumbersAreThoseOfTheTables) {
    struct {
        std::int32_t (*function)(KOfflineDb*);
        const char* table;
        const char* field;
    } const cases[] = {
#define FIELD(table, field) {KOfflineDb_GetFld_##table##_##field, #table, #field}
        FIELD(BITM, NID),    FIELD(BITM, CCODE),     FIELD(BITM, CNAME),      FIELD(BITM, CSRC),
        FIELD(BBOM, NID),    FIELD(BBOM, NPID),      FIELD(BBOM, NCID),       FIELD(BBOM, FCOUNT),
        FIELD(BDWG, NID),    FIELD(BDWG, CCODE),     FIELD(BDWG, CFILE),      FIELD(BDWG, CSRC),
        FIELD(BDWG, CASM),   FIELD(BDWG, COFLNMODI), FIELD(BDWG, NOFLNITMID), FIELD(BITDWG, NID),
        FIELD(BITDWG, NPID), FIELD(BITDWG, NCID),    FIELD(BCAPP, NID),       FIELD(BCAPP, CCODE),
        FIELD(BCAPP, CFILE), FIELD(BCAPP, CSRC),     FIELD(BCAPP, COFLNMODI), FIELD(BCAPP, NOFLNITMID),
        FIELD(BITCAP, NID),  FIELD(BITCAP, NPID),    FIELD(BITCAP, NCID)
#undef FIELD
    };
    KOfflineTable* (*const tables[])(KOfflineDb*) = {KOfflineDb_GetTable_BITM,  KOfflineDb_GetTable_BBOM,
                                                     KOfflineDb_GetTable_BDWG,  KOfflineDb_GetTable_BITDWG,
                                                     KOfflineDb_GetTable_BCAPP, KOfflineDb_GetTable_BITCAP};
    Load(MinimalDatabase());  // its tables have the fields in other places than the order of the functions
    for (const auto& c : cases) {
        for (auto* table : tables) {
            if (std::string(KOfflineTable_GetTblName(table(db_))) != c.table) continue;
            EXPECT_EQ(c.function(db_), KOfflineTable_GetFldIndex(table(db_), c.field)) << c.table << "." << c.field;
        }
    }
}

TEST_F(Lookup, FindsACountFieldThatWasAddedLater) {
    Load(MinimalDatabase());
    EXPECT_EQ(KOfflineDb_GetFld_BBOM_FCOUNT(db_), -1);
    EXPECT_EQ(KOfflineTable_AddFld(KOfflineDb_GetTable_BBOM(db_), "FCOUNT"), 3);
    EXPECT_EQ(KOfflineDb_GetFld_BBOM_FCOUNT(db_), 3);
}

TEST_F(Lookup, TurnsNidsIntoRecordsAndBackInEveryTable) {
    struct {
        std::int32_t (*record)(KOfflineDb*, std::int32_t);
        std::int32_t (*nid)(KOfflineDb*, std::int32_t);
        std::int32_t known_nid, known_record;
    } const cases[] = {{KOfflineDb_GetRecByNID_BITM, KOfflineDb_GetNIDByRec_BITM, 4, 3},
                       {KOfflineDb_GetRecByNID_BBOM, KOfflineDb_GetNIDByRec_BBOM, 2, 1},
                       {KOfflineDb_GetRecByNID_BDWG, KOfflineDb_GetNIDByRec_BDWG, 1, 0},
                       {KOfflineDb_GetRecByNID_BITDWG, KOfflineDb_GetNIDByRec_BITDWG, 1, 0},
                       {KOfflineDb_GetRecByNID_BCAPP, KOfflineDb_GetNIDByRec_BCAPP, 7, 0},
                       {KOfflineDb_GetRecByNID_BITCAP, KOfflineDb_GetNIDByRec_BITCAP, 1, 0}};
    for (const auto& c : cases) {
        EXPECT_EQ(c.record(db_, c.known_nid), c.known_record);
        EXPECT_EQ(c.nid(db_, c.known_record), c.known_nid);
        for (const std::int32_t none : {-2147483647 - 1, -1, 0, 99}) EXPECT_EQ(c.record(db_, none), -1);
        for (const std::int32_t none : {-1, 99}) EXPECT_EQ(c.nid(db_, none), -1);
    }
}

TEST_F(Lookup, ComparesNidsAsTextAndReadsThemAsNumbers) {
    LoadItems({"007\tA", "7\tB", "-5\tC", "12a\tD", "1.5\tE", "99999999999\tF"}, {});
    KOfflineTable* items = KOfflineDb_GetTable_BITM(db_);
    EXPECT_EQ(KOfflineDb_GetRecByNID_BITM(db_, 7), 1);
    EXPECT_EQ(KOfflineDb_GetRecByNID_BITM(db_, -5), 2);
    KOfflineTable_SetFldValue(items, 1, 0, " 12");
    const std::int32_t nids[] = {7, 12, -5, -1, -1, 2147483647};
    for (int rec = 0; rec < 6; ++rec) EXPECT_EQ(KOfflineDb_GetNIDByRec_BITM(db_, rec), nids[rec]) << rec;
}

TEST_F(Lookup, CopiesCodes) {
    EXPECT_EQ(Code(KOfflineDb_GetCCODEByRec, 1), "1FRAME");
    EXPECT_EQ(Code(KOfflineDb_GetCCODEByRec, -1), "0");
    EXPECT_EQ(Code(KOfflineDb_GetCCODEByRec, 4), "1");
    EXPECT_EQ(Code(KOfflineDb_GetCCODEByNID, 4), "1BELL");
    EXPECT_EQ(Code(KOfflineDb_GetCCODEByNID, 0), "0");
    EXPECT_EQ(Code(KOfflineDb_GetCCODEByNID, 5), "0");
    EXPECT_EQ(Code(KOfflineDb_GetCCODEByRec_BDWG, 0), "1D-1");
    EXPECT_EQ(Code(KOfflineDb_GetCCODEByNID_BDWG, 1), "1D-1");
    EXPECT_EQ(Code(KOfflineDb_GetCCODEByRec_BCAPP, 0), "1P-7");
    EXPECT_EQ(Code(KOfflineDb_GetCCODEByNID_BCAPP, 7), "1P-7");
    LoadItems({"1"}, {});
    EXPECT_EQ(Code(KOfflineDb_GetCCODEByNID, 1), "1") << "an item without a code";
}

TEST_F(Lookup, FindsItemsByCodeInAnyLetterCase) {
    EXPECT_EQ(KOfflineDb_GetNIDByCCODE(db_, "wHeEl"), 3);
    EXPECT_EQ(KOfflineDb_GetNIDByCCODE(db_, "WHEE"), -1);
    EXPECT_EQ(KOfflineDb_GetNIDByCCODE(db_, ""), -1);
    EXPECT_EQ(KOfflineDb_GetNIDByCCODE(db_, nullptr), -1);
}

TEST_F(Lookup, FindsNothingBeforeALoad) {
    KOfflineDb_Reset(db_);
    EXPECT_EQ(KOfflineDb_GetRecByNID_BITM(db_, 1), -1);
    EXPECT_EQ(KOfflineDb_GetNIDByRec_BITM(db_, 0), -1);
    EXPECT_EQ(KOfflineDb_GetNIDByCCODE(db_, "BIKE"), -1);
    EXPECT_EQ(Code(KOfflineDb_GetCCODEByRec, 0), "1");
    EXPECT_EQ(KOfflineDb_GetRootNodes(db_, nullptr, 0), 0);
}

TEST_F(Lookup, ListsTheItemsWithoutAParent) {
    std::int32_t count;
    LoadItems({"1\tA", "2\tB", "3\tC", "4\tD"}, {"1\t1\t2", "2\t1\t3"});
    EXPECT_EQ(Nodes(KOfflineDb_GetNoParentNodes, 10, &count), (std::vector<std::int32_t>{0, 3}));
    EXPECT_EQ(count, 2);
    EXPECT_EQ(Nodes(KOfflineDb_GetNoParentNodes, 1, &count), (std::vector<std::int32_t>{0}));
    EXPECT_EQ(count, 2);
    EXPECT_EQ(Nodes(KOfflineDb_GetNoParentNodes, -1, &count), std::vector<std::int32_t>{});
    EXPECT_EQ(count, 2);
    KOfflineTable_SetFldValue(KOfflineDb_GetTable_BITM(db_), 0, 0, "");
    EXPECT_EQ(Nodes(KOfflineDb_GetNoParentNodes, 10, &count), (std::vector<std::int32_t>{3})) << "no NID, no top";
    LoadItems({"1\tA", "2\tB", "3\tC", "4\tD", "5\tE"}, {});
    EXPECT_EQ(Nodes(KOfflineDb_GetNoParentNodes, 3, &count), (std::vector<std::int32_t>{0, 1, 2}));
    EXPECT_EQ(count, 5);
}

TEST_F(Lookup, ListsTheRootAloneWhileItExists) {
    std::int32_t count;
    ASSERT_EQ(KOfflineDb_SetRootNode(db_, 2), 1);
    EXPECT_EQ(Nodes(KOfflineDb_GetRootNodes, 10, &count), (std::vector<std::int32_t>{2}));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(Nodes(KOfflineDb_GetRootNodes, 0, &count), std::vector<std::int32_t>{});
    EXPECT_EQ(count, 1);
    KOfflineTable_DelRec(KOfflineDb_GetTable_BITM(db_), 2);
    EXPECT_EQ(Nodes(KOfflineDb_GetRootNodes, 10, &count), (std::vector<std::int32_t>{0, 2}));
    EXPECT_EQ(count, 2);
}

TEST_F(Lookup, KeepsTheRootWhenAnItemCannotBeOne) {
    LoadItems({"5\tA", "0\tB", "x\tC"}, {});
    ASSERT_EQ(KOfflineDb_SetRootNode(db_, 0), 1);
    for (const std::int32_t rec : {1, 2, 3, -1}) EXPECT_EQ(KOfflineDb_SetRootNode(db_, rec), 0) << rec;
    EXPECT_EQ(db_->root_nid, 5);
}

TEST_F(Lookup, IsSafeOnCyclicLines) {
    LoadItems({"1\tA", "2\tB"}, {"1\t1\t2", "2\t2\t1", "3\t1\t1"});
    EXPECT_EQ(KOfflineDb_GetNoParentNodes(db_, nullptr, 0), 0);
    EXPECT_EQ(KOfflineDb_GetRootNodes(db_, nullptr, 0), 0);
}

}  // namespace

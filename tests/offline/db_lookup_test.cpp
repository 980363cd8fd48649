// SPDX-License-Identifier: MIT
#include "tests/support/database.h"

namespace {

using Numbers = std::vector<std::int32_t>;

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
    std::string Code(std::int32_t (*function)(KOfflineDb*, std::int32_t, char*), std::int32_t number) {
        char code[100] = "before";
        const std::int32_t result = function(db_, number, code);
        EXPECT_EQ(function(db_, number, nullptr), result);
        return std::to_string(result) + code;
    }

    /// What a function that lists records returns, and after it what it lists.
    Numbers Listed(std::int32_t (*function)(KOfflineDb*, std::int32_t*, std::int32_t), std::int32_t max) {
        Numbers recs(10, -7);
        const std::int32_t count = function(db_, recs.data(), max);
        EXPECT_EQ(function(db_, nullptr, max), count);
        while (!recs.empty() && recs.back() == -7) recs.pop_back();
        recs.insert(recs.begin(), count);
        return recs;
    }

    Database db_;
};

TEST_F(Lookup, KnowsTheNumbersOfFields) {
    Load(MinimalDatabase());  // its tables have the fields in other places than the order of the functions
    Numbers numbers;
    for (auto* number : kFieldNumbers) numbers.push_back(number(db_));
    EXPECT_EQ(numbers, Numbers(db_->field_slots, db_->field_slots + 27));
    EXPECT_EQ(numbers, (Numbers{0, 1, 2, 3, 0, 1, 2, -1, 0, 1, 4, 3, 5, 6, 7, 0, 1, 2, 0, 1, 4, 3, 5, 6, 0, 1, 2}));
    EXPECT_EQ(KOfflineTable_AddFld(KOfflineDb_GetTable_BBOM(db_), "FCOUNT"), 3);
    EXPECT_EQ(KOfflineDb_GetFld_BBOM_FCOUNT(db_), 3) << "it is found when it was added later";
}

TEST_F(Lookup, TurnsNidsIntoRecordsAndBackInEveryTable) {
    constexpr std::int32_t known[][2] = {{4, 3}, {2, 1}, {1, 0}, {1, 0}, {7, 0}, {1, 0}};  // NID and record
    for (int i = 0; i < 6; ++i) {
        const auto& c = kTables[i];
        EXPECT_EQ(c.table(db_), &db_->tables[i]);
        EXPECT_EQ(c.record(db_, known[i][0]), known[i][1]);
        EXPECT_EQ(c.nid(db_, known[i][1]), known[i][0]);
        for (const std::int32_t none : {-2147483647 - 1, -1, 0, 99}) EXPECT_EQ(c.record(db_, none), -1);
        for (const std::int32_t none : {-1, 99}) EXPECT_EQ(c.nid(db_, none), -1);
    }
}

TEST_F(Lookup, ComparesNidsAsTextAndReadsThemAsNumbers) {
    LoadItems({"007\tA", "7\tB", "-5\tC", "12a\tD", "1.5\tE", "99999999999\tF"}, {});
    EXPECT_EQ(KOfflineDb_GetRecByNID_BITM(db_, 7), 1);
    EXPECT_EQ(KOfflineDb_GetRecByNID_BITM(db_, -5), 2);
    KOfflineTable_SetFldValue(KOfflineDb_GetTable_BITM(db_), 1, 0, " 12");
    const Numbers nids = {7, 12, -5, -1, -1, 2147483647};
    for (int rec = 0; rec < 6; ++rec) EXPECT_EQ(KOfflineDb_GetNIDByRec_BITM(db_, rec), nids[std::size_t(rec)]) << rec;
}

TEST_F(Lookup, CopiesAndFindsCodes) {
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
    EXPECT_EQ(KOfflineDb_GetNIDByCCODE(db_, "wHeEl"), 3);
    for (const char* none : {"WHEE", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(KOfflineDb_GetNIDByCCODE(db_, none), -1);
    LoadItems({"1"}, {});
    EXPECT_EQ(Code(KOfflineDb_GetCCODEByNID, 1), "1") << "an item without a code";
}

TEST_F(Lookup, ListsTheItemsWithoutAParent) {
    LoadItems({"1\tA", "2\tB", "3\tC", "4\tD"}, {"1\t1\t3"});
    EXPECT_EQ(Listed(KOfflineDb_GetNoParentNodes, 10), (Numbers{3, 0, 1, 3}));
    EXPECT_EQ(Listed(KOfflineDb_GetNoParentNodes, 1), (Numbers{3, 0}));
    EXPECT_EQ(Listed(KOfflineDb_GetNoParentNodes, -1), Numbers{3});
    KOfflineTable_SetFldValue(KOfflineDb_GetTable_BITM(db_), 0, 0, "");
    EXPECT_EQ(Listed(KOfflineDb_GetNoParentNodes, 10), (Numbers{2, 1, 3})) << "no NID, no top";
    LoadItems({"1\tA", "2\tB", "3\tC", "4\tD", "5\tE"}, {});
    EXPECT_EQ(Listed(KOfflineDb_GetNoParentNodes, 3), (Numbers{5, 0, 1, 2}));
    LoadItems({"1\tA", "2\tB"}, {"1\t1\t2", "2\t2\t1", "3\t1\t1"});
    EXPECT_EQ(Listed(KOfflineDb_GetRootNodes, 10), Numbers{0}) << "lines in a circle have no top";
}

TEST_F(Lookup, ListsTheRootAloneWhileItExists) {
    ASSERT_EQ(KOfflineDb_SetRootNode(db_, 2), 1);
    EXPECT_EQ(Listed(KOfflineDb_GetRootNodes, 10), (Numbers{1, 2}));
    EXPECT_EQ(Listed(KOfflineDb_GetRootNodes, 0), Numbers{1});
    KOfflineTable_DelRec(KOfflineDb_GetTable_BITM(db_), 2);
    EXPECT_EQ(Listed(KOfflineDb_GetRootNodes, 10), (Numbers{2, 0, 2}));
    LoadItems({"5\tA", "0\tB", "x\tC"}, {});
    ASSERT_EQ(KOfflineDb_SetRootNode(db_, 0), 1);
    for (const std::int32_t rec : {1, 2, 3, -1}) EXPECT_EQ(KOfflineDb_SetRootNode(db_, rec), 0) << rec;
    EXPECT_EQ(Listed(KOfflineDb_GetRootNodes, 10), (Numbers{1, 0})) << "items that cannot be the root leave it";
}

}  // namespace

// SPDX-License-Identifier: MIT
// Every operation of a table when memory runs out at any of its allocations: it fails as documented and changes
// nothing, or it does without the memory and gives the same.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "offline/tables/data_file.h"
#include "tests/support/host_faults.h"
#include "tests/support/table.h"

namespace {

using Strings = std::vector<std::string>;

struct Operation {
    const char* name;
    int failure;  ///< what it returns when it fails; kNever for an operation that does without memory
    std::function<int(Table&)> run;
};

constexpr int kNever = -99;
constexpr int kFull = 512;  // records that fill what a table has room for
const std::string kLong(300, ',');

int Search(Table& table, const char* field, const char* key) {
    const int number = KOfflineTable_GetFldIndex(table, field);
    return KOfflineTable_Search(table, number, key, nullptr, 0);
}

const Operation kOperations[] = {
    {"AddRec", -1, [](Table& t) { return KOfflineTable_AddRec(t, "\tX", "\t"); }},
    {"CopyRec", -1, [](Table& t) { return KOfflineTable_CopyRec(t, 3); }},
    {"SetFldValue", 0, [](Table& t) { return KOfflineTable_SetFldValue(t, 3, 1, kLong.c_str()); }},
    {"SetRecNID", 0, [](Table& t) { return KOfflineTable_SetRecNID(t, 3, 1234567890); }},
    {"AddFld", -1, [](Table& t) { return KOfflineTable_AddFld(t, "NEW"); }},
    {"LoadIdx", 0, [](Table& t) { return KOfflineTable_LoadIdx(t, "MANY"); }},
    {"LoadIdxAgain", kNever, [](Table& t) { return KOfflineTable_LoadIdx(t, "FEW"); }},
    {"SearchThatRefreshes", kNever,
     [](Table& t) {
         t.Set(3, 1, "1");
         return Search(t, "FEW", "1");
     }},
    {"SearchOften", kNever,
     [](Table& t) {
         int found = 0;
         for (int i = 0; i < 20; ++i) found += Search(t, "FEW", "2");
         return found;
     }},
    {"DelRec", kNever, [](Table& t) { return KOfflineTable_DelRec(t, 3); }},
    {"ParseLines", 0, [](Table& t) { return KOfflineTable_ParseLines(t, "2000\ta\n", "\t"); }},
};

std::string NameOf(const testing::TestParamInfo<Operation>& info) {
    return info.param.name;
}

class TableMeetsFaults : public testing::TestWithParam<Operation> {
protected:
    static Strings Lines() {
        Strings lines;
        for (int i = 0; i < 200; ++i)
            lines.push_back(std::to_string(i) + "\t" + std::to_string(i % 5) + "\tv" + std::to_string(i * 77 % 1000));
        return lines;
    }

    static std::vector<std::int32_t> All(Table& table) {
        std::vector<std::int32_t> all = table.Index("FEW");
        for (const char* key : {"0", "3", "4"}) {
            for (const std::int32_t record : table.Find("FEW", key)) all.push_back(record);
        }
        return all;
    }
};

TEST_P(TableMeetsFaults, AndFailsAsDocumentedOrDoesWithoutMemory) {
    const Operation& operation = GetParam();
    Table untouched({"NID", "FEW", "MANY"}, Lines());
    KOfflineTable_LoadIdx(untouched, "FEW");
    const Strings before = untouched.Rows();
    const int expected = operation.run(untouched);
    for (int nth = 1; nth < 1000; ++nth) {
        for (const bool from_then_on : {false, true}) {
            Table table({"NID", "FEW", "MANY"}, Lines());
            KOfflineTable_LoadIdx(table, "FEW");
            int result;
            {
                Fault fault(kFaultMemory, nth, FaultManner::cleanly, from_then_on);
                result = operation.run(table);
                if (!fault.hit()) return;
            }
            const bool failed = result == operation.failure;
            EXPECT_EQ(table.TakeError(), failed ? KOFFLINE_ERR_MEMORY : KOFFLINE_ERR_NONE) << "allocation " << nth;
            EXPECT_EQ(result, failed ? result : expected) << "allocation " << nth;
            EXPECT_EQ(table.Rows(), failed ? before : untouched.Rows()) << "allocation " << nth;
            if (failed) continue;
            EXPECT_EQ(All(table), All(untouched)) << "allocation " << nth;
        }
    }
    FAIL() << "the operation never ends";
}

INSTANTIATE_TEST_SUITE_P(, TableMeetsFaults, testing::ValuesIn(kOperations), NameOf);

TEST(StaleIndex, ThatCannotGrowIsPassedOverByAScan) {
    Table table({"NID"});
    for (int i = 0; i < kFull; ++i) table.Add(std::to_string(i));
    KOfflineTable_LoadIdx(table, "NID");
    table.Add("new");
    {
        Fault fault(kFaultMemory, 1);
        EXPECT_EQ(table.Find("NID", "new"), std::vector<std::int32_t>{kFull});
        EXPECT_TRUE(fault.hit());
    }
    EXPECT_EQ(table->indexes_stale, 1);
    EXPECT_EQ(table.Find("NID", "new"), std::vector<std::int32_t>{kFull});
    EXPECT_EQ(table->indexes_stale, 0);
}

}  // namespace

// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/table.h"

namespace {

using Strings = std::vector<std::string>;

TEST(Fields, NamesAreKeptAsDeclaredUpToTheirLimit) {
    Table table({"BITM.NID"});
    const std::string longest(32, 'n');
    EXPECT_EQ(KOfflineTable_AddFld(table, longest.c_str()), 1);
    EXPECT_EQ(KOfflineTable_AddFld(table, (longest + "n").c_str()), -1);
    EXPECT_EQ(KOfflineTable_AddFld(table, (longest + ".NID").c_str()), 0) << "an existing field is found first";
    for (const char* no_name : {"", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(KOfflineTable_AddFld(table, no_name), -1);
    }
    char name[33] = "?";
    EXPECT_EQ(KOfflineTable_GetFldName(table, 1, name), 1);
    EXPECT_EQ(name, longest);
    EXPECT_EQ(KOfflineTable_GetFldName(table, 0, nullptr), 1);
    for (const int number : {-1, 2}) {
        std::strcpy(name, "?");
        EXPECT_EQ(KOfflineTable_GetFldName(table, number, name), 0);
        EXPECT_STREQ(name, "");
    }
    KOfflineTable_Destructor(table);
    KOfflineTable_Constructor(table, nullptr, std::string(40, 't').c_str());
    EXPECT_EQ(KOfflineTable_GetTblName(table), std::string(31, 't'));
}

TEST(Records, AreMadeOfTheValuesOfALine) {
    const struct {
        const char* line;
        const char* separator;
        const char* row;
    } cases[] = {{"12\tA-100\tBolt", "\t", "12|A-100|Bolt"},
                 {"12\tA-100", "\t", "12|A-100|-"},
                 {"12\tA\tB\tsurplus", "\t", "12|A|B"},
                 {"  7 \t  x", "\t", "7|x|-"},
                 {"\tA", "\t", "1|A|-"},
                 {nullptr, "\t", "1|-|-"},
                 {"5;;", ";", "5||"},
                 {"5<>a<b<>c", "<>", "5|a<b|c"},
                 {"5<><><>", "<>", "5||"},
                 {"5 a b", "", "5 a b|-|-"},
                 {"5 a b", nullptr, "5 a b|-|-"},
                 {"5;a\\cb;\\\\\\t\\/", ";", "5|a,b|\\\t/"},
                 {"5;good\\qbad;ok", ";", "5|good|ok"},
                 {"5;\t\\t ;x\\", ";", "5|\t|x"}};
    for (const auto& [line, separator, row] : cases) {
        Table table({"NID", "CCODE", "CNAME"});
        ASSERT_EQ(KOfflineTable_AddRec(table, line, separator), 0);
        EXPECT_EQ(table.Row(0), row);
    }
}

TEST(Records, AValueThatFitsIsWrittenOverTheOldOne) {
    Table table({"NID", "A", "B"}, {"1\tlong value\tz"});
    const char* place = table.Get(0, 1);
    table.Set(0, 1, "short");
    EXPECT_EQ(table.Get(0, 1), place);
    table.Set(0, 1, "shorter");
    EXPECT_NE(table.Get(0, 1), place) << "only the bytes of the present value count";
    table.Set(0, 1, table.Get(0, 1) + 5);
    table.Set(0, 2, table.Get(0, 1));
    EXPECT_EQ(table.Row(0), "1|er|er") << "a value may come from the record itself";
}

TEST(Records, AValueMayBeginNoFartherThanByte32767) {
    const std::string limit(32766 - 2, 'x');  // after "1" and its terminator
    Table table({"NID", "A", "B"});
    EXPECT_EQ(KOfflineTable_AddRec(table, ("1;" + limit.substr(1) + ";end").c_str(), ";"), 0);
    EXPECT_STREQ(table.Get(0, 2), "end");
    EXPECT_EQ(KOfflineTable_AddRec(table, ("1;" + limit + ";end").c_str(), ";"), -1);
    EXPECT_EQ(table.TakeError(), KOFFLINE_ERR_RECORD);
    EXPECT_EQ(KOfflineTable_SetFldValue(table, 0, 1, limit.c_str()), 0);
    EXPECT_EQ(table.TakeError(), KOFFLINE_ERR_RECORD);
    EXPECT_EQ(table.Get(0, 1), limit.substr(1)) << "a refused value changes nothing";
    EXPECT_EQ(KOfflineTable_SetFldValue(table, 0, 2, std::string(100000, 'y').c_str()), 1) << "the last may be long";
    EXPECT_EQ(KOfflineTable_DelRec(table, 1) + KOfflineTable_SetFldValue(table, INT_MIN, 0, "x"), 0);
    EXPECT_EQ(KOfflineTable_CopyRec(table, 1), -1);
    for (const auto& [record, field] : {std::pair(0, 3), std::pair(0, -1), std::pair(1, 0), std::pair(-1, 0)})
        EXPECT_EQ(table.Get(record, field), nullptr);
    EXPECT_EQ(table.error(), KOFFLINE_ERR_NONE) << "a number out of range is not reported";
}

TEST(Records, CapacityGrowsInStepsAsRecordsAreAdded) {
    Table table({"NID"});
    for (int i = 0; i < 2000; ++i) {
        table.Add("x");
        ASSERT_EQ(table->record_capacity, (i / 512 + 1) * 512);
    }
    KOfflineTable_DelRec(table, 0);
    EXPECT_EQ(table->record_capacity, 2048);
    KOfflineTable_Clear(table);
    EXPECT_EQ(table->record_capacity, 0);
    EXPECT_EQ(table->records, nullptr);
    table->record_count = table->field_count = -3;
    EXPECT_EQ(KOfflineTable_GetRecsCount(table) + KOfflineTable_GetFldsCount(table), 0);
}

TEST(Nids, ARecordThatCannotGetOneIsNotAdded) {
    Table table({"A", "NID"});
    EXPECT_EQ(KOfflineTable_AddRec(table, std::string(40000, 'x').c_str(), ";"), -1) << "no room for the NID";
    EXPECT_EQ(table.TakeError(), KOFFLINE_ERR_RECORD);
    EXPECT_EQ(KOfflineTable_AddRec(table, "a;2147483647", ";"), 0);
    EXPECT_EQ(KOfflineTable_AddRec(table, "b", ";"), -1) << "the numbers are used up";
    EXPECT_EQ(table.TakeError(), KOFFLINE_ERR_RECORD);
    EXPECT_EQ(KOfflineTable_CopyRec(table, 0), -1);
    EXPECT_EQ(table.TakeError(), KOFFLINE_ERR_RECORD);
    EXPECT_EQ(table->nid_watermark, -1);
    table.Set(0, 1, "5");
    EXPECT_EQ(KOfflineTable_AddRec(table, "b", ";"), 1);
    EXPECT_EQ(table.Rows(), (Strings{"a|5", "b|6"}));
    for (const int nid : {INT_MIN, INT_MAX}) {
        EXPECT_EQ(KOfflineTable_SetRecNID(table, 0, nid), 1);
        EXPECT_EQ(KOfflineTable_GetRecNID(table, 0), nid);
    }
    EXPECT_EQ(KOfflineTable_CopyRec(table, 0), -1) << "the largest number ends the numbering";
}

}  // namespace

// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "tests/support/table.h"

namespace {

using Strings = std::vector<std::string>;

TEST(Fields, AreFoundByWhatFollowsTheFirstPointWhateverTheirLetterCase) {
    Table table({"BITM.NID", "CCODE", "A.B.C"});
    EXPECT_EQ(KOfflineTable_GetFldIndex(table, "nid"), 0);
    EXPECT_EQ(KOfflineTable_GetFldIndex(table, "x.Nid"), 0);
    EXPECT_EQ(KOfflineTable_GetFldIndex(table, "ccode"), 1);
    EXPECT_EQ(KOfflineTable_GetFldIndex(table, "z.b.c"), 2);
    EXPECT_EQ(KOfflineTable_GetFldIndex(table, "C"), -1);
    EXPECT_EQ(KOfflineTable_GetFldIndex(table, nullptr), -1);
    EXPECT_EQ(KOfflineTable_AddFld(table, "other.ccode"), 1) << "already there";
    EXPECT_EQ(KOfflineTable_GetFldsCount(table), 3);
}

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

TEST(Fields, AFieldAddedLaterHasNoValueInTheRecordsThatAreThere) {
    Table table({"NID", "CCODE"}, {"1\tA", "2", "3\tC"});
    table.Set(0, 1, "a longer code than before");
    EXPECT_EQ(KOfflineTable_AddFld(table, "CNAME"), 2);
    EXPECT_EQ(table.Rows(), (Strings{"1|a longer code than before|-", "2|-|-", "3|C|-"}));
    table.Set(1, 2, "Bolt");
    EXPECT_EQ(table.Row(1), "2|-|Bolt");
}

struct Line {
    const char* line;
    const char* separator;
    const char* row;
};

class Lines : public testing::TestWithParam<Line> {};

TEST_P(Lines, AreSplitIntoValues) {
    Table table({"NID", "CCODE", "CNAME"});
    ASSERT_EQ(KOfflineTable_AddRec(table, GetParam().line, GetParam().separator), 0);
    EXPECT_EQ(table.Row(0), GetParam().row);
}

INSTANTIATE_TEST_SUITE_P(
    Records, Lines,
    testing::Values(Line{"12\tA-100\tBolt", "\t", "12|A-100|Bolt"}, Line{"12\tA-100", "\t", "12|A-100|-"},
                    Line{"12\tA\tB\tsurplus", "\t", "12|A|B"}, Line{"  7 \t  x", "\t", "7|x|-"},
                    Line{"\tA", "\t", "1|A|-"}, Line{"", "\t", "1|-|-"}, Line{nullptr, "\t", "1|-|-"},
                    Line{"5;;", ";", "5||"}, Line{"5<>a<b<>c", "<>", "5|a<b|c"}, Line{"5<><><>", "<>", "5||"},
                    Line{"5 a b", "", "5 a b|-|-"}, Line{"5 a b", nullptr, "5 a b|-|-"},
                    Line{"5;a\\cb;\\\\\\t\\/", ";", "5|a,b|\\\t/"}, Line{"5;good\\qbad;ok", ";", "5|good|ok"},
                    Line{"5;\t\\t ;x\\", ";", "5|\t|x"}, Line{"abc;x", ";", "abc|x|-"}));

TEST(Records, WithoutFieldsHaveNoValues) {
    Table table({});
    EXPECT_EQ(KOfflineTable_AddRec(table, "a\tb", "\t"), 0);
    EXPECT_EQ(KOfflineTable_CopyRec(table, 0), 1);
    EXPECT_EQ(KOfflineTable_GetFldValue(table, 0, 0), nullptr);
    EXPECT_EQ(KOfflineTable_AddFld(table, "F"), 0);
    EXPECT_EQ(table.Rows(), (Strings{"-", "-"}));
}

TEST(Records, NumbersOutOfRangeChangeNothingAndReportNothing) {
    Table table({"NID"}, {"1"});
    for (const int record : {-1, 1, INT_MAX, INT_MIN}) {
        EXPECT_EQ(KOfflineTable_DelRec(table, record), 0);
        EXPECT_EQ(KOfflineTable_CopyRec(table, record), -1);
        EXPECT_EQ(KOfflineTable_SetFldValue(table, record, 0, "x"), 0);
        EXPECT_EQ(KOfflineTable_SetFldValue(table, 0, record, "x"), 0);
        EXPECT_EQ(KOfflineTable_GetFldValue(table, record, 0), nullptr);
        EXPECT_EQ(KOfflineTable_GetFldValue(table, 0, record), nullptr);
        EXPECT_EQ(KOfflineTable_GetRecNID(table, record), -1);
        EXPECT_EQ(KOfflineTable_SetRecNID(table, record, 5), 0);
    }
    EXPECT_EQ(table.Rows(), Strings{"1"});
    EXPECT_EQ(table.error(), KOFFLINE_ERR_NONE);
}

TEST(Records, AnEmptyTextOverAValueLeavesAnEmptyValueAndOverNoValueNone) {
    Table table({"NID", "A", "B"}, {"1\tx"});
    table.Set(0, 1, "");
    table.Set(0, 2, "");
    EXPECT_EQ(table.Row(0), "1||-");
    table.Set(0, 2, nullptr);
    table.Set(0, 1, nullptr);
    EXPECT_EQ(table.Row(0), "1||-");
}

TEST(Records, AValueThatFitsIsWrittenOverTheOldOne) {
    Table table({"NID", "A", "B"}, {"1\tlong value\tz"});
    const char* place = table.Get(0, 1);
    table.Set(0, 1, "short");
    EXPECT_EQ(table.Get(0, 1), place);
    table.Set(0, 1, "shorter");
    EXPECT_NE(table.Get(0, 1), place) << "only the bytes of the present value count";
    EXPECT_EQ(table.Row(0), "1|shorter|z");
    table.Set(0, 1, table.Get(0, 1) + 5);
    EXPECT_EQ(table.Row(0), "1|er|z") << "a value may come from the record itself";
    table.Set(0, 2, table.Get(0, 1));
    EXPECT_EQ(table.Row(0), "1|er|er");
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
    EXPECT_EQ(KOfflineTable_AddFld(table, "C"), 3);
    EXPECT_EQ(KOfflineTable_SetFldValue(table, 0, 3, "z"), 0);
    EXPECT_EQ(KOfflineTable_GetRecsCount(table), 1);
}

TEST(Records, ARecordThatCannotGetItsNidIsNotAdded) {
    Table table({"A", "NID"});
    EXPECT_EQ(KOfflineTable_AddRec(table, std::string(40000, 'x').c_str(), ";"), -1) << "no room for the NID";
    EXPECT_EQ(table.TakeError(), KOFFLINE_ERR_RECORD);
    EXPECT_EQ(KOfflineTable_AddRec(table, "a;2147483647", ";"), 0);
    EXPECT_EQ(KOfflineTable_AddRec(table, "b", ";"), -1) << "the numbers are used up";
    EXPECT_EQ(table.TakeError(), KOFFLINE_ERR_RECORD);
    EXPECT_EQ(KOfflineTable_CopyRec(table, 0), -1);
    EXPECT_EQ(table.TakeError(), KOFFLINE_ERR_RECORD);
    EXPECT_EQ(table->nid_watermark, -1);
    EXPECT_EQ(table.Rows(), Strings{"a|2147483647"});
    table.Set(0, 1, "5");
    EXPECT_EQ(KOfflineTable_AddRec(table, "b", ";"), 1);
    EXPECT_EQ(table.Row(1), "b|6");
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
    EXPECT_EQ(KOfflineTable_GetFldsCount(table), 1);
    table->record_count = table->field_count = -3;
    EXPECT_EQ(KOfflineTable_GetRecsCount(table) + KOfflineTable_GetFldsCount(table), 0);
}

TEST(Nids, AreNumberedOnFromTheLargest) {
    Table table({"NID", "A"}, {"1", "5", "3", "abc", "2.5", "-4"});
    table.Add("\tfirst");
    table.Add("\tsecond");
    EXPECT_EQ(KOfflineTable_GetRecNID(table, 6), 6);
    EXPECT_EQ(KOfflineTable_GetRecNID(table, 7), 7);
    EXPECT_EQ(KOfflineTable_SetRecNID(table, 0, 20), 1);
    EXPECT_EQ(KOfflineTable_GetRecNID(table, KOfflineTable_CopyRec(table, 6)), 23);
    EXPECT_EQ(table.Row(8), "23|first");
    EXPECT_EQ(KOfflineTable_SetRecNID(table, 0, 10), 1);
    EXPECT_EQ(KOfflineTable_GetRecNID(table, KOfflineTable_CopyRec(table, 6)), 24);
    EXPECT_EQ(KOfflineTable_GetRecNID(table, 3), -1);
    EXPECT_EQ(KOfflineTable_GetRecNID(table, 4), -1);
    EXPECT_EQ(KOfflineTable_GetRecNID(table, 5), -4);
}

TEST(Nids, ADeletionBeforeTheFirstNumberFixesTheBase) {
    Table table({"NID"}, {"1", "5", "3"});
    EXPECT_EQ(KOfflineTable_DelRec(table, 1), 1);
    table.Add("");
    EXPECT_EQ(table.Rows(), (Strings{"1", "3", "7"}));
    KOfflineTable_Clear(table);
    table.Add("");
    EXPECT_EQ(table.Rows(), Strings{"8"}) << "clearing does not begin the numbering anew";
}

TEST(Nids, StayBelowTheLargestNumber) {
    Table table({"NID"}, {"1", ""});
    EXPECT_EQ(KOfflineTable_SetRecNID(table, 0, INT_MAX), 1);
    EXPECT_EQ(KOfflineTable_AddRec(table, "", ";"), -1);
    EXPECT_EQ(KOfflineTable_CopyRec(table, 0), -1);
    EXPECT_EQ(KOfflineTable_SetRecNID(table, 0, INT_MIN), 1);
    EXPECT_EQ(KOfflineTable_GetRecNID(table, 0), INT_MIN);
}

TEST(Nids, DoNotExistWithoutTheField) {
    Table table({"CCODE"}, {"a"});
    EXPECT_EQ(KOfflineTable_CopyRec(table, 0), 1);
    EXPECT_EQ(KOfflineTable_DelRec(table, 0), 1);
    EXPECT_EQ(table->nid_watermark, -1);
    EXPECT_EQ(KOfflineTable_GetRecNID(table, 0), -1);
    EXPECT_EQ(KOfflineTable_SetRecNID(table, 0, 5), 0);
    EXPECT_EQ(table.Rows(), Strings{"a"});
}

TEST(Tables, NoTableIsATableWithNothingInIt) {
    KOfflineTable* none = nullptr;
    KOfflineTable_Constructor(none, nullptr, "T");
    KOfflineTable_Clear(none);
    KOfflineTable_Destructor(none);
    EXPECT_EQ(KOfflineTable_GetOfflineDb(none), nullptr);
    EXPECT_EQ(KOfflineTable_GetTblName(none), nullptr);
    EXPECT_EQ(KOfflineTable_GetFldsCount(none) + KOfflineTable_GetRecsCount(none), 0);
    EXPECT_EQ(KOfflineTable_AddFld(none, "F"), -1);
    EXPECT_EQ(KOfflineTable_AddRec(none, "a", ";"), -1);
    EXPECT_EQ(KOfflineTable_GetRecNID(none, 0), -1);
    EXPECT_EQ(KOfflineTable_SetRecNID(none, 0, 1), 0);
    EXPECT_EQ(KOfflineTable_LoadIdx(none, "F"), 0);
    EXPECT_EQ(KOfflineTable_Search(none, 0, "a", nullptr, 0), -1);
    EXPECT_EQ(KOfflineTable_WriteFile(none, "file", ";"), 0);
}

}  // namespace

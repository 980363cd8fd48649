// SPDX-License-Identifier: MIT
#include "offline/tables/data_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/database.h"
#include "tests/support/table.h"

namespace {

using Strings = std::vector<std::string>;

class DataFiles : public DatabaseTest {
protected:
    Table table_{{"NID", "A", "B"}};

    static Strings Parsed(const std::string& text, const char* separator = "\t") {
        Table table({"NID", "A", "B"});
        EXPECT_EQ(KOfflineTable_ParseLines(table, text.c_str(), separator), 1);
        return table.Rows();
    }
};

TEST_F(DataFiles, LinesEndWithEitherCharacterOrBoth) {
    const Strings rows{"1|a|-", "2|b|-", "3|c|-"};
    for (const char* text : {"1\ta\r\n2\tb\r\n3\tc\r\n", "1\ta\n2\tb\n3\tc", "1\ta\r2\tb\r3\tc\r",
                             "1\ta\n\r2\tb\r\r\n3\tc\r\n\n", "1\ta\r\n2\tb\n3\tc\r"}) {
        EXPECT_EQ(Parsed(text), rows) << testing::PrintToString(text);
    }
}

TEST_F(DataFiles, ACommentBeginsAtTheLastPairOfSlashes) {
    EXPECT_EQ(Parsed("1\ta // remark\r\n"), Strings{"1|a|-"});
    EXPECT_EQ(Parsed("1\ta // b // remark\r\n"), Strings{"1|a // b|-"});
    EXPECT_EQ(Parsed("1\ta/b\tc/\r\n/\t2/\r\n"), (Strings{"1|a/b|c/", "/|2/|-"}));
    EXPECT_EQ(Parsed("1\ta///\r\n"), Strings{"1|a/|-"}) << "pairs may overlap";
    EXPECT_EQ(Parsed("// all\r\n  //\r\n//\n1//\n"), Strings{"1|-|-"});
    EXPECT_EQ(Parsed("1\ta\\/\\/b\n"), Strings{"1|a//b|-"});
}

TEST_F(DataFiles, EmptyLinesAndWhatFollowsAZeroByteAreIgnored) {
    EXPECT_EQ(Parsed(""), Strings());
    EXPECT_EQ(Parsed("\r\n\n   \n \t \n"), Strings());
    EXPECT_EQ(Parsed("\t2\tx\t \n"), Strings{"1|2|x"}) << "a tab in front is a separator, behind it is trimmed";
    Write("bitm.txt", std::string("1\ta\n2\0b\n3", 10));
    EXPECT_EQ(KOfflineTable_ReadFile(table_, At("bitm.txt").c_str(), "\t"), 1);
    EXPECT_EQ(table_.Rows(), (Strings{"1|a|-", "2|-|-"}));
}

TEST_F(DataFiles, ValuesComeBackAsTheyWereButForBlanksAroundThem) {
    const Strings values{"a,b", "x\r\ny", "//", "C:\\tmp", "tab\there", "\\", ";"};
    for (const std::string& value : values) {
        table_.Add("");
        table_.Set(KOfflineTable_GetRecsCount(table_) - 1, 1, value.c_str());
    }
    table_.Add("20\t\tempty before");
    table_.Add("21");
    table_.Set(8, 2, "  blanks ");
    const Strings rows = table_.Rows();
    ASSERT_EQ(KOfflineTable_WriteFile(table_, At("f").c_str(), "<>"), 1);
    EXPECT_EQ(Read("f").substr(0, 35), "1<>a\\cb<>\r\n2<>x\\r\\ny<>\r\n3<>\\/\\/<>\r\n");
    ASSERT_EQ(KOfflineTable_ReadFile(table_, At("f").c_str(), "<>"), 1);
    for (int i = 0; i < 7; ++i) EXPECT_EQ(table_.Row(i), std::to_string(i + 1) + "|" + values[std::size_t(i)] + "|");
    EXPECT_EQ(table_.Row(7), "20||empty before");
    EXPECT_EQ(table_.Row(8), "21||blanks");
}

TEST_F(DataFiles, AreWrittenByteForByte) {
    Table lines({"NID", "NPID", "NCID", "FCOUNT"}, {"7\t1\t2\t3", "8"});
    ASSERT_EQ(KOfflineTable_WriteFile(lines, At("f").c_str(), "\t"), 1);
    EXPECT_EQ(Read("f"), "7\t1\t2\t3\r\n8\t\t\t\r\n");
    ASSERT_EQ(KOfflineTable_WriteFile(table_, At("f").c_str(), "\t"), 1);
    EXPECT_EQ(Read("f"), "") << "no records, no lines";
    ASSERT_EQ(KOfflineTable_ReadFile(lines, At("f").c_str(), "\t"), 1);
    EXPECT_EQ(lines.Rows(), Strings());
}

TEST_F(DataFiles, HoldValuesAndRecordsOfAnySize) {
    for (const std::size_t size : {std::size_t{1023}, std::size_t{32767}, std::size_t{1000000}}) {
        const std::string value(size, ',');
        table_.Add("\t\tlast");
        const int record = KOfflineTable_GetRecsCount(table_) - 1;
        table_.Set(record, 2, value.c_str());
        ASSERT_EQ(KOfflineTable_WriteFile(table_, At("f").c_str(), "\t"), 1);
        EXPECT_GT(Read("f").size(), 2 * size);
        ASSERT_EQ(KOfflineTable_ReadFile(table_, At("f").c_str(), "\t"), 1);
        EXPECT_EQ(table_.Get(record, 2), value);
    }
    std::string many;
    for (int i = 0; i < 50000; ++i) many += std::to_string(i) + "\tvalue of the record\t" + std::to_string(-i) + "\n";
    EXPECT_EQ(Parsed(many).back(), "49999|value of the record|-49999");
}

TEST_F(DataFiles, SeparatorsOfAnyLengthAreWrittenWhole) {
    const std::string separator = "<fifteen bytes>", longest(40000, '|');
    Table one({"NID", "A", "B"}, {"1"});
    ASSERT_EQ(KOfflineTable_WriteFile(one, At("f").c_str(), longest.c_str()), 1);
    EXPECT_EQ(Read("f"), "1" + longest + longest + "\r\n");
    std::string expected;
    for (int i = 0; i < 5000; ++i) {
        const std::string nid = std::to_string(i), value(std::size_t(i) % 37, 'v');
        table_.Add(nid + "\t" + value);
        expected += nid + separator + value + separator + "\r\n";
    }
    ASSERT_EQ(KOfflineTable_WriteFile(table_, At("f").c_str(), separator.c_str()), 1);
    EXPECT_TRUE(Read("f") == expected);
}

TEST_F(DataFiles, RecordsOfAFileChangeAsOthersDo) {
    ASSERT_EQ(KOfflineTable_ParseLines(table_, "1\ta\n2\tb\n\tc\n4\td", "\t"), 1);
    EXPECT_EQ(table_.Row(2), "3|c|-") << "the first automatic NID follows those read before it";
    table_.Set(0, 1, "longer than it was");
    KOfflineTable_DelRec(table_, 1);
    EXPECT_EQ(KOfflineTable_CopyRec(table_, 0), 3);
    EXPECT_EQ(KOfflineTable_AddFld(table_, "C"), 3);
    table_.Set(2, 3, "new");
    EXPECT_EQ(table_.Rows(),
              (Strings{"1|longer than it was|-|-", "3|c|-|-", "4|d|-|new", "4|longer than it was|-|-"}));
}

TEST_F(DataFiles, AFileThatIsNotThereLeavesNoRecords) {
    table_.Add("1");
    const std::string path = At("none");
    EXPECT_EQ(KOfflineTable_ReadFile(table_, path.c_str(), "\t"), 0);
    EXPECT_EQ(table_.TakeError(), KOFFLINE_ERR_FILE);
    EXPECT_EQ(table_.error_text(), path);
    EXPECT_EQ(table_.Rows(), Strings());
    const std::string nowhere = At("none/file");
    EXPECT_EQ(KOfflineTable_WriteFile(table_, nowhere.c_str(), "\t"), 0);
    EXPECT_EQ(table_.TakeError(), KOFFLINE_ERR_FILE);
    EXPECT_EQ(table_.error_text(), nowhere);
}

TEST_F(DataFiles, ARecordThatCannotBeAddedEndsTheReading) {
    const std::string text = "1\ta\n2\t" + std::string(40000, 'x') + "\tb\n3\n";
    EXPECT_EQ(KOfflineTable_ParseLines(table_, text.c_str(), "\t"), 0);
    EXPECT_EQ(table_.TakeError(), KOFFLINE_ERR_RECORD);
    EXPECT_EQ(table_.Rows(), Strings{"1|a|-"});
    EXPECT_EQ(KOfflineTable_ParseLines(table_, std::string(3000000, '\t').append("x").c_str(), "\t"), 1);
    EXPECT_EQ(KOfflineTable_ParseLines(table_, std::string(3000000, '/').c_str(), "\t"), 1);
    EXPECT_TRUE(table_.Rows() == (Strings{"1|a|-", "2||", std::string(2999998, '/') + "|-|-"}));
}

}  // namespace

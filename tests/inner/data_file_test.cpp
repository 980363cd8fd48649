// SPDX-License-Identifier: MIT
#include "offline/tables/data_file.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/support/database.h"
#include "tests/support/table.h"
#include "tests/support/table_script.h"

namespace {

using Strings = std::vector<std::string>;

class DataFiles : public DatabaseTest {
protected:
    Table table_{{"NID", "A", "B"}};

    static Strings Parsed(const std::string& text) {
        Table table({"NID", "A", "B"});
        EXPECT_EQ(KOfflineTable_ParseLines(table, text.c_str(), "\t"), 1);
        return table.Rows();
    }
};

TEST_F(DataFiles, AreWhatTheReferenceSays) {
    std::mt19937 random(1);
    constexpr char letters[] = "\t\t,;|\r\n\n//\\\\ctn  1a";
    const auto text = [&](std::size_t length) {
        std::string made;
        while (length-- > 0) made += letters[random() % (sizeof letters - 1)];
        return made;
    };
    for (int round = 0; round < 300; ++round) {
        std::string script{static_cast<char>(random() % 36), static_cast<char>(random() % 7)};
        script += text(random() % 60) + '\x1e';
        for (auto calls = random() % 9; calls > 0; --calls) {
            for (int i = 0; i < 4; ++i) script += static_cast<char>(random() % 256);
            script += text(random() % 9) + '\x1f';
        }
        const Input input(reinterpret_cast<const std::uint8_t*>(script.data()), script.size());
        ASSERT_EQ(RunTableScript(input, At("f"), KOfflineTable_ReadFile), "") << round;
    }
}

TEST_F(DataFiles, HoldLinesWithComments) {
    for (const char* text : {"1\ta\r\n2\tb\r\n3\tc\r\n", "1\ta\n2\tb\n3\tc", "1\ta\n\r2\tb\r\r\n3\tc\r\n\n"}) {
        EXPECT_EQ(Parsed(text), (Strings{"1|a|-", "2|b|-", "3|c|-"})) << testing::PrintToString(text);
    }
    EXPECT_EQ(Parsed("1\ta // b // remark\r\n"), Strings{"1|a // b|-"});
    EXPECT_EQ(Parsed("1\ta///\r\n"), Strings{"1|a/|-"}) << "pairs may overlap";
    EXPECT_EQ(Parsed("// all\r\n  //\r\n \t \n//\n1//\n"), Strings{"1|-|-"});
    EXPECT_EQ(Parsed("\t2\tx\t \n"), Strings{"1|2|x"}) << "a tab in front is a separator, behind it is trimmed";
    Write("bitm.txt", std::string("1\ta\n2\0b\n3", 10));
    EXPECT_EQ(KOfflineTable_ReadFile(table_, At("bitm.txt").c_str(), "\t"), 1);
    EXPECT_EQ(table_.Rows(), (Strings{"1|a|-", "2|-|-"})) << "a zero byte ends the file";
}

TEST_F(DataFiles, AreWrittenByteForByte) {
    Table values({"NID", "A", "B"}, {"1\ta\\cb", "2\tx\\r\\ny\t \\\\", "3\t\\/\\/\t\\t"});
    ASSERT_EQ(KOfflineTable_WriteFile(values, At("f").c_str(), "<>"), 1);
    EXPECT_EQ(Read("f"), "1<>a\\cb<>\r\n2<>x\\r\\ny<>\\\\\r\n3<>\\/\\/<>\\t\r\n");
    ASSERT_EQ(KOfflineTable_WriteFile(table_, At("f").c_str(), "\t"), 1);
    EXPECT_EQ(Read("f"), "") << "no records, no lines";
    ASSERT_EQ(KOfflineTable_ReadFile(values, At("f").c_str(), "\t"), 1);
    EXPECT_EQ(values.Rows(), Strings());
}

TEST_F(DataFiles, HoldValuesSeparatorsAndRecordsOfAnySize) {
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
    const std::string longest(40000, '|');
    ASSERT_EQ(KOfflineTable_WriteFile(table_, At("f").c_str(), longest.c_str()), 1);
    EXPECT_EQ(Read("f").substr(0, 80001), "1" + longest + longest);
    std::string many;
    for (int i = 0; i < 50000; ++i) many += std::to_string(i) + "\tvalue of the record\t" + std::to_string(-i) + "\n";
    const Strings rows = Parsed(many);
    EXPECT_EQ(rows.back(), "49999|value of the record|-49999");
    KOfflineTable_Clear(table_);
    EXPECT_EQ(KOfflineTable_ParseLines(table_, many.c_str(), "\t"), 1);
    ASSERT_EQ(KOfflineTable_WriteFile(table_, At("f").c_str(), "<fifteen bytes>"), 1);
    ASSERT_EQ(KOfflineTable_ReadFile(table_, At("f").c_str(), "<fifteen bytes>"), 1);
    EXPECT_TRUE(table_.Rows() == rows);
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

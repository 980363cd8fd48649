// SPDX-License-Identifier: MIT
#include "offline/tables/data_file.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "offline/tables/record_arena.h"
#include "tests/support/database.h"
#include "tests/support/table.h"
#include "tests/support/table_script.h"

using namespace vlt;

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

TEST_F(DataFiles, ARecordWithoutNidIsStoredOnce) {
    ASSERT_EQ(KOfflineTable_ParseLines(table_, "\ta\tb\n7\ta\n\n\t\tb", "\t"), 1);
    EXPECT_EQ(table_.Rows(), (Strings{"1|a|b", "7|a|-", "2||b"}));
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(RecordArena::holds(table_->records[i])) << i;
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

}  // namespace

// SPDX-License-Identifier: MIT
// Stored files: names, slots, positions and stamps.
#include "tests/support/store_fixture.h"

namespace {

class StoredFile : public BothNames {
protected:
    void SetUp() override { Create(0, GetParam()); }
};
INSTANTIATE_BOTH_NAMES(StoredFile);

class OneWidth : public StoreTest {};

TEST_P(StoredFile, IsFoundWithoutRegardToTheCaseOfAToZ) {
    const std::string longest(VLT_NAME_MAX, 'n'), longest_capitals(VLT_NAME_MAX, 'N'), shorter(VLT_NAME_MAX - 1, 'n');
    const std::string names[][3] = {{"Report.TXT", "rEPORT.txt", "Report.TXT "},
                                    {"", "", " "},
                                    {" a/b\\c:*?", " A/B\\C:*?", "a/b\\c:*?"},
                                    {"@[`{", "@[`{", "`{@["},
                                    {"\xC4\xE4\x81\x40", "\xC4\xE4\x81\x40", "\xE4\xC4\x81\x40"},
                                    {"[z]", "[Z]", "{z}"},
                                    {longest, longest_capitals, shorter}};
    std::vector<std::string> as_made;
    for (const auto& [given, same, other] : names) {
        Write(given, 10);
        as_made.push_back(given);
        for (int i = 0; i < 2; ++i, Reopen()) {
            FileInfo info;
            EXPECT_EQ(GetInfo(package, same, &info), 1) << given;
            EXPECT_EQ(GetInfo(package, other, &info), 0) << given;
        }
    }
    EXPECT_EQ(List(), as_made);
}

TEST_F(OneWidth, WideNamesKeepAllSixteenBits) {
    Create(0, Names::wide);
    const vlt_wchar made[] = {0x4E2D, 'A', 0x0130, 0xD83D, 0xDE00, 0};
    EXPECT_GT(vltw_file_open(package, made, VLT_MODE_WRITE, 0, 0, nullptr), 0);
    const auto found = [&](const WideName& name) {
        return vltw_file_get_info(package, name.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr);
    };
    EXPECT_EQ(found({0x4E2D, 'a', 0x0130, 0xD83D, 0xDE00}), 1);
    EXPECT_EQ(found({0x4E2D, 'a', 0x0131, 0xD83D, 0xDE00}), 0);
    EXPECT_EQ(found({0x2D, 'A', 0x30, 0x3D}), 0);
    WideName name(VLT_NAME_MAX + 1, 'x');
    EXPECT_EQ(vltw_package_enum(package, 0, name.data(), nullptr, nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(name.c_str(), WideName(made));
}

TEST_F(OneWidth, AHandleHas65535SlotsForOpenFiles) {
    Create();
    Write("a", 10);
    const auto number = [&](int slot) { return static_cast<std::uint32_t>(package << 16 | slot); };
    for (int slot = 1; slot <= 65535; ++slot) ASSERT_EQ(OpenFor("a", VLT_MODE_READ), number(slot));
    EXPECT_EQ(OpenError(package, "a", VLT_MODE_READ), VLT_FILE_NO_SLOT);
    EXPECT_EQ(OpenError(package, "new", VLT_MODE_WRITE), VLT_FILE_NO_SLOT);
    EXPECT_EQ(Image().Find("new"), nullptr);
    EXPECT_EQ(ReadFrom(number(1), 99), Pattern("a", 10));
    for (const int slot : {65535, 5, 3, 3}) EXPECT_EQ(vlt_file_close(number(slot)), 1);
    for (const int slot : {3, 5, 65535}) EXPECT_EQ(OpenFor("a", VLT_MODE_READ), number(slot));
    EXPECT_EQ(Delete(package, "a"), 0);
    const std::int32_t share = Open();
    EXPECT_EQ(vlt_package_close(package), 1);
    EXPECT_EQ(Delete(share, "a"), 1) << "closing the handle closed its files";
}

TEST_P(StoredFile, TakesAnyPositionBeyondItsEndForTheEnd) {
    Write("a", 5000);
    const std::uint32_t file = OpenFor("a", VLT_MODE_READ);
    for (const std::int64_t asked : {std::int64_t{-1}, INT64_MIN, std::int64_t{5001}, INT64_MAX}) {
        EXPECT_EQ(vlt_file_set_pos(file, asked), 1);
        EXPECT_EQ(PositionOf(file), 5000) << asked;
        EXPECT_EQ(vlt_file_set_pos_bof(file), 1);
        EXPECT_EQ(PositionOf(file), 0);
    }
    EXPECT_EQ(vlt_file_set_pos_eof(file), 1);
    EXPECT_EQ(PositionOf(file), 5000);
}

/// The header gets a block more when the map has no word left, and not a block before.
TEST_F(OneWidth, AWriteOverTheEndOfAFileGrowsThePackageByWhatItNeeds) {
    Create(3);
    Write("a", 995 * 4096);  // with the header and directory, all but one of the blocks that have a word
    const std::uint32_t file = OpenFor("a", VLT_MODE_WRITE);
    for (const auto& [blocks, header] : {std::pair(998, std::vector{0}), std::pair(1000, std::vector{0, 998})}) {
        EXPECT_EQ(vlt_file_set_pos(file, Info("a").size - 10), 1);
        EXPECT_TRUE(WriteTo(file, Pattern("over the end", 4096 + 10)));
        EXPECT_EQ(Image().block_count, blocks);
        EXPECT_EQ(Image().header_chain, header);
    }
}

}  // namespace

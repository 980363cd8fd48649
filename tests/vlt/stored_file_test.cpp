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
            EXPECT_EQ(1, GetInfo(package, same, &info)) << given;
            EXPECT_EQ(0, GetInfo(package, other, &info)) << given;
        }
    }
    EXPECT_EQ(as_made, List());
}

TEST_F(OneWidth, WideNamesKeepAllSixteenBits) {
    Create(0, Names::wide);
    const vlt_wchar made[] = {0x4E2D, 'A', 0x0130, 0xD83D, 0xDE00, 0};
    EXPECT_GT(vltw_file_open(package, made, VLT_MODE_WRITE, 0, 0, nullptr), 0);
    const auto found = [&](const WideName& name) {
        return vltw_file_get_info(package, name.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr);
    };
    EXPECT_EQ(1, found({0x4E2D, 'a', 0x0130, 0xD83D, 0xDE00}));
    EXPECT_EQ(0, found({0x4E2D, 'a', 0x0131, 0xD83D, 0xDE00}));
    EXPECT_EQ(0, found({0x2D, 'A', 0x30, 0x3D}));
    WideName name(VLT_NAME_MAX + 1, 'x');
    EXPECT_EQ(1, vltw_package_enum(package, 0, name.data(), nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(WideName(made), name.c_str());
}

TEST_F(OneWidth, AHandleHas65535SlotsForOpenFiles) {
    Create();
    Write("a", 10);
    const auto number = [&](int slot) { return static_cast<std::uint32_t>(package << 16 | slot); };
    for (int slot = 1; slot <= 65535; ++slot) ASSERT_EQ(number(slot), OpenFor("a", VLT_MODE_READ));
    EXPECT_EQ(VLT_FILE_NO_SLOT, OpenError(package, "a", VLT_MODE_READ));
    EXPECT_EQ(VLT_FILE_NO_SLOT, OpenError(package, "new", VLT_MODE_WRITE));
    EXPECT_EQ(nullptr, Image().Find("new"));
    EXPECT_EQ(Pattern("a", 10), ReadFrom(number(1), 99));
    for (const int slot : {65535, 5, 3, 3}) EXPECT_EQ(1, vlt_file_close(number(slot)));
    for (const int slot : {3, 5, 65535}) EXPECT_EQ(number(slot), OpenFor("a", VLT_MODE_READ));
    EXPECT_EQ(0, Delete(package, "a"));
    const std::int32_t share = Open();
    EXPECT_EQ(1, vlt_package_close(package));
    EXPECT_EQ(1, Delete(share, "a")) << "closing the handle closed its files";
}

TEST_P(StoredFile, TakesAnyPositionBeyondItsEndForTheEnd) {
    Write("a", 5000);
    const std::uint32_t file = OpenFor("a", VLT_MODE_READ);
    for (const std::int64_t asked : {std::int64_t{-1}, INT64_MIN, std::int64_t{5001}, INT64_MAX}) {
        EXPECT_EQ(1, vlt_file_set_pos(file, asked));
        EXPECT_EQ(5000, PositionOf(file)) << asked;
        EXPECT_EQ(1, vlt_file_set_pos_bof(file));
        EXPECT_EQ(0, PositionOf(file));
    }
    EXPECT_EQ(1, vlt_file_set_pos_eof(file));
    EXPECT_EQ(5000, PositionOf(file));
}

/// The header gets a block more when the map has no word left, and not a block before.
TEST_F(OneWidth, AWriteOverTheEndOfAFileGrowsThePackageByWhatItNeeds) {
    Create(3);
    Write("a", 995 * 4096);  // with the header and directory, all but one of the blocks that have a word
    const std::uint32_t file = OpenFor("a", VLT_MODE_WRITE);
    for (const auto& [blocks, header] : {std::pair(998, std::vector{0}), std::pair(1000, std::vector{0, 998})}) {
        EXPECT_EQ(1, vlt_file_set_pos(file, Info("a").size - 10));
        EXPECT_TRUE(WriteTo(file, Pattern("over the end", 4096 + 10)));
        EXPECT_EQ(blocks, Image().block_count);
        EXPECT_EQ(header, Image().header_chain);
    }
}

}  // namespace

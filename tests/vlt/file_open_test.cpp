// SPDX-License-Identifier: MIT
// Opening and closing stored files: names, modes, sharing, slots.
#include "tests/support/store_fixture.h"

namespace {

class FileOpening : public BothNames {
protected:
    void SetUp() override { Create(0, GetParam()); }
};
INSTANTIATE_BOTH_NAMES(FileOpening);

TEST_P(FileOpening, MakesAMissingFileUnlessItIsToBeRead) {
    EXPECT_EQ(VLT_FILE_NOT_FOUND, OpenError(package, "a", VLT_MODE_READ));
    EXPECT_EQ(0, Image().UsedBlocks() - 2);
    EXPECT_EQ(nullptr, Image().Find("a"));
    const double before = StampNow();
    EXPECT_EQ(VLT_FILE_OK, OpenError(package, "a", VLT_MODE_WRITE));
    EXPECT_EQ(VLT_FILE_OK, OpenError(package, "b", VLT_MODE_APPEND));
    const double after = StampNow();
    for (const char* name : {"a", "b"}) {
        const FileInfo info = Info(name);
        EXPECT_EQ(VLT_ENTRY_FILE, static_cast<int>(info.kind));
        EXPECT_EQ(0, info.size);
        EXPECT_TRUE(before <= info.created && info.created <= after);
        EXPECT_TRUE(info.created == info.accessed && info.created == info.written);
    }
}

TEST_P(FileOpening, ChecksTheRequestInOrder) {
    Write("a", 10);
    const std::int32_t read_only = Open({.read_only = 1});
    EXPECT_EQ(VLT_FILE_REQUEST, OpenError(package, "a", 3));
    EXPECT_EQ(VLT_FILE_REQUEST, OpenError(-1, "a", VLT_MODE_READ, {.truncate = true}));
    EXPECT_EQ(VLT_FILE_REQUEST, OpenError(package, "a", VLT_MODE_APPEND, {.truncate = true}));
    EXPECT_EQ(VLT_FILE_ACCESS, OpenError(read_only, "a", VLT_MODE_WRITE));
    EXPECT_EQ(VLT_FILE_ACCESS, OpenError(read_only, "new", VLT_MODE_APPEND));
    EXPECT_EQ(VLT_FILE_OK, OpenError(read_only, "a", VLT_MODE_READ));
    EXPECT_TRUE(Intact("a", 10));
}

struct Share {
    std::uint32_t mode;
    OpenHow how;
};

TEST_P(FileOpening, SharesAsEveryPairOfOpensDemands) {
    const Share opens[] = {{VLT_MODE_READ, {}},
                           {VLT_MODE_WRITE, {}},
                           {VLT_MODE_APPEND, {}},
                           {VLT_MODE_READ, {.exclusive = true}},
                           {VLT_MODE_WRITE, {.exclusive = true}}};
    const bool allowed[5][5] = {{true, true, true, false, false},
                                {true, false, false, false, false},
                                {true, false, false, false, false},
                                {false, false, false, false, false},
                                {false, false, false, false, false}};
    Write("a", 10);
    const std::int32_t share = Open(), other_share = Open();
    for (const std::int32_t first_through : {package, share})
        for (const std::int32_t second_through : {package, share, other_share})
            for (int first = 0; first < 5; ++first)
                for (int second = 0; second < 5; ++second) {
                    const std::uint32_t held = OpenFile(first_through, "a", opens[first].mode, opens[first].how);
                    ASSERT_NE(0u, held);
                    EXPECT_EQ(allowed[first][second] ? VLT_FILE_OK : VLT_FILE_ACCESS,
                              OpenError(second_through, "A", opens[second].mode, opens[second].how))
                        << first << " then " << second;
                    EXPECT_EQ(0, Delete(second_through, "a"));
                    vlt_file_close(held);
                }
}

TEST_P(FileOpening, TruncationEmptiesTheFileAndKeepsItsEntry) {
    Write("a", 10000);
    EXPECT_EQ(1, SetTime(package, "a", 5, 6, 7));
    const std::uint32_t reader = OpenFor("a", VLT_MODE_READ);
    vlt_file_set_pos_eof(reader);
    const std::uint32_t writer = OpenFor("a", VLT_MODE_WRITE, {.truncate = true});
    const FileInfo info = Info("a");
    EXPECT_EQ(0, info.size);
    EXPECT_EQ(5, info.created);
    EXPECT_TRUE(info.accessed == info.written && info.written > 7);
    EXPECT_EQ(0u, Image().Find("a")->first_block);
    EXPECT_EQ(2, Image().UsedBlocks());
    EXPECT_EQ(10000, PositionOf(reader));  // beyond the end now
    EXPECT_EQ(1, vlt_file_is_eof(reader));
    EXPECT_EQ(Bytes{}, ReadFrom(reader, 10));
    EXPECT_TRUE(WriteTo(writer, Pattern("new", 12000)));
    EXPECT_EQ(Pattern("new", 12000)[10000], ReadFrom(reader, 1)[0]);
}

TEST_P(FileOpening, SlotsKeepTheirNumbersAndAreReused) {
    Write("a", 10);
    const auto number = [&](int slot) { return static_cast<std::uint32_t>(package << 16 | slot); };
    for (int slot = 1; slot <= 129; ++slot) ASSERT_EQ(number(slot), OpenFor("a", VLT_MODE_READ));
    EXPECT_EQ(Pattern("a", 10), ReadFrom(number(1), 10));
    EXPECT_EQ(1, vlt_file_close(number(5)));
    EXPECT_EQ(1, vlt_file_close(number(3)));
    EXPECT_EQ(1, vlt_file_close(number(3))) << "a slot inside the table";
    EXPECT_EQ(number(3), OpenFor("a", VLT_MODE_READ));
    EXPECT_EQ(number(5), OpenFor("a", VLT_MODE_READ));
    EXPECT_EQ(number(130), OpenFor("a", VLT_MODE_READ));
    EXPECT_EQ(0, vlt_file_close(number(0)));
    EXPECT_EQ(0, vlt_file_close(number(257)));
    EXPECT_EQ(0, Delete(package, "a"));
    const std::int32_t share = Open();
    EXPECT_EQ(1, vlt_package_close(package));
    EXPECT_EQ(1, Delete(share, "a")) << "closing the handle closed its files";
}

class Slots : public StoreTest {};

TEST_F(Slots, AHandleHasRoomFor65535OpenFiles) {
    Create();
    Write("a", 10);
    std::uint32_t last = 0, error = 99;
    for (int slot = 1; slot <= 65535; ++slot) last = OpenFor("a", VLT_MODE_READ);
    EXPECT_EQ(0x1FFFFu, last);
    EXPECT_EQ(0, vlt_file_open(package, "a", VLT_MODE_READ, 0, 0, &error));
    EXPECT_EQ(VLT_FILE_NO_SLOT, static_cast<int>(error));
    EXPECT_EQ(0, vlt_file_open(package, "new", VLT_MODE_WRITE, 0, 0, nullptr));
    EXPECT_EQ(nullptr, Image().Find("new"));
    EXPECT_EQ(Pattern("a", 10), ReadFrom(last, 99));
    EXPECT_EQ(1, vlt_file_close(last));
    EXPECT_EQ(last, OpenFor("a", VLT_MODE_READ));
}

struct Name {
    const char* given;
    const char* found_as;
    const char* not_as;
};

class StoredNames : public StoreTest {};

TEST_F(StoredNames, FoldOnlyTheLettersAToZ) {
    const Name names[] = {{"Report.TXT", "rEPORT.txt", "Report.TXT "},
                          {"", "", " "},
                          {" a/b\\c:*?", " A/B\\C:*?", "a/b\\c:*?"},
                          {"@[`{", "@[`{", "`{@["},
                          {"\xC4\xE4\x81\x40", "\xC4\xE4\x81\x40", "\xE4\xC4\x81\x40"},
                          {"[z]", "[Z]", "{z}"}};
    Create();
    for (const Name& name : names) {
        Write(name.given, 10);
        FileInfo info;
        EXPECT_EQ(1, GetInfo(package, name.found_as, &info)) << name.given;
        EXPECT_EQ(0, GetInfo(package, name.not_as, &info)) << name.given;
        Reopen();
        EXPECT_EQ(VLT_FILE_OK, OpenError(package, name.found_as, VLT_MODE_READ)) << name.given;
    }
    std::int32_t cursor = 0;
    for (const Name& name : names) {
        FileInfo info;
        cursor = Enumerate(package, cursor, &info);
        EXPECT_EQ(name.given, info.name) << "with the letters that it was made with";
    }
}

TEST_F(StoredNames, WideOnesKeepAllSixteenBits) {
    Create(0, Names::wide);
    const vlt_wchar made[] = {0x4E2D, 'A', 0x0130, 0xD83D, 0xDE00, 0},
                    same[] = {0x4E2D, 'a', 0x0130, 0xD83D, 0xDE00, 0},
                    other[] = {0x4E2D, 'a', 0x0131, 0xD83D, 0xDE00, 0}, low_bytes[] = {0x2D, 'A', 0x30, 0x3D, 0};
    EXPECT_GT(vltw_file_open(package, made, VLT_MODE_WRITE, 0, 0, nullptr), 0);
    EXPECT_EQ(1, vltw_file_get_info(package, same, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(0, vltw_file_get_info(package, other, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(0, vltw_file_get_info(package, low_bytes, nullptr, nullptr, nullptr, nullptr, nullptr));
    vlt_wchar name[VLT_NAME_MAX + 1];
    EXPECT_EQ(1, vltw_package_enum(package, 0, name, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(WideName(made), WideName(name));
}

TEST_P(FileOpening, TheLongestNameFitsAndALongerOneIsRefused) {
    const std::string longest(VLT_NAME_MAX, 'n'), longer = longest + "n";
    Write(longest, 10);
    EXPECT_EQ(VLT_FILE_NOT_FOUND, OpenError(package, longer, VLT_MODE_WRITE));
    EXPECT_EQ(VLT_FILE_NOT_FOUND, OpenError(package, longer, VLT_MODE_READ));
    EXPECT_EQ(0, Delete(package, longer));
    EXPECT_EQ(0, SetTime(package, longer, 1, 1, 1));
    Reopen();
    EXPECT_TRUE(Intact(longest, 10));
    FileInfo info;
    EXPECT_EQ(0, GetInfo(package, longer, &info));
    EXPECT_EQ(1, Enumerate(package, 0, &info));
    EXPECT_EQ(longest, info.name);
}

}  // namespace

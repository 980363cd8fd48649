// SPDX-License-Identifier: MIT
// Reading, writing and positions of open files.
#include "tests/support/store_fixture.h"

namespace {

class FileIo : public StoreTest {
protected:
    void SetUp() override { Create(); }
};

TEST_F(FileIo, PositionsBeyondTheFileMeanItsEnd) {
    Write("a", 5000);
    const std::uint32_t file = OpenFor("a", VLT_MODE_READ);
    const std::pair<std::int64_t, std::int64_t> moves[] = {
        {-1, 5000}, {0, 0}, {1, 1}, {INT64_MIN, 5000}, {4999, 4999}, {5000, 5000}, {5001, 5000}, {INT64_MAX, 5000}};
    for (const auto& [asked, reached] : moves) {
        EXPECT_EQ(1, vlt_file_set_pos(file, asked));
        EXPECT_EQ(reached, PositionOf(file)) << asked;
        EXPECT_EQ(reached == 5000, vlt_file_is_eof(file));
    }
    EXPECT_EQ(1, vlt_file_set_pos_bof(file));
    EXPECT_EQ(0, PositionOf(file));
    EXPECT_EQ(1, vlt_file_set_pos_eof(file));
    EXPECT_EQ(5000, PositionOf(file));
}

TEST_F(FileIo, AppendingIsRefusedBelowWhereTheFileEnded) {
    Write("a", 5000);
    const std::uint32_t file = OpenFor("a", VLT_MODE_APPEND);
    EXPECT_EQ(5000, PositionOf(file));
    EXPECT_TRUE(WriteTo(file, {1, 2, 3}));
    vlt_file_set_pos(file, 4999);
    EXPECT_FALSE(WriteTo(file, {9}));
    EXPECT_EQ(1u, ReadFrom(file, 1).size());
    EXPECT_TRUE(WriteTo(file, {4})) << "at the end that the file had when it was opened";
    vlt_file_set_pos_bof(file);
    EXPECT_FALSE(WriteTo(file, {9}));
    EXPECT_EQ(0, PositionOf(file));
    vlt_file_set_pos_eof(file);
    EXPECT_TRUE(WriteTo(file, {5}));
    Bytes wanted = Pattern("a", 5000);
    for (const std::uint8_t byte : Bytes{4, 2, 3, 5}) wanted.push_back(byte);
    EXPECT_EQ(wanted, Read("a"));
}

TEST_F(FileIo, AReaderSeesWhatAWriterAddsThroughAnotherHandle) {
    const std::uint32_t writer = OpenFile(Open(), "a", VLT_MODE_WRITE);
    const std::uint32_t reader = OpenFor("a", VLT_MODE_READ);
    EXPECT_EQ(Bytes{}, ReadFrom(reader, 10));
    Bytes all;
    for (int i = 0; i < 20; ++i) {
        const Bytes piece = Pattern(std::to_string(i), 3000);
        EXPECT_TRUE(WriteTo(writer, piece));
        EXPECT_EQ(piece, ReadFrom(reader, 9999));
        EXPECT_FALSE(WriteTo(reader, piece));
    }
}

TEST_F(FileIo, NothingToWriteSucceedsAndNothingToReadReadsNothing) {
    Write("a", 10);
    std::uint8_t byte = 7;
    for (const std::uint32_t file : {0u, 0xFFFFFFFFu, OpenFor("a", VLT_MODE_READ)}) {
        EXPECT_EQ(1, vlt_file_write(file, nullptr, 5));
        EXPECT_EQ(1, vlt_file_write(file, &byte, 0));
        EXPECT_EQ(1, vlt_file_write(file, &byte, -5));
        EXPECT_EQ(0, vlt_file_read(file, nullptr, 5));
        EXPECT_EQ(0, vlt_file_read(file, &byte, 0));
        EXPECT_EQ(0, vlt_file_read(file, &byte, INT32_MIN));
    }
    EXPECT_TRUE(Intact("a", 10));
    EXPECT_EQ(7, byte);
}

TEST_F(FileIo, ReadingStampsAccessAndWritingBoth) {
    Write("a", 10);
    EXPECT_EQ(1, SetTime(package, "a", 1, 2, 3));
    Read("a");
    FileInfo info = Info("a");
    EXPECT_EQ(1, info.created);
    EXPECT_LT(2, info.accessed);
    EXPECT_EQ(3, info.written);
    EXPECT_EQ(info.accessed, Image().entries[0].accessed);
    EXPECT_EQ(1, SetTime(package, "a", 1, 2, 3));
    const std::uint32_t file = OpenFor("a", VLT_MODE_WRITE);
    vlt_file_set_pos_eof(file);
    EXPECT_EQ(1, vlt_file_is_eof(file));
    EXPECT_EQ(2, Info("a").accessed) << "positions stamp nothing";
    EXPECT_TRUE(WriteTo(file, {1}));
    info = Info("a");
    EXPECT_EQ(1, info.created);
    EXPECT_TRUE(info.accessed == info.written && info.written > 3);
}

TEST_F(FileIo, AReadOnlyBaseKeepsTheStampOfReadingInMemory) {
    Write("a", 10);
    EXPECT_EQ(1, SetTime(package, "a", 1, 2, 3));
    vlt_package_close_all();
    const Bytes host = ReadHostFile(path);
    package = Open({.read_only = 1});
    EXPECT_TRUE(Intact("a", 10));
    EXPECT_LT(2, Info("a").accessed);
    EXPECT_EQ(host, ReadHostFile(path));
    const std::int32_t share = Open();
    EXPECT_EQ(VLT_FILE_OK, OpenError(share, "a", VLT_MODE_WRITE));
    EXPECT_EQ(host, ReadHostFile(path));
    EXPECT_EQ(1, vlt_package_close(package));
    package = share;  // now the base, and it may write
    EXPECT_TRUE(Intact("a", 10));
    EXPECT_LT(2, Image().entries[0].accessed);
}

TEST_F(FileIo, AClosedSlotAnswersAsFarAsItNeedsNoFile) {
    Write("a", 10);
    const std::uint32_t file = OpenFor("a", VLT_MODE_READ);
    ReadFrom(file, 5);
    vlt_file_close(file);
    EXPECT_EQ(1, vlt_file_is_bof(file));
    EXPECT_EQ(0, PositionOf(file));
    EXPECT_EQ(1, vlt_file_set_pos_bof(file));
    EXPECT_EQ(0, vlt_file_set_pos(file, 1));
    EXPECT_EQ(0, vlt_file_set_pos_eof(file));
    EXPECT_EQ(-1, vlt_file_is_eof(file));
    EXPECT_EQ(Bytes{}, ReadFrom(file, 5));
    EXPECT_FALSE(WriteTo(file, {1}));
}

}  // namespace

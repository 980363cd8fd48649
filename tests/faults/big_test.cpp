// SPDX-License-Identifier: MIT
// Sizes that do not fit 32 bits, in host files that are mostly holes.
#include <gtest/gtest.h>

#include <cstdio>

#include "platform/host_file.h"
#include "tests/support/store_calls.h"

using namespace vlt;

namespace {

constexpr std::int64_t kGiB = std::int64_t{1} << 30;
constexpr std::uint32_t kUsed = 0x80000000, kMostBlocks = 0x0FFFFFFF;

/// A package of many blocks with one stored file, made block by block where it is not zero.
class Big : public testing::Test {
protected:
    Big() {
        WriteHostFile(path_, {0});
        fd_ = host_open(path_, true);
    }
    ~Big() override {
        vlt_package_close_all();
        if (fd_ >= 0) host_close(fd_);
        std::remove(path_);
    }

    void Put(std::int64_t offset, const Bytes& bytes) {
        ASSERT_TRUE(host_write(fd_, base_ + offset, bytes.data(), bytes.size())) << "no room for sparse files";
    }
    /// Magic, and the words of the blocks from `first` on in a header chain of blocks 0, 2, 3, ...
    void PutWords(std::uint32_t first, const std::vector<std::uint32_t>& words) {
        Bytes bytes(words.size() * 4);
        for (std::size_t i = 0; i < words.size(); ++i) StoreAt(bytes, 4 * i, words[i]);
        for (std::size_t i = 0, piece; i < bytes.size(); i += piece) {
            const std::int64_t run = 101 + 4 * std::int64_t{first} + static_cast<std::int64_t>(i);
            piece = std::min(bytes.size() - i, static_cast<std::size_t>(4096 - run % 4096));
            const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(i);
            Put(run + (run >= 4096 ? 4096 : 0), Bytes(at, at + static_cast<std::ptrdiff_t>(piece)));
        }
    }
    /// The header chain and the directory of a package of that many blocks, and its host file's length.
    void PutFrame(std::uint32_t blocks) {
        Bytes start = {'v', 'l', 't', 0, 1};
        start.resize(37, 0xFF);
        Put(0, start);
        Put(std::int64_t{blocks} * 4096 - 1, {0});
        const std::uint32_t header_blocks = HeaderBlocks(blocks);
        std::vector<std::uint32_t> words = {kUsed | 3, kUsed};
        for (std::uint32_t block = 2; block < header_blocks; ++block) words.push_back(kUsed | (block + 2));
        words.push_back(kUsed);
        PutWords(0, words);
    }
    static std::uint32_t HeaderBlocks(std::uint32_t blocks) {
        return static_cast<std::uint32_t>((101 + 4 * std::uint64_t{blocks} + 4095) / 4096);
    }
    void PutFile(std::uint32_t first_block, std::int64_t size) {
        Bytes entry(550);
        entry[0] = 1;
        StoreAt(entry, 1, first_block);
        StoreAt(entry, 5, static_cast<std::uint64_t>(size));
        entry[37] = 'f';
        Put(4096, entry);
    }
    std::int32_t Open() {
        return vlt_package_open_ex(path_, 0, static_cast<std::uint32_t>(base_),
                                   static_cast<std::int32_t>(base_ >> 32), 0, 0, nullptr, nullptr, nullptr, &error_);
    }
    /// Writes at a position of the file and reads it back, also past the library at an offset of the package.
    void WriteAndRead(std::uint32_t file, std::int64_t position, const Bytes& bytes, std::int64_t host_offset) {
        EXPECT_EQ(vlt_file_set_pos(file, position), 1);
        EXPECT_TRUE(WriteTo(file, bytes));
        EXPECT_EQ(PositionOf(file), position + static_cast<std::int64_t>(bytes.size()));
        vlt_file_set_pos(file, position);
        EXPECT_EQ(ReadFrom(file, static_cast<std::int32_t>(bytes.size())), bytes);
        Bytes stored(bytes.size());
        EXPECT_TRUE(host_read(fd_, base_ + host_offset, stored.data(), stored.size()));
        EXPECT_EQ(stored, bytes);
    }

    const char* path_ = "big.pkg";
    int fd_;
    std::int64_t base_ = 0;
    std::int32_t error_ = 0;
};

TEST_F(Big, PackageBehindFourGibibytes) {
    base_ = 5 * kGiB + 123;
    PutFrame(2000);
    const std::int32_t package = Open();
    const std::uint32_t file = OpenFile(package, "new", VLT_MODE_WRITE);
    WriteAndRead(file, 0, Pattern("behind", 50000), 3 * 4096);
    vlt_package_close_all();
    FileInfo info;
    EXPECT_EQ(GetInfo(Open(), "new", &info), 1);
}

TEST_F(Big, FileOverFourGibibytes) {
    const std::uint32_t file_blocks = 5 * kGiB / 4096, header_blocks = HeaderBlocks(file_blocks + 2000);
    const std::uint32_t first = header_blocks + 1;
    PutFrame(file_blocks + 2000);
    std::vector<std::uint32_t> words;
    for (std::uint32_t i = 1; i < file_blocks; ++i) words.push_back(kUsed | (first + i + 1));
    words.push_back(kUsed);
    PutWords(first, words);
    PutFile(first + 1, 5 * kGiB);

    const std::int32_t package = Open();
    ASSERT_NE(package, 0) << error_;
    const std::uint32_t file = OpenFile(package, "f", VLT_MODE_WRITE);
    WriteAndRead(file, 4 * kGiB + 4090, Pattern("middle", 10000), std::int64_t{first} * 4096 + 4 * kGiB + 4090);
    WriteAndRead(file, 5 * kGiB, Pattern("end", 10000), std::int64_t{first} * 4096 + 5 * kGiB);
    FileInfo info;
    EXPECT_EQ(GetInfo(package, "f", &info), 1);
    EXPECT_EQ(info.size, 5 * kGiB + 10000);
    vlt_file_close(file);
    const std::uint32_t append = OpenFile(package, "f", VLT_MODE_APPEND);
    EXPECT_EQ(PositionOf(append), 5 * kGiB + 10000);
    vlt_file_close(append);
    EXPECT_EQ(Delete(package, "f"), 1);
}

/// A tebibyte less a block; the header alone takes a gibibyte, and 32 bits have room for an eighth of it.
TEST_F(Big, PackageOfTheMostBlocks) {
    const std::uint32_t blocks = sizeof(void*) > 4 ? kMostBlocks : kMostBlocks / 8;
    PutFrame(blocks);
    PutWords(blocks - 2, {kUsed | blocks, kUsed});
    PutFile(blocks - 1, 5000);
    const std::int32_t package = Open();
    ASSERT_NE(package, 0) << error_;
    const std::uint32_t file = OpenFile(package, "f", VLT_MODE_WRITE);
    WriteAndRead(file, 4000, Pattern("last", 4192), std::int64_t{blocks - 2} * 4096 + 4000);
    WriteAndRead(file, 8192, Pattern("first free", 10), std::int64_t{HeaderBlocks(blocks) + 1} * 4096);
}

/// At the most blocks a full package does not grow. Its map is cut short here, which makes it full at once.
TEST_F(Big, GrowthStopsAtTheMostBlocks) {
    PutFrame(kMostBlocks);
    std::vector<std::uint32_t> words(998, kUsed);
    PutWords(0, words);
    const std::int32_t package = Open();
    if (package == 0 && sizeof(void*) == 4) return;  // there is no room for a header of full length
    ASSERT_NE(package, 0) << error_;
    EXPECT_EQ(WriteTo(OpenFile(package, "new", VLT_MODE_WRITE), {1}), false);
    std::int64_t length = 0;
    EXPECT_TRUE(host_size(fd_, &length));
    EXPECT_EQ(length, std::int64_t{kMostBlocks} * 4096);
}

}  // namespace

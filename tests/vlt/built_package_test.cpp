// SPDX-License-Identifier: MIT
// A package made byte by byte, as another target or another maker may have left it: everything lies where this
// library would not have put it. It is the same on every system that runs this test.
#include "tests/support/store_fixture.h"

namespace {

constexpr std::uint32_t kUsed = 0x80000000;

/// A package of 1000 blocks behind 100 other bytes. The header lies in blocks 0 and 700, the directory in 1 and 5.
class BuiltPackage : public BothNames {
protected:
    void SetUp() override {
        base = 100;
        host_ = Pattern("before the package", base);
        host_.resize(base + 1000 * 4096 + 33);  // and a part of a block behind it
        const Bytes magic = GetParam() == Names::wide ? Bytes{'w', 'v', 'l', 't', 1} : Bytes{'v', 'l', 't', 'x', 0};
        PutBytes(0, 0, magic);
        PutBytes(0, 5, EncodedCredential("reader"));
        PutBytes(0, 21, EncodedCredential(""));
        PutBytes(0, 37, Pattern("reserved bytes mean nothing", 64));
        PutChain({0, 700});
        PutChain({1, 5});
        PutFile(0, 1, "One", {900, 10, 11}, Pattern("One", 9000));
        PutFile(1, 0, "deleted", {}, {});
        PutFile(2, 1, "two", {3, 4}, Pattern("two", 3));  // one block more than it needs
        PutFile(4, 1, "three", {}, {});
        PutFile(5, 2, "other", {998}, Pattern("other", 4096));
        PutFile(6, 1, "late", {12}, Pattern("late", 7));
        WriteHostFile(path, host_);
        package = Open({.offset = 100});
        ASSERT_GT(package, 0);
        leniency.longer_chains = true;
    }

    void PutByte(int block, std::size_t at, std::uint8_t byte) {
        host_[base + static_cast<std::size_t>(block) * 4096 + at] = byte;
    }
    void PutBytes(int block, std::size_t at, const Bytes& bytes) {
        for (std::size_t i = 0; i < bytes.size(); ++i) PutByte(block, at + i, bytes[i]);
    }
    /// Bytes of a run that continues from one block in another one.
    void PutRun(int first, int second, std::size_t at, std::uint64_t value, int size) {
        for (int i = 0; i < size; ++i, ++at)
            PutByte(at < 4096 ? first : second, at % 4096, static_cast<std::uint8_t>(value >> (8 * i)));
    }
    void PutChain(const std::vector<int>& blocks) {
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            const int next = i + 1 < blocks.size() ? blocks[i + 1] + 1 : 0;
            PutRun(0, 700, 101 + 4 * static_cast<std::size_t>(blocks[i]), kUsed | static_cast<std::uint32_t>(next),
                   4);
        }
    }
    void PutFile(std::size_t index, unsigned kind, const std::string& name, const std::vector<int>& blocks,
                 const Bytes& data) {
        const bool wide = GetParam() == Names::wide;
        const std::size_t at = index * (wide ? 1063 : 550);
        PutRun(1, 5, at, kind, 1);
        PutRun(1, 5, at + 1, blocks.empty() ? 0 : static_cast<std::uint64_t>(blocks[0] + 1), 4);
        PutRun(1, 5, at + 5, data.size(), 8);
        for (const std::size_t stamp : {13U, 21U, 29U}) PutRun(1, 5, at + stamp, 0x41731F1912405815, 8);
        for (std::size_t i = 0; i < name.size(); ++i)
            PutRun(1, 5, at + 37 + i * (wide ? 2 : 1), static_cast<unsigned char>(name[i]), 1);
        PutChain(blocks);
        for (std::size_t i = 0; i < data.size(); ++i) PutByte(blocks[i / 4096], i % 4096, data[i]);
    }

    Bytes host_;
};
INSTANTIATE_BOTH_NAMES(BuiltPackage);

TEST_P(BuiltPackage, IsReadAsItStands) {
    EXPECT_EQ("", Faults(Image(), leniency));
    EXPECT_EQ(GetParam() == Names::wide, vlt_package_is_unicode_files(package));
    std::vector<std::string> names;
    FileInfo info;
    for (std::int32_t cursor = 0; (cursor = Enumerate(package, cursor, &info)) != 0;) names.push_back(info.name);
    EXPECT_EQ((std::vector<std::string>{"One", "two", "three", "other", "late"}), names);
    EXPECT_EQ(20050321.140709, info.created);
    EXPECT_EQ(2u, Info("other").kind);
    EXPECT_EQ(Pattern("One", 9000), Read("one"));
    EXPECT_TRUE(Intact("two", 3) && Intact("three", 0) && Intact("late", 7));
}

TEST_P(BuiltPackage, IsContinuedWhereItEnds) {
    Append("one", Pattern("more", 4000));
    EXPECT_EQ((std::vector<int>{900, 10, 11, 2}), ChainOf("One"));
    Append("two", Pattern("more", 5000));  // takes a block as if it had none to spare
    EXPECT_EQ((std::vector<int>{3, 4, 6}), ChainOf("two"));
    EXPECT_EQ(1, Delete(package, "LATE"));
    Write("new", 100);
    EXPECT_EQ(1, Image().Find("new")->index);
    Reopen();
    Bytes one = Pattern("One", 9000);
    const Bytes more = Pattern("more", 4000);
    one.insert(one.end(), more.begin(), more.end());
    EXPECT_EQ(one, Read("one"));
    const Bytes after = ReadHostFile(path);
    EXPECT_TRUE(std::equal(host_.begin(), host_.begin() + 100 + 101, after.begin())) << "up to the map";
    EXPECT_EQ(host_.size(), after.size());
}

TEST_P(BuiltPackage, MayHaveTheFewestBlocksThatNeedASecondHeaderBlock) {
    vlt_package_close_all();
    host_.resize(base + 999 * 4096);
    WriteHostFile(path, host_);
    Reopen();
    EXPECT_EQ("", Faults(Image(), leniency));
    EXPECT_TRUE(Intact("late", 7));
    Write("all the rest", 988 * 4096);
    EXPECT_EQ(999, Image().block_count);
    Write("one more", 1);
    EXPECT_EQ(1000, Image().block_count);
    EXPECT_EQ(std::vector{999}, ChainOf("one more"));
}

TEST_P(BuiltPackage, GrowsOverWhatFollowsItsLastBlock) {
    Write("big", 1000 * 4096);
    const PackageImage image = Image();
    EXPECT_EQ(0u, (image.host.size() - base) % 4096);
    EXPECT_EQ(std::vector({0, 700}), image.header_chain);
    Reopen();
    EXPECT_TRUE(Intact("big", 1000 * 4096) && Intact("late", 7));
}

}  // namespace

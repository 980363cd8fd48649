// SPDX-License-Identifier: MIT
// A package made byte by byte, as another target or another maker may have left it: everything lies where this
// library would not have put it. It is the same on every system that runs this test.
#include <cstring>

#include "tests/support/store_fixture.h"

namespace {

using NameList = std::vector<std::string>;

/// A package behind 100 other bytes, of the fewest blocks that need a second header block. The header lies in blocks
/// 0 and 700, the directory in 1 and 5.
class BuiltPackage : public BothNames {
protected:
    void SetUp() override {
        base = 100;
        host_ = Pattern("before the package", base);
        host_.resize(base + 999 * 4096 + 33, 'x');  // and a part of a block behind it
        header_ = GetParam() == Names::wide ? Bytes{'w', 'v', 'l', 't', 1} : Bytes{'v', 'l', 't', 'x', 0};
        for (const Bytes& field : {EncodedCredential("reader"), EncodedCredential(""),
                                   Pattern("reserved bytes mean nothing", 64), Bytes(8192 - 101)})
            header_.insert(header_.end(), field.begin(), field.end());
        directory_.resize(8192);
        PutFile(0, 1, "One", {900, 10, 11}, Pattern("One", 9000));
        PutFile(1, 2, "other", {998}, Pattern("other", 4096));
        PutFile(2, 1, "two", {3, 4}, Pattern("two", 3));  // one block more than it needs
        PutFile(3, 3, "deleted", {}, {});                 // whatever is not 1 or 2 is free
        PutFile(4, 1, "three", {}, {});
        PutFile(6, 1, "late", {12}, Pattern("late", 7));
        PutChain({1, 5});
        PutChain({0, 700});
        PutBytes({1, 5}, directory_);
        PutBytes({0, 700}, header_);
        WriteHostFile(path, host_);
        Reopen();
        leniency.longer_chains = true;
    }

    void PutBytes(const std::vector<std::size_t>& blocks, const Bytes& bytes) {
        for (std::size_t at = 0; at < bytes.size(); at += 4096)
            std::memcpy(&host_[base + blocks[at / 4096] * 4096], &bytes[at],
                        std::min<std::size_t>(4096, bytes.size() - at));
    }
    void PutChain(const std::vector<std::size_t>& blocks) {
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            const std::size_t next = i + 1 < blocks.size() ? blocks[i + 1] + 1 : 0;
            StoreAt(header_, 101 + 4 * blocks[i], static_cast<std::uint32_t>(0x80000000 | next));
        }
    }
    void PutFile(std::size_t index, std::uint8_t kind, const std::string& name,
                 const std::vector<std::size_t>& blocks, const Bytes& data) {
        const bool wide = GetParam() == Names::wide;
        const std::size_t at = index * (wide ? 1063 : 550);
        StoreAt(directory_, at, kind);
        StoreAt(directory_, at + 1, static_cast<std::uint32_t>(blocks.empty() ? 0 : blocks[0] + 1));
        StoreAt(directory_, at + 5, std::uint64_t{data.size()});
        for (const std::size_t stamp : {13u, 21u, 29u}) StoreAt(directory_, at + stamp, 0x41731F1912405815u);
        for (std::size_t i = 0; i < name.size(); ++i) StoreAt(directory_, at + 37 + i * (wide ? 2 : 1), name[i]);
        PutChain(blocks);
        PutBytes(blocks, data);
    }

    Bytes host_, header_, directory_;
};
INSTANTIATE_BOTH_NAMES(BuiltPackage);

TEST_P(BuiltPackage, IsReadAsItStands) {
    EXPECT_EQ(Faults(Image(), leniency), "");
    EXPECT_EQ(vlt_package_is_unicode_files(package), GetParam() == Names::wide);
    EXPECT_EQ(List(), (NameList{"One", "other", "two", "three", "late"}));
    EXPECT_EQ(Info("late").created, 20050321.140709);
    EXPECT_EQ(static_cast<int>(Info("other").kind), VLT_ENTRY_OTHER);
    EXPECT_EQ(Read("one"), Pattern("One", 9000));
    EXPECT_TRUE(Intact("two", 3) && Intact("three", 0) && Intact("late", 7));
    FileInfo info, untouched;
    for (const std::int32_t cursor : {0, -1, INT32_MIN}) EXPECT_EQ(Enumerate(package, cursor, &info), 1) << cursor;
    EXPECT_EQ(info.name, "One");
    for (const std::int32_t cursor : {7, 14, 15, 1000, INT32_MAX})
        EXPECT_EQ(Enumerate(package, cursor, &untouched), 0) << cursor;
    EXPECT_EQ(untouched, FileInfo{});
}

TEST_P(BuiltPackage, ListsAndStampsTheEntryOfAnotherMakerButNeverOpensIt) {
    EXPECT_EQ(SetTime(package, "OTHER", 1, 2, 3), 1);
    EXPECT_EQ(Image().entries[1].accessed, 2);
    EXPECT_EQ(OpenError(package, "other", VLT_MODE_READ), VLT_FILE_NOT_FOUND);
    EXPECT_EQ(Delete(package, "other"), 0);
    Write("other", 20);  // a file of the same name, beside it
    EXPECT_EQ(List(), (NameList{"One", "other", "two", "other", "three", "late"}));
    for (int i = 0; i < 2; ++i, Reopen()) {
        EXPECT_EQ(Info("other").size, 4096) << "the first of the two";
        EXPECT_EQ(ReadFrom(OpenFor("other", VLT_MODE_READ), 99), Pattern("other", 20));
    }
    EXPECT_EQ(Delete(package, "other"), 1);
    EXPECT_EQ(Delete(package, "other"), 0);
    EXPECT_EQ(Info("other").size, 4096);
}

TEST_P(BuiltPackage, IsContinuedWhereItEnds) {
    const Bytes more = Pattern("more", 5000);
    Append("one", more);
    EXPECT_EQ(ChainOf("One"), (std::vector<int>{900, 10, 11, 2}));
    Append("two", more);  // takes a block as if it had none to spare
    EXPECT_EQ(ChainOf("two"), (std::vector<int>{3, 4, 6}));
    EXPECT_EQ(Delete(package, "LATE"), 1);
    Write("new", 100);
    EXPECT_EQ(Image().Find("new")->index, 3);
    Reopen();
    Bytes one = Pattern("One", 9000);
    one.insert(one.end(), more.begin(), more.end());
    EXPECT_EQ(Read("one"), one);
    const Bytes after = ReadHostFile(path);
    EXPECT_TRUE(std::equal(host_.begin(), host_.begin() + 100 + 101, after.begin())) << "up to the map";
    EXPECT_EQ(after.size(), host_.size());
    Write("big", 1000 * 4096);  // over what follows the last block
    EXPECT_EQ((ReadHostFile(path).size() - base) % 4096, 0u);
    EXPECT_EQ(Image().header_chain, std::vector({0, 700}));
    Reopen();
    EXPECT_TRUE(Intact("big", 1000 * 4096) && Intact("new", 100));
}

}  // namespace

// SPDX-License-Identifier: MIT
// Blocks and directory entries, seen through files: which ones are taken, and what the map says of them.
#include "tests/support/store_fixture.h"

namespace {

using Blocks = std::vector<int>;

class BlockStore : public StoreTest {};
class Directory : public BothNames {};

TEST_F(BlockStore, AFileTakesTheLowestFreeBlocks) {
    Create(1);
    Write("a", 10000);
    Write("b", 1);
    Write("c", 8192);
    EXPECT_EQ((Blocks{2, 3, 4}), ChainOf("a"));
    EXPECT_EQ(0x80000004u, Word(2));
    EXPECT_EQ(0x80000000u, Word(4));
    EXPECT_EQ(1, Delete(package, "a"));
    EXPECT_EQ(0u, Word(2) | Word(3) | Word(4));
    Write("d", 4096 * 5);
    EXPECT_EQ((Blocks{2, 3, 4, 8, 9}), ChainOf("d"));
    Append("b", Pattern("b", 4096));
    EXPECT_EQ((Blocks{5, 10}), ChainOf("b"));
    Write("c", 4096);  // emptied first: its blocks are the lowest again
    EXPECT_EQ((Blocks{6}), ChainOf("c"));
}

TEST_F(BlockStore, AFullMapTakesABlockOfItsOwnAndItsWordStraddlesTwo) {
    Create(3);  // 768 blocks, of which two are used
    Write("a", 996 * 4096);
    PackageImage image = Image();
    EXPECT_EQ(998, image.block_count);
    EXPECT_EQ(998, image.UsedBlocks());
    EXPECT_EQ(Blocks{0}, image.header_chain);
    Write("b", 1);
    image = Image();
    EXPECT_EQ(1000, image.block_count);
    EXPECT_EQ((Blocks{0, 998}), image.header_chain);
    EXPECT_EQ(0x800003E7u, image.Word(0));
    EXPECT_EQ((Bytes{0, 0, 0}), Bytes(image.host.begin() + 4093, image.host.begin() + 4096));
    EXPECT_EQ(0x80, image.host[998 * 4096]) << "the last byte of word 998";
    EXPECT_EQ(Blocks{999}, image.ChainOf("b"));
    Reopen();
    EXPECT_TRUE(Intact("a", 996 * 4096));
    Write("b", 5 * 4096);
    EXPECT_EQ((Blocks{999, 1000, 1001, 1002, 1003}), ChainOf("b"));
}

TEST_F(BlockStore, GrowthOverSeveralHeaderBlocksIsOneWrite) {
    Create();
    Write("a", 3000 * 4096);
    const PackageImage image = Image();
    EXPECT_EQ((Blocks{0, 998, 2022}), image.header_chain);
    EXPECT_EQ(3004, image.block_count);
    EXPECT_TRUE(Intact("a", 3000 * 4096));
}

TEST_F(BlockStore, GrowthBeginsAfterTheLastWholeBlock) {
    Create();
    vlt_package_close_all();
    Bytes host = ReadHostFile(path);
    host.resize(host.size() + 100, 'x');
    WriteHostFile(path, host);
    Reopen();
    Write("a", 5000);
    EXPECT_EQ((Blocks{2, 3}), ChainOf("a"));
    EXPECT_EQ(4u * 4096, ReadHostFile(path).size());
    Reopen();
    EXPECT_TRUE(Intact("a", 5000));
}

TEST_P(Directory, GrowsByABlockWhenItsEntriesAreUsedUp) {
    const bool wide = GetParam() == Names::wide;
    Create(0, GetParam());
    const std::vector<int> entries = wide ? std::vector{3, 7, 11, 15} : std::vector{7, 14, 22, 29};
    int files = 0;
    for (std::size_t blocks = 1; blocks <= entries.size(); ++blocks) {
        for (; files < entries[blocks - 1]; ++files) Write("f" + std::to_string(files), 0);
        EXPECT_EQ(blocks, Image().directory_chain.size());
    }
    EXPECT_EQ((Blocks{1, 2, 3, 4}), Image().directory_chain);
    Reopen();
    for (int i = 0; i < files; ++i) EXPECT_EQ(0, Info("f" + std::to_string(i)).size);
    EXPECT_EQ(1, Delete(package, "f2"));
    Write("again", 0);
    EXPECT_EQ(2, Image().Find("again")->index);
}

TEST_P(Directory, TakesAFreeBlockThatHeldOtherBytes) {
    Create(0, GetParam());
    for (const char* name : {"a", "b", "c"}) Write(name, 5000);
    for (int i = 3; i < (GetParam() == Names::wide ? 3 : 7); ++i) Write(std::to_string(i), 0);
    EXPECT_EQ(1, Delete(package, "a"));
    Write("a", 0);
    Write("one more", 0);
    EXPECT_EQ((Blocks{1, 2}), Image().directory_chain);
    Reopen();
    EXPECT_TRUE(Intact("c", 5000));
    EXPECT_EQ(0, Info("one more").size);
}

TEST_P(Directory, ANewEntryStartsFromZeros) {
    Create(0, GetParam());
    Write("a rather long name", 5000);
    EXPECT_EQ(1, Delete(package, "A RATHER LONG NAME"));
    EXPECT_EQ(u"a rather long name", Image().entries[0].name) << "a freed entry keeps its bytes";
    Write("short", 0);
    const PackageImage image = Image();
    const auto name = image.directory.begin() + 37 + 5 * (image.wide ? 2 : 1);
    EXPECT_TRUE(std::all_of(name, image.directory.begin() + image.entry_size, [](std::uint8_t b) { return b == 0; }));
}

INSTANTIATE_BOTH_NAMES(Directory);

}  // namespace

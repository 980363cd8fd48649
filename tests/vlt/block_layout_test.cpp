// SPDX-License-Identifier: MIT
// Blocks and directory entries, seen through files: which ones are taken, and what the map says of them.
#include "tests/support/store_fixture.h"

namespace {

using Blocks = std::vector<int>;

class BlockLayout : public StoreTest {};
class Directory : public BothNames {};
INSTANTIATE_BOTH_NAMES(Directory);

TEST_F(BlockLayout, AFileTakesTheLowestFreeBlocks) {
    Create(1);
    Write("a", 10000);
    Write("b", 1);
    Write("c", 8192);
    EXPECT_EQ((Blocks{2, 3, 4}), ChainOf("a"));
    EXPECT_EQ(0x80000004u, Image().Word(2));
    EXPECT_EQ(0x80000000u, Image().Word(4));
    EXPECT_EQ(1, Delete(package, "a"));
    EXPECT_EQ(0u, Image().Word(2) | Image().Word(3) | Image().Word(4));
    Write("d", 4096 * 5);
    EXPECT_EQ((Blocks{2, 3, 4, 8, 9}), ChainOf("d"));
    Append("b", Pattern("b", 4096));
    EXPECT_EQ((Blocks{5, 10}), ChainOf("b"));
    Write("c", 4096);  // emptied first: its blocks are the lowest again
    EXPECT_EQ((Blocks{6}), ChainOf("c"));
}

TEST_F(BlockLayout, AFullMapTakesABlockOfItsOwnAndItsWordStraddlesTwo) {
    Create(3);  // 768 blocks, of which two are used
    Write("a", 996 * 4096);
    PackageImage image = Image();
    EXPECT_EQ(998, image.block_count);
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
    Write("b", 2100 * 4096);  // over two more header blocks, in one write
    image = Image();
    EXPECT_EQ(3101, image.block_count);
    EXPECT_EQ((Blocks{0, 998, 2022, 3046}), image.header_chain);
    EXPECT_TRUE(Intact("b", 2100 * 4096));
}

TEST_P(Directory, GrowsByABlockWhenItsEntriesAreUsedUp) {
    Create(0, GetParam());
    int files = 0;
    for (const int more : GetParam() == Names::wide ? Blocks{3, 4, 4, 4} : Blocks{7, 7, 8, 7}) {
        for (int i = 0; i < more; ++i) Write("f" + std::to_string(files++), 0);
        EXPECT_EQ(Image().entries.size(), static_cast<std::size_t>(files)) << "all that the directory holds";
    }
    EXPECT_EQ((Blocks{1, 2, 3, 4}), Image().directory_chain);
    Reopen();
    EXPECT_EQ(static_cast<std::size_t>(files), List().size());
}

}  // namespace

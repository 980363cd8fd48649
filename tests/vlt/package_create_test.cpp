// SPDX-License-Identifier: MIT
// The bytes of a new package.
#include <cstdio>

#include "tests/support/store_fixture.h"

namespace {

class Creation : public StoreTest {};

TEST_F(Creation, WritesTheSmallestPackageByteForByte) {
    ASSERT_EQ(1, vlt_package_create(path.c_str(), 0, 0, nullptr, ""));
    Bytes wanted(8192);
    const Bytes head = {'v', 'l', 't', 0, 1};
    std::copy(head.begin(), head.end(), wanted.begin());
    std::fill_n(wanted.begin() + 5, 32, std::uint8_t{0xFF});
    wanted[104] = wanted[108] = 0x80;
    EXPECT_EQ(wanted, ReadHostFile(path));
}

struct Sized {
    std::int32_t size_mb;
    int blocks;
    std::vector<int> header_chain;
};
class CreationOfSize : public Creation, public ::testing::WithParamInterface<Sized> {};

TEST_P(CreationOfSize, GivesBlocksAndAHeaderForThem) {
    ASSERT_EQ(1, vlt_package_create(path.c_str(), 7, GetParam().size_mb, nullptr, nullptr));
    const PackageImage image = Image();
    EXPECT_TRUE(image.wide);
    EXPECT_EQ(static_cast<std::size_t>(GetParam().blocks) * 4096, image.host.size());
    EXPECT_EQ(GetParam().header_chain, image.header_chain);
    EXPECT_EQ(std::vector<int>{1}, image.directory_chain);
    EXPECT_EQ(static_cast<int>(GetParam().header_chain.size()) + 1, image.UsedBlocks());
    for (std::size_t i = 4096; i < image.host.size(); ++i) ASSERT_EQ(0, image.host[i]) << i;
}

INSTANTIATE_TEST_SUITE_P(, CreationOfSize,
                         ::testing::Values(Sized{-5, 2, {0}}, Sized{1, 256, {0}}, Sized{3, 768, {0}},
                                           Sized{4, 1024, {0, 2}}, Sized{16, 4096, {0, 2, 3, 4, 5}}),
                         [](const auto& test) { return "blocks_" + std::to_string(test.param.blocks); });

TEST_F(Creation, StoresCredentialsReversedAndInverted) {
    ASSERT_EQ(1, vlt_package_create(path.c_str(), 0, 0, "abc", "0123456789abcdef"));
    const Bytes host = ReadHostFile(path);
    EXPECT_EQ(EncodedCredential("abc"), Bytes(host.begin() + 5, host.begin() + 21));
    EXPECT_EQ(EncodedCredential("0123456789abcdef"), Bytes(host.begin() + 21, host.begin() + 37));
}

TEST_F(Creation, LeavesTheHostFileAloneWhenItIsRefused) {
    const Bytes other = {'o', 't', 'h', 'e', 'r'};
    WriteHostFile(path, other);
    Damaged();
    EXPECT_EQ(0, vlt_package_create(path.c_str(), 0, 0, "0123456789abcdefg", nullptr));
    EXPECT_EQ(0, vlt_package_create(path.c_str(), 0, 0, nullptr, "0123456789abcdefg"));
    EXPECT_EQ(0, vlt_package_create(path.c_str(), 0, 1048576, nullptr, nullptr));
    EXPECT_EQ(0, vlt_package_create(path.c_str(), 0, INT32_MAX, nullptr, nullptr));
    EXPECT_EQ(0, vlt_package_create(nullptr, 0, 0, nullptr, nullptr));
    EXPECT_EQ(0, vlt_package_create("no-such-folder/a.vlt", 0, 0, nullptr, nullptr));
    EXPECT_EQ(other, ReadHostFile(path));
}

TEST_F(Creation, OverwritesALongerFile) {
    WriteHostFile(path, Pattern("old", 100000));
    ASSERT_EQ(1, vlt_package_create(path.c_str(), 0, 0, nullptr, nullptr));
    EXPECT_EQ(8192u, ReadHostFile(path).size());
}

}  // namespace

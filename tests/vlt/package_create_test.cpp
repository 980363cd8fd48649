// SPDX-License-Identifier: MIT
// The bytes of a new package.
#include "tests/support/store_fixture.h"

namespace {

class Creation : public StoreTest {};

TEST_F(Creation, WritesTheSmallestPackageByteForByte) {
    const char* const credentials[][2] = {{nullptr, ""}, {"abc", "0123456789abcdef"}};
    for (const auto& [read, write] : credentials) {
        WriteHostFile(path, Pattern("a longer file", 100000));
        ASSERT_EQ(1, vlt_package_create(path.c_str(), 0, 0, read, write));
        Bytes wanted = {'v', 'l', 't', 0, 1};
        for (const char* credential : {read ? read : "", write}) {
            const Bytes field = EncodedCredential(credential);
            wanted.insert(wanted.end(), field.begin(), field.end());
        }
        wanted.resize(8192);
        wanted[104] = wanted[108] = 0x80;
        EXPECT_EQ(wanted, ReadHostFile(path));
    }
}

struct Size {
    std::int32_t size_mb;
    int blocks;
    std::vector<int> header_chain;
};

TEST_F(Creation, GivesBlocksAndAHeaderForThem) {
    const Size sizes[] = {{-5, 2, {0}}, {1, 256, {0}}, {3, 768, {0}}, {4, 1024, {0, 2}}, {16, 4096, {0, 2, 3, 4, 5}}};
    for (const Size& size : sizes) {
        ASSERT_EQ(1, vlt_package_create(path.c_str(), 7, size.size_mb, nullptr, nullptr));
        const PackageImage image = Image();
        EXPECT_TRUE(image.wide);
        EXPECT_EQ(static_cast<std::size_t>(size.blocks) * 4096, image.host.size());
        EXPECT_EQ(size.header_chain, image.header_chain);
        EXPECT_EQ(std::vector<int>{1}, image.directory_chain);
        EXPECT_EQ(static_cast<int>(size.header_chain.size()) + 1, image.UsedBlocks());
        for (std::size_t i = 4096; i < image.host.size(); ++i) ASSERT_EQ(0, image.host[i]) << i;
    }
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

}  // namespace

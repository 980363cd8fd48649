// SPDX-License-Identifier: MIT
// The bytes of a new package.
#include "tests/support/store_fixture.h"

namespace {

class Creation : public StoreTest {};

TEST_F(Creation, WritesTheSmallestPackageByteForByte) {
    const char* const credentials[][2] = {{nullptr, ""}, {"abc", "0123456789abcdef"}};
    for (const auto& [read, write] : credentials) {
        WriteHostFile(path, Pattern("a longer file", 100000));
        ASSERT_EQ(vlt_package_create(path.c_str(), 0, 0, read, write), 1);
        Bytes wanted = {'v', 'l', 't', 0, 1};
        for (const char* credential : {read ? read : "", write}) {
            const Bytes field = EncodedCredential(credential);
            wanted.insert(wanted.end(), field.begin(), field.end());
        }
        wanted.resize(8192);
        wanted[104] = wanted[108] = 0x80;
        EXPECT_EQ(ReadHostFile(path), wanted);
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
        ASSERT_EQ(vlt_package_create(path.c_str(), 7, size.size_mb, nullptr, nullptr), 1);
        const PackageImage image = Image();
        EXPECT_TRUE(image.wide);
        EXPECT_EQ(image.host.size(), static_cast<std::size_t>(size.blocks) * 4096);
        EXPECT_EQ(image.header_chain, size.header_chain);
        EXPECT_EQ(image.directory_chain, std::vector<int>{1});
        EXPECT_EQ(image.UsedBlocks(), static_cast<int>(size.header_chain.size()) + 1);
        for (std::size_t i = 4096; i < image.host.size(); ++i) ASSERT_EQ(image.host[i], 0) << i;
    }
}

TEST_F(Creation, LeavesTheHostFileAloneWhenItIsRefused) {
    const Bytes other = {'o', 't', 'h', 'e', 'r'};
    WriteHostFile(path, other);
    Damaged();
    EXPECT_EQ(vlt_package_create(path.c_str(), 0, 0, "0123456789abcdefg", nullptr), 0);
    EXPECT_EQ(vlt_package_create(path.c_str(), 0, 0, nullptr, "0123456789abcdefg"), 0);
    EXPECT_EQ(vlt_package_create(path.c_str(), 0, 1048576, nullptr, nullptr), 0);
    EXPECT_EQ(vlt_package_create(path.c_str(), 0, INT32_MAX, nullptr, nullptr), 0);
    EXPECT_EQ(vlt_package_create(nullptr, 0, 0, nullptr, nullptr), 0);
    EXPECT_EQ(vlt_package_create("no-such-folder/a.vlt", 0, 0, nullptr, nullptr), 0);
    EXPECT_EQ(ReadHostFile(path), other);
}

}  // namespace

// SPDX-License-Identifier: MIT
// What the platform promises and no test of the interface reaches.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <fstream>

#include "platform/disk_path.h"
#include "platform/disk_stream.h"
#include "platform/host_file.h"
#include "platform/multibyte.h"

using namespace vlt;

namespace {

TEST(HostFile, RefusesWhatTheFileDoesNotHoldAndWhatItMayNotChange) {
    std::ofstream("small", std::ios::binary) << "12345678";
    const int fd = host_open("small", false);
    ASSERT_GE(fd, 0);
    char bytes[8] = {};
    EXPECT_TRUE(host_read(fd, 4, bytes, 4));
    EXPECT_FALSE(host_read(fd, 4, bytes, 5));
    EXPECT_FALSE(host_read(fd, 100, bytes, 1));
    EXPECT_FALSE(host_write(fd, 0, "x", 1));
    EXPECT_FALSE(host_extend(fd, 8, 1));
    host_close(fd);
    disk_remove("small");
    EXPECT_EQ(disk_path_kind("small"), PathKind::missing);
    disk_remove("small");
}

TEST(DiskStream, SizesHave64Bits) {
    constexpr std::int64_t kLength = 3 * (std::int64_t{1} << 30) + 7;
    std::ofstream("large", std::ios::binary) << "x";
    const int fd = host_open("large", true);
    ASSERT_TRUE(host_write(fd, kLength - 1, "x", 1)) << "no room for sparse files";
    host_close(fd);
    std::FILE* stream = disk_open("large", DiskMode::read);
    ASSERT_TRUE(stream);
    std::int64_t size = 0;
    EXPECT_TRUE(disk_size(stream, &size));
    EXPECT_EQ(size, kLength);
    char first = 0;
    EXPECT_TRUE(disk_read(stream, &first, 1) == 1 && first == 'x');
    disk_close(stream);
    EXPECT_EQ(disk_path_kind("large"), PathKind::file);
    disk_remove("large");
}

TEST(Multibyte, StepsOverWholeCharactersOfTheLocale) {
    if (!std::setlocale(LC_CTYPE, "C.UTF-8")) GTEST_SKIP() << "no such locale here";
    const char text[] = "a\xC3\xA4\xE2\x82\xAC\xFF!";  // two letters, a sign, a byte that is no character
    const char* at = text;
    for (const int length : {1, 2, 3, 1, 1, 0}) {
        EXPECT_EQ(multibyte_next(at), at + length);
        at += length;
    }
    EXPECT_TRUE(multibyte_ascii_is_whole());
    std::setlocale(LC_CTYPE, "C");
}

}  // namespace

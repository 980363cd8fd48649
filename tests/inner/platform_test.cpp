// SPDX-License-Identifier: MIT
// The system's own refusals, and time stamps of times that are none.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <fstream>

#include "platform/clock.h"
#include "platform/disk_stream.h"
#include "platform/host_file.h"
#include "platform/multibyte.h"
#include "vlt/time_stamp.h"

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

TEST(TimeStamp, IsZeroWhenAPartIsOutOfRange) {
    EXPECT_EQ(vlt_stamp_make(2005, 3, 21, 14, 7, 9), 20050321.140709);
    const std::uint16_t none[][6] = {{1000, 3, 21, 14, 7, 9},  {3000, 3, 21, 14, 7, 9},  {2005, 0, 21, 14, 7, 9},
                                     {2005, 13, 21, 14, 7, 9}, {2005, 3, 0, 14, 7, 9},   {2005, 3, 32, 14, 7, 9},
                                     {2005, 3, 21, 24, 7, 9},  {2005, 3, 21, 14, 60, 9}, {2005, 3, 21, 14, 7, 60}};
    for (const auto& t : none) EXPECT_EQ(vlt_stamp_make(t[0], t[1], t[2], t[3], t[4], t[5]), 0.0);
}

TEST(Clock, GivesNoTimeOrThePresentForSecondsBeyondTheCalendar) {
    const int year = clock_local(INT64_MAX).year;
    EXPECT_TRUE(year == 0 || year >= 2005) << year;
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

// SPDX-License-Identifier: MIT
// Time stamps of any time: the calendar clock is bound to the double below at link time.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>

#include "platform/clock.h"
#include "tests/support/time_zone.h"
#include "vlt/time_stamp.h"

using namespace vlt;

namespace {

std::optional<std::int64_t> clock_says;    // else the real clock is asked
std::optional<LocalTime> calendar_failed;  // then the system's other clock says this

}  // namespace

extern "C" {

decltype(clock_seconds) __real_clock_seconds;
decltype(clock_local) __real_clock_local;

std::int64_t __wrap_clock_seconds() {
    return clock_says ? *clock_says : __real_clock_seconds();
}

bool __wrap_clock_local(std::int64_t seconds, LocalTime* local) {
    if (!calendar_failed) return __real_clock_local(seconds, local);
    *local = *calendar_failed;
    return false;
}

}  // extern "C"

namespace {

class TimeStamp : public testing::Test {
protected:
    ~TimeStamp() override {
        clock_says.reset();
        calendar_failed.reset();
    }
    double StampAt(std::int64_t second) {
        clock_says = second;
        return clock_.stamp_now();
    }

private:
    vlt::StampClock clock_;
};

TEST_F(TimeStamp, IsZeroWhenAPartIsOutOfRange) {
    EXPECT_EQ(vlt_stamp_make(2005, 3, 21, 14, 7, 9), 20050321.140709);
    const std::uint16_t none[][6] = {{1000, 3, 21, 14, 7, 9},  {3000, 3, 21, 14, 7, 9},  {2005, 0, 21, 14, 7, 9},
                                     {2005, 13, 21, 14, 7, 9}, {2005, 3, 0, 14, 7, 9},   {2005, 3, 32, 14, 7, 9},
                                     {2005, 3, 21, 24, 7, 9},  {2005, 3, 21, 14, 60, 9}, {2005, 3, 21, 14, 7, 60}};
    for (const auto& t : none) EXPECT_EQ(vlt_stamp_make(t[0], t[1], t[2], t[3], t[4], t[5]), 0.0);
}

TEST_F(TimeStamp, IsTheLocalTimeOfAnySecondUpToTheYear2999) {
    const struct {
        const char* zone;
        std::int64_t second;
        double stamp;
    } cases[] = {{"UTC0", 2147483647, 20380119.031407},    {"UTC0", 2147483648, 20380119.031408},
                 {"UTC0", 4294967296, 21060207.062816},    {"UTC0", 1709164799, 20240228.235959},
                 {"UTC0", 1709164800, 20240229.000000},    {"UTC0", 946684799, 19991231.235959},
                 {"UTC0", 946684800, 20000101.000000},     {"EST5EDT", 946684801, 19991231.190001},
                 {"EST5EDT", 4102462799, 20991231.235959}, {"EST5EDT", 4102462800, 21000101.000000},
                 {"UTC0", 32503679999, 29991231.235959},   {"UTC0", 32503680000, 0.0}};
    for (const auto& c : cases) {
        const TimeZoneScope zone(c.zone);
        EXPECT_EQ(StampAt(c.second), c.stamp) << c.second;
    }
}

TEST_F(TimeStamp, FollowsAChangeOfSummerTime) {
    if (!TimeZoneScope::knows_summer_time_rules()) GTEST_SKIP() << "zones have no rules here";
    const TimeZoneScope zone("CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(StampAt(1711846799), 20240331.015959);
    EXPECT_EQ(StampAt(1711846800), 20240331.030000);
    EXPECT_EQ(StampAt(1729990799), 20241027.025959);
    EXPECT_EQ(StampAt(1729990800), 20241027.020000);
}

TEST_F(TimeStamp, DoesNotKeepWhatAFailedReadingGave) {
    for (const std::uint16_t second : {std::uint16_t{7}, std::uint16_t{8}}) {
        calendar_failed = LocalTime{2038, 1, 19, 3, 14, second};
        EXPECT_EQ(StampAt(-1), vlt_stamp_make(2038, 1, 19, 3, 14, second));
    }
    calendar_failed.reset();
    EXPECT_GT(StampAt(946684800), 19991231.0);
}

}  // namespace

// SPDX-License-Identifier: MIT
#include "vlt/time_stamp.h"

#include "platform/clock.h"

namespace vlt {

double vlt_stamp_make(std::uint16_t year, std::uint16_t month, std::uint16_t day, std::uint16_t hour,
                      std::uint16_t minute, std::uint16_t second) {
    const bool valid = year > 1000 && year < 3000 && month > 0 && month < 13 && day > 0 && day < 32 && hour < 24 &&
                       minute < 60 && second < 60;
    if (!valid) return 0.0;
    const double date = year * 10000.0 + month * 100.0 + day;
    const double clock = hour * 10000.0 + minute * 100.0 + second;
    return date + clock / 1000000.0;
}

double StampClock::stamp_now() {
    const std::int64_t second = clock_seconds();
    if (second == second_) return stamp_;
    LocalTime t;
    second_ = clock_local(second, &t) ? second : kNoSecond;  // a reading that failed says nothing of the next one
    stamp_ = vlt_stamp_make(t.year, t.month, t.day, t.hour, t.minute, t.second);
    return stamp_;
}

}  // namespace vlt

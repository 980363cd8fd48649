// SPDX-License-Identifier: MIT
#include "vlt/time_stamp.h"

#include "platform/clock.h"

double vlt_stamp_make(std::uint16_t year, std::uint16_t month, std::uint16_t day, std::uint16_t hour,
                      std::uint16_t minute, std::uint16_t second) {
    const bool valid = year > 1000 && year < 3000 && month > 0 && month < 13 && day > 0 && day < 32 && hour < 24 &&
                       minute < 60 && second < 60;
    if (!valid) return 0.0;
    const double date = year * 10000.0 + month * 100.0 + day;
    const double clock = hour * 10000.0 + minute * 100.0 + second;
    return date + clock / 1000000.0;
}

double vlt_stamp_clock::vlt_stamp_now() {
    const std::int64_t second = clock_seconds();
    if (second != second_) {
        const LocalTime t = clock_local(second);
        stamp_ = vlt_stamp_make(t.year, t.month, t.day, t.hour, t.minute, t.second);
        second_ = second;
    }
    return stamp_;
}

// SPDX-License-Identifier: MIT
// Time stamps of stored files: a double in local time, the date as YYYYMMDD plus hhmmss / 1000000.
#pragma once

#include <cstdint>

/// The stamp of a date and time, 0.0 when a part is out of range. The day is not compared with its month.
double vlt_stamp_make(std::uint16_t year, std::uint16_t month, std::uint16_t day, std::uint16_t hour,
                      std::uint16_t minute, std::uint16_t second);

/// Remembers the stamp of the present second: turning the calendar time into local time costs more than a write.
class vlt_stamp_clock {
public:
    /// The stamp of now.
    double vlt_stamp_now();

private:
    std::int64_t second_ = INT64_MIN;
    double stamp_ = 0.0;
};

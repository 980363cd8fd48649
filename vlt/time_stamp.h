// SPDX-License-Identifier: MIT
// Time stamps of stored files: a double in local time, the date as YYYYMMDD plus hhmmss / 1000000.
#pragma once

#include <cstdint>

namespace vlt {

/// The stamp of a date and time, 0.0 when a part is out of range. The day is not compared with its month.
double vlt_stamp_make(std::uint16_t year, std::uint16_t month, std::uint16_t day, std::uint16_t hour,
                      std::uint16_t minute, std::uint16_t second);

/// Remembers the stamp of the present second: turning the calendar time into local time costs more than a write.
class StampClock {
public:
    /// The stamp of now.
    double stamp_now();

private:
    static constexpr std::int64_t kNoSecond = INT64_MIN;
    std::int64_t second_ = kNoSecond;  // the one that `stamp_` belongs to
    double stamp_ = 0.0;
};

}  // namespace vlt

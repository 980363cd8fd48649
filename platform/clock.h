// SPDX-License-Identifier: MIT
// The calendar clock, in whole seconds.
#pragma once

#include <cstdint>
#include <ctime>

namespace vlt {

/// A local date and time; the parts are as people write them (month 1 to 12, full year).
struct LocalTime {
    std::uint16_t year, month, day, hour, minute, second;
};

/// The same from the calendar of the runtime library.
inline LocalTime local_time(const std::tm& calendar) {
    const auto part = [](int value) { return static_cast<std::uint16_t>(value); };
    return {part(calendar.tm_year + 1900), part(calendar.tm_mon + 1), part(calendar.tm_mday),
            part(calendar.tm_hour),        part(calendar.tm_min),     part(calendar.tm_sec)};
}

extern "C" {

/// Seconds since the start of 1970, of any number of bits that they need.
std::int64_t clock_seconds();

/// Stores the local date and time of a reading of `clock_seconds`. Where the calendar has none for it, stores what
/// the system's other clock shows now (nothing but zeros where there is none) and returns false: that time goes on
/// while the reading may stand still, so it must not be kept for the next question.
bool clock_local(std::int64_t seconds, LocalTime* local);

}  // extern "C"

}  // namespace vlt

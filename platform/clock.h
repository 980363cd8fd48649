// SPDX-License-Identifier: MIT
// The calendar clock, in whole seconds.
#pragma once

#include <cstdint>

/// A local date and time; the parts are as people write them (month 1 to 12, full year).
struct LocalTime {
    std::uint16_t year, month, day, hour, minute, second;
};

extern "C" {

/// Seconds of the calendar clock; tells whether a second has passed, nothing more.
std::int64_t clock_seconds();

/// The local date and time that belong to a reading of `clock_seconds`.
LocalTime clock_local(std::int64_t seconds);

}  // extern "C"

// SPDX-License-Identifier: MIT
#include "platform/clock.h"

#include <ctime>

std::int64_t clock_seconds() {
    return std::time(nullptr);
}

LocalTime clock_local(std::int64_t seconds) {
    const auto time = static_cast<std::time_t>(seconds);
    std::tm local{};
    ::tzset();  // localtime_r need not notice a change of the time zone by itself
    if (!::localtime_r(&time, &local)) return {};
    const auto part = [](int value) { return static_cast<std::uint16_t>(value); };
    return {part(local.tm_year + 1900), part(local.tm_mon + 1), part(local.tm_mday),
            part(local.tm_hour),        part(local.tm_min),     part(local.tm_sec)};
}

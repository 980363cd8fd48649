// SPDX-License-Identifier: MIT
#include "platform/clock.h"

namespace vlt {

std::int64_t clock_seconds() {
    return std::time(nullptr);
}

bool clock_local(std::int64_t seconds, LocalTime* local) {
    const std::time_t time = seconds;
    std::tm calendar{};
    ::tzset();  // localtime_r need not notice a change of the time zone by itself
    const bool known = ::localtime_r(&time, &calendar) != nullptr;
    *local = known ? local_time(calendar) : LocalTime{};
    return known;
}

}  // namespace vlt

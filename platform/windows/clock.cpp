// SPDX-License-Identifier: MIT
#include "platform/clock.h"

#include <windows.h>
#include <ctime>

std::int64_t clock_seconds() {
    return std::time(nullptr);
}

LocalTime clock_local(std::int64_t seconds) {
    const auto time = static_cast<std::time_t>(seconds);
    const auto part = [](int value) { return static_cast<std::uint16_t>(value); };
    if (const std::tm* local = std::localtime(&time))  // one buffer a thread in this runtime
        return {part(local->tm_year + 1900), part(local->tm_mon + 1), part(local->tm_mday),
                part(local->tm_hour),        part(local->tm_min),     part(local->tm_sec)};
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

// SPDX-License-Identifier: MIT
#include "platform/clock.h"

#include <windows.h>

namespace vlt {

// By name the 64-bit functions: `std::time` has 32 bits here, and gives nothing but -1 from 2038 on.

std::int64_t clock_seconds() {
    return ::_time64(nullptr);
}

bool clock_local(std::int64_t seconds, LocalTime* local) {
    const __time64_t time = seconds;
    if (const std::tm* calendar = ::_localtime64(&time)) {  // one buffer a thread in this runtime
        *local = local_time(*calendar);
        return true;
    }
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    *local = {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
    return false;
}

}  // namespace vlt

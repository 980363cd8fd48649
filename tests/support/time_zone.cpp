// SPDX-License-Identifier: MIT
#include "tests/support/time_zone.h"

#include <cstdlib>
#include <ctime>
#include <string>

#ifdef _WIN32
TimeZoneScope::TimeZoneScope(const char* zone) {
    ::_putenv((std::string("TZ=") + zone).c_str());
    ::_tzset();
}

TimeZoneScope::~TimeZoneScope() {
    ::_putenv("TZ=");
    ::_tzset();
}

bool TimeZoneScope::knows_summer_time_rules() {
    return false;
}
#else
TimeZoneScope::TimeZoneScope(const char* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
}

TimeZoneScope::~TimeZoneScope() {
    ::unsetenv("TZ");
    ::tzset();
}

bool TimeZoneScope::knows_summer_time_rules() {
    return true;
}
#endif

// SPDX-License-Identifier: MIT
// A time zone of the process for the length of a scope, then the system's own again.
#pragma once

class TimeZoneScope {
public:
    explicit TimeZoneScope(const char* zone);
    ~TimeZoneScope();
    TimeZoneScope(const TimeZoneScope&) = delete;
    TimeZoneScope& operator=(const TimeZoneScope&) = delete;

    /// Whether a zone may say when its summer time begins and ends.
    static bool knows_summer_time_rules();
};

// SPDX-License-Identifier: MIT
// Time stamps of stored files: local time as the number YYYYMMDD.hhmmss, 0 for no valid time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tool {

/// The stamp of seconds since 1970; 0 where the year has not four digits.
double stamp_of(std::int64_t seconds);

/// Seconds since 1970; nothing for a stamp that is no valid time.
std::optional<std::int64_t> seconds_of_stamp(double stamp);

/// "2005-03-21T14:07:09", with `between` for the T; empty for a stamp that is no valid time.
std::string stamp_text(double stamp, char between);

/// The stamp of "2005-03-21", "2005-03-21T14:07" or "2005-03-21 14:07:09"; nothing for other texts.
std::optional<double> stamp_of_text(const std::string& text);

double stamp_now();

}  // namespace tool

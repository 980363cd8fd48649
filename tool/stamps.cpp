// SPDX-License-Identifier: MIT
#include "tool/stamps.h"

#include <fmt/format.h>
#include <cmath>
#include <ctime>

#include "tool/system.h"

namespace tool {

namespace {

struct Parts {
    int year, month, day, hour, minute, second;
};

bool valid(const Parts& p) {
    return p.year > 1000 && p.year < 3000 && p.month >= 1 && p.month <= 12 && p.day >= 1 && p.day <= 31 &&
           p.hour >= 0 && p.hour < 24 && p.minute >= 0 && p.minute < 60 && p.second >= 0 && p.second < 60;
}

double stamp_of(const Parts& p) {
    // The same sum as the library's, so that equal times are equal numbers.
    const double date = p.year * 10000.0 + p.month * 100.0 + p.day;
    const double clock = p.hour * 10000.0 + p.minute * 100.0 + p.second;
    return date + clock / 1000000.0;
}

std::optional<Parts> parts_of(double stamp) {
    if (!(stamp > 0 && stamp < 1e8)) return std::nullopt;
    const auto date = static_cast<int>(stamp);
    const auto clock = static_cast<int>(std::lround((stamp - date) * 1000000));
    const Parts parts{date / 10000, date / 100 % 100, date % 100, clock / 10000, clock / 100 % 100, clock % 100};
    return valid(parts) ? std::optional(parts) : std::nullopt;
}

}  // namespace

double stamp_of(std::int64_t seconds) {
    const std::tm t = local_time(seconds);
    const Parts parts{t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec};
    return valid(parts) ? stamp_of(parts) : 0.0;
}

double stamp_now() {
    return stamp_of(static_cast<std::int64_t>(std::time(nullptr)));
}

std::optional<std::int64_t> seconds_of_stamp(double stamp) {
    const auto parts = parts_of(stamp);
    if (!parts) return std::nullopt;
    std::tm t{};
    t.tm_year = parts->year - 1900;
    t.tm_mon = parts->month - 1;
    t.tm_mday = parts->day;
    t.tm_hour = parts->hour;
    t.tm_min = parts->minute;
    t.tm_sec = parts->second;
    return seconds_of(t);
}

std::string stamp_text(double stamp, char between) {
    const auto p = parts_of(stamp);
    if (!p) return "";
    return fmt::format("{:04}-{:02}-{:02}{}{:02}:{:02}:{:02}", p->year, p->month, p->day, between, p->hour, p->minute,
                       p->second);
}

std::optional<double> stamp_of_text(const std::string& text) {
    // What is missing at the end is that of midnight.
    const std::string form = "0000-00-00T00:00:00";
    if (text.size() != 10 && text.size() != 16 && text.size() != 19) return std::nullopt;
    std::string full = text + form.substr(text.size());
    if (full[10] == ' ') full[10] = 'T';
    for (std::size_t i = 0; i < form.size(); ++i) {
        const bool digit = full[i] >= '0' && full[i] <= '9';
        if (form[i] == '0' ? !digit : full[i] != form[i]) return std::nullopt;
    }
    const auto number = [&](std::size_t at, std::size_t length) { return std::stoi(full.substr(at, length)); };
    const Parts parts{number(0, 4), number(5, 2), number(8, 2), number(11, 2), number(14, 2), number(17, 2)};
    return valid(parts) ? std::optional(stamp_of(parts)) : std::nullopt;
}

}  // namespace tool

// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace tool {

/// A bar on stderr with rate and time left, for work of more than half a second, where stderr is a terminal.
class Progress {
public:
    /// `total` 0: not known, the bar shows what is done alone.
    Progress(std::string title, std::uint64_t total, bool quiet);
    ~Progress() { clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Counts bytes that are done; throws `Interrupted` when the user wants to stop.
    void advance(std::uint64_t bytes);
    void set_total(std::uint64_t total) { total_ = total; }

    /// Takes the bar away, for other lines to be printed.
    void clear();

private:
    using Clock = std::chrono::steady_clock;
    void draw(Clock::time_point now);
    std::string figures(double seconds) const;

    std::string title_;
    std::uint64_t total_, done_ = 0;
    bool enabled_, drawn_ = false;
    Clock::time_point start_ = Clock::now(), next_ = start_ + std::chrono::milliseconds(500);
};

}  // namespace tool

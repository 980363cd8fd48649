// SPDX-License-Identifier: MIT
#include "tool/progress.h"

#include <fmt/format.h>
#include <algorithm>
#include <cstdio>

#include "tool/failure.h"
#include "tool/output.h"
#include "tool/system.h"

namespace tool {

Progress::Progress(std::string title, std::uint64_t total, bool quiet)
    : title_(std::move(title)), total_(total), enabled_(!quiet && is_terminal(stderr)) {}

void Progress::advance(std::uint64_t bytes) {
    check_interrupt();
    done_ += bytes;
    if (!enabled_) return;
    const auto now = Clock::now();
    if (now >= next_) draw(now);
}

void Progress::clear() {
    if (drawn_) std::fputs("\r\033[K", stderr);
    drawn_ = false;
}

std::string Progress::figures(double seconds) const {
    const double rate = static_cast<double>(done_) / seconds;
    std::string text = fmt::format("{:>10}  {:>10}/s", size_text(static_cast<double>(done_)), size_text(rate));
    if (total_ <= done_ || rate <= 0) return text;
    const auto left = static_cast<long>(static_cast<double>(total_ - done_) / rate) + 1;
    return text + fmt::format("  {:3}:{:02} left", left / 60, left % 60);
}

void Progress::draw(Clock::time_point now) {
    next_ = now + std::chrono::milliseconds(100);
    const std::string numbers = figures(std::chrono::duration<double>(now - start_).count());
    const int room = terminal_width(stderr) - 1 - static_cast<int>(title_.size() + numbers.size()) - 4;
    std::string bar;
    if (total_ > 0 && room >= 8) {
        const auto width = static_cast<std::size_t>(std::min(room, 40));
        const auto full = static_cast<std::size_t>(static_cast<double>(std::min(done_, total_)) /
                                                   static_cast<double>(total_) * static_cast<double>(width));
        bar = fmt::format(" [{:<{}}]", std::string(full, '#'), width);
    }
    std::fprintf(stderr, "\r%s%s %s\033[K", title_.c_str(), bar.c_str(), numbers.c_str());
    std::fflush(stderr);
    drawn_ = true;
}

}  // namespace tool

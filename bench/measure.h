// SPDX-License-Identifier: MIT
// Ratios that can be trusted on a noisy machine: every contender of a row runs in turn, several rounds in one
// process, and what counts is the median of its processor time.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace bench {

/// Ends the benchmark when something that it builds upon fails.
inline void need(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "benchmark: %s failed\n", what);
    std::exit(1);
}

/// Processor time of this process so far, user and system, in seconds.
inline double processor_seconds() {
    std::timespec now{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Wall time, in seconds.
inline double wall_seconds() {
    std::timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Processor time of one call.
template <typename Work>
double seconds_of(Work work) {
    const double start = processor_seconds();
    work();
    return processor_seconds() - start;
}

/// Memory that the process has taken, in KiB.
inline long resident_kib() {
    long pages = 0, resident = 0;
    if (std::FILE* f = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
        std::fclose(f);
    }
    return resident * ::sysconf(_SC_PAGESIZE) / 1024;
}

inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// One way to do the work of a row; returns the seconds that count.
struct Contender {
    std::string name;
    std::function<double()> run;
};

/// A contender whose processor time counts.
template <typename Work>
Contender timed(const char* name, Work work) {
    return {name, [work] { return seconds_of(work); }};
}

/// Runs the contenders in turn and returns the median of each, in their order.
inline std::vector<double> medians(const std::vector<Contender>& contenders, int rounds) {
    std::vector<std::vector<double>> times(contenders.size());
    for (int round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < contenders.size(); ++i) times[i].push_back(contenders[i].run());
    std::vector<double> result;
    for (const auto& t : times) result.push_back(median(t));
    return result;
}

/// Prints the heading of the table.
inline void print_heading(const char* reference) {
    std::printf("%-44s %11s  %-26s %9s %9s\n", "work", reference, "contender", "reached", "goal");
}

/// Prints one line: the median of the reference, and a contender's as a multiple of it. `goal` may be empty.
inline void print_row(const std::string& work, double reference, const std::string& contender, double ratio,
                      const std::string& goal) {
    std::printf("%-44s %8.1f ms  %-26s %8.2fx %9s\n", work.c_str(), reference * 1e3, contender.c_str(), ratio,
                goal.c_str());
    std::fflush(stdout);
}

/// Measures a row and prints a line for every contender after the first, which is the reference. `goal` is the
/// second contender's: the library's.
inline std::vector<double> row(const std::string& work, const std::vector<Contender>& contenders, int rounds,
                               const std::string& goal) {
    const std::vector<double> m = medians(contenders, rounds);
    for (std::size_t i = 1; i < contenders.size(); ++i)
        print_row(i == 1 ? work : "", m[0], contenders[i].name, m[i] / m[0], i == 1 ? goal : "");
    return m;
}

}  // namespace bench

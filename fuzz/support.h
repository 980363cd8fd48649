// SPDX-License-Identifier: MIT
// What the fuzz targets share: taking an input apart, and files that live in memory.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/input.h"
#include "tests/support/package_image.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the run when a property does not hold.
inline void Require(bool holds, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (holds) return;
    std::fprintf(stderr, "%s:%d: a property does not hold\n", file, line);
    std::abort();
}

// The platform's files, its clock and its character set are bound to these at link time.

/// Forgets every file and starts the clock and the character set anew.
void ResetHost();
Bytes& HostFile(const std::string& path);
bool HostFileExists(const std::string& path);
/// Host files may not grow beyond so many bytes.
void LimitHost(std::size_t bytes);
bool HostWasFull();
void TickClock(int seconds);
/// Bytes from 0x81 on lead a character of two bytes, whose second byte may be any but zero.
void UseDoubleBytes(bool on);

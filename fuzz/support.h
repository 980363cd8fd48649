// SPDX-License-Identifier: MIT
// What the fuzz targets share: taking an input apart, and files that live in memory.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/package_image.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the run when a property does not hold.
inline void Require(bool holds, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (holds) return;
    std::fprintf(stderr, "%s:%d: a property does not hold\n", file, line);
    std::abort();
}

/// The bytes of an input, taken from its front; zeros once it is used up.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

    bool empty() const { return at_ == end_; }
    std::uint8_t Byte() { return empty() ? std::uint8_t{0} : *at_++; }
    std::uint32_t Number(int bytes) {
        std::uint32_t value = 0;
        for (int i = 0; i < bytes; ++i) value |= std::uint32_t{Byte()} << (8 * i);
        return value;
    }
    bool Flag() { return (Byte() & 1) != 0; }

    /// The bytes up to a mark, which is passed over, or to the end.
    std::string Text(char mark = '\0') {
        std::string text;
        while (!empty() && *at_ != static_cast<std::uint8_t>(mark)) text += static_cast<char>(*at_++);
        Byte();
        return text;
    }
    /// The same without what follows a zero byte.
    std::string CText(char mark = '\0') { return Text(mark).c_str(); }
    std::string Rest() {
        std::string text(at_, end_);
        at_ = end_;
        return text;
    }

private:
    const std::uint8_t* at_;
    const std::uint8_t* end_;
};

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

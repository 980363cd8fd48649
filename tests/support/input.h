// SPDX-License-Identifier: MIT
// Bytes that decide what a script does: a fuzzer's, or random ones.
#pragma once

#include <cstdint>
#include <string>

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

private:
    const std::uint8_t* at_;
    const std::uint8_t* end_;
};

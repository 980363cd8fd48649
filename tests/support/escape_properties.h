// SPDX-License-Identifier: MIT
// What must hold of escaping whatever the text, for random texts and for a fuzzer's. Each function gives what is
// wrong; an empty text when nothing is.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "include/offline.h"
#include "offline/tables/escape.h"

struct Swapped {
    std::int32_t result;
    std::string text;
    bool operator==(const Swapped&) const = default;
};

/// Swaps into a buffer of exactly `size` bytes, past which a sanitizer sees every write.
inline Swapped SwapInto(std::size_t size, const std::string& text, std::int32_t direction) {
    const std::unique_ptr<char[]> room(new char[size]);
    const auto limit = static_cast<std::int32_t>(size);
    const std::int32_t result = KOfflineDb_StrSwap(text.c_str(), room.get(), limit, direction);
    return {result, size ? std::string(room.get()) : ""};
}

/// Swaps a text in the buffer that it lies in.
inline Swapped SwapInPlace(std::size_t size, std::string text, std::int32_t direction) {
    text.resize(size);
    const auto limit = static_cast<std::int32_t>(size);
    const std::int32_t result = KOfflineDb_StrSwap(text.c_str(), text.data(), limit, direction);
    return {result, text.c_str()};
}

/// What is escaped has none of the special characters left, as far as bytes are characters, and is unescaped to what
/// it was. Decoding a text in place or by the fast way of the data files gives what the engine gives.
inline std::string EscapeFault(const std::string& text, bool double_bytes) {
    const std::size_t most = 2 * text.size() + 1;
    const Swapped encoded = SwapInto(most, text, 1), decoded = SwapInto(most, text, 0);
    const bool special =
        encoded.text.find_first_of(",\t\r\n") != std::string::npos || encoded.text.find("//") != std::string::npos;
    if (special && !double_bytes) return "special characters are left";
    if (encoded.result != 1 || SwapInto(most, encoded.text, 0) != Swapped{1, text}) return "no way back";
    if (SwapInPlace(most, text, 1) != encoded || SwapInPlace(most, text, 0) != decoded) return "differs in place";
    for (const bool ascii_is_whole : {false, !double_bytes}) {
        std::string fast = text;
        const std::size_t length = vlt::escape_decode(fast.data(), fast.size(), ascii_is_whole);
        if (fast.c_str() != decoded.text || length != decoded.text.size()) return "the fast decoder differs";
    }
    return "";
}

/// What fits into a buffer of any size is whole or is the beginning of what would have come out.
inline std::string SmallBufferFault(const std::string& text, std::size_t size, std::int32_t direction) {
    const Swapped whole = SwapInto(2 * text.size() + 1, text, direction), part = SwapInto(size, text, direction);
    if (size > whole.text.size() || text.empty()) return part == whole ? "" : "differs where it fits";
    return part.result == 0 && whole.text.starts_with(part.text) ? "" : "is no beginning";
}

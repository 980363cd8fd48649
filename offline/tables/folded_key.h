// SPDX-License-Identifier: MIT
// Values as numbers: eight bytes of a text at a time, letters folded, the first byte highest, so that numbers compare
// as the texts do and many texts are sorted without touching them again.
#pragma once

#include <cstdint>

/// A to Z in each of eight bytes become a to z.
constexpr std::uint64_t fold_eight(std::uint64_t bytes) {
    constexpr std::uint64_t each = 0x0101010101010101;
    const std::uint64_t low = bytes & 0x7f * each;
    const std::uint64_t from_a = low + (0x80 - 'A') * each;
    const std::uint64_t past_z = low + (0x7f - 'Z') * each;
    const std::uint64_t letters = (from_a ^ past_z) & ~bytes & 0x80 * each;
    return bytes | letters >> 2;
}

/// The next eight bytes of a text; zero bytes from its end on.
inline std::uint64_t folded_key(const char* text) {
    std::uint64_t key = 0;
    for (int shift = 56; shift >= 0 && *text; shift -= 8) {
        key |= std::uint64_t{static_cast<unsigned char>(*text++)} << shift;
    }
    return fold_eight(key);
}

/// Whether a text goes on after the eight bytes of a key.
constexpr bool key_goes_on(std::uint64_t key) {
    return (key & 0xff) != 0;
}

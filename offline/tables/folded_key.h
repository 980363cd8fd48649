// SPDX-License-Identifier: MIT
// Values as numbers: eight bytes of a text at a time, letters folded, the first byte highest, so that numbers compare
// as the texts do and many texts are sorted without touching them again.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace vlt {

/// A to Z in each of eight bytes become a to z.
constexpr std::uint64_t fold_eight(std::uint64_t bytes) {
    constexpr std::uint64_t each = 0x0101010101010101;
    const std::uint64_t low = bytes & 0x7f * each;
    const std::uint64_t from_a = low + (0x80 - 'A') * each;
    const std::uint64_t past_z = low + (0x7f - 'Z') * each;
    const std::uint64_t letters = (from_a ^ past_z) & ~bytes & 0x80 * each;
    return bytes | letters >> 2;
}

/// Bytes read from a text, the first byte highest.
constexpr std::uint64_t first_byte_highest(std::uint64_t loaded) {
    return std::endian::native == std::endian::little ? __builtin_bswap64(loaded) : loaded;
}

/// The next eight bytes of a value; zero bytes from its end on. Behind the terminator seven more bytes can be read.
inline std::uint64_t folded_key(const char* text) {
    constexpr std::uint64_t each = 0x0101010101010101;
    std::uint64_t bytes;
    std::memcpy(&bytes, text, sizeof bytes);
    bytes = first_byte_highest(bytes);
    // The highest bit of every zero byte, exactly: no carry runs from one byte into the next.
    const std::uint64_t zeros = ~(((bytes & 0x7f * each) + 0x7f * each) | bytes) & 0x80 * each;
    const int kept = std::countl_zero(zeros);
    return kept == 64 ? fold_eight(bytes) : fold_eight(bytes & ~(~std::uint64_t{0} >> kept));
}

/// Whether a text goes on after the eight bytes of a key.
constexpr bool key_goes_on(std::uint64_t key) {
    return (key & 0xff) != 0;
}

/// A text given by a caller, without margin, to be looked up among values.
class SearchKey {
public:
    explicit SearchKey(const char* text) : text_(text), length_(std::strlen(text)), first_(key(0)) {}

    const char* text() const { return text_; }

    /// The key of the first eight bytes.
    std::uint64_t first() const { return first_; }

    /// The key of the eight bytes from `depth` on, which is no farther than the end.
    std::uint64_t key(std::size_t depth) const {
        const std::size_t left = length_ - depth;
        return fold_eight(left < 8 ? few_bytes(text_ + depth, left) : bytes(text_ + depth, 8));
    }

    /// Whether a value is this text, letters folded.
    bool equals(const char* value) const {
        std::uint64_t part = first_;
        for (std::size_t depth = 8; folded_key(value) == part; depth += 8) {
            if (!key_goes_on(part)) return true;
            value += 8;
            part = key(depth);
        }
        return false;
    }

private:
    /// The first byte highest, zero bytes behind the last; 4 or 8 bytes.
    static std::uint64_t bytes(const char* text, std::size_t count) {
        std::uint64_t loaded = 0;
        std::memcpy(&loaded, text, count);
        return first_byte_highest(loaded);
    }

    /// The same for fewer than eight bytes, by loads that overlap instead of a loop.
    static std::uint64_t few_bytes(const char* text, std::size_t count) {
        const std::size_t behind = 64 - 8 * count;
        if (count >= 4) return bytes(text, 4) | bytes(text + count - 4, 4) >> 32 << behind;
        if (count == 0) return 0;
        const auto at = [&](std::size_t i) {
            return std::uint64_t{static_cast<unsigned char>(text[i])} << (56 - 8 * i);
        };
        return at(0) | at(count / 2) | at(count - 1);
    }

    const char* text_;
    std::size_t length_;
    std::uint64_t first_;
};

}  // namespace vlt

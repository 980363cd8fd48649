// SPDX-License-Identifier: MIT
// Values made by someone who knows how search aids hash: all of them share a slot and the tag in it.
#pragma once

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace colliding {

/// Undoes one round of mixing: x ^ x >> shift, then times an odd factor, whose inverse is given.
constexpr std::uint64_t undo(std::uint64_t hash, std::uint64_t inverse, int shift) {
    hash *= inverse;
    std::uint64_t mixed = hash;
    for (int done = shift; done < 64; done += shift) mixed = hash ^ mixed >> shift;
    return mixed;
}

constexpr std::uint64_t inverse_of(std::uint64_t odd) {
    std::uint64_t inverse = odd;
    for (int i = 0; i < 6; ++i) inverse *= 2 - odd * inverse;
    return inverse;
}

/// The eight bytes that one mixing turns into `hash`.
constexpr std::uint64_t unmix(std::uint64_t hash) {
    hash ^= hash >> 32;
    hash = undo(hash, inverse_of(0xbf58476d1ce4e5b9), 29);
    return undo(hash, inverse_of(0x9e3779b97f4a7c15), 32);
}

/// Stores a number as a text of eight bytes; false when a data file would not hold it as it is.
inline bool as_text(std::uint64_t bytes, std::string* text) {
    text->resize(8);
    for (int i = 0; i < 8; ++i) {
        const auto c = static_cast<unsigned char>(bytes >> (56 - 8 * i));
        if (c < 0x21 || c == '/' || c == '\\' || (c >= 'A' && c <= 'Z')) return false;
        (*text)[static_cast<std::size_t>(i)] = static_cast<char>(c);
    }
    return true;
}

}  // namespace colliding

/// Different values of eight bytes, colliding or, for comparison, random.
inline std::vector<std::string> ValuesOfEightBytes(std::size_t count, bool collide) {
    constexpr std::uint64_t kFree = (std::uint64_t{1} << 25) - 1;  // bits of a hash that lie between slot and tag
    std::mt19937_64 random(3);
    std::vector<std::string> values;
    std::string text;
    for (std::uint64_t i = 0; values.size() < count; ++i) {
        const std::uint64_t hash = collide ? (i & kFree) << 22 : random();
        // The terminator begins another eight bytes, which are mixed in once more.
        if (colliding::as_text(colliding::unmix(colliding::unmix(hash)), &text)) values.push_back(text);
    }
    return values;
}

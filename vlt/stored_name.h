// SPDX-License-Identifier: MIT
// Stored names in their two widths: measured, compared, hashed, copied.
//
// The name field of an entry is not aligned, and may lack its terminator when the package is damaged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "base/ascii_case.h"
#include "vlt/format.h"

namespace vlt {

/// One code unit of a name field.
template <typename Char>
std::make_unsigned_t<Char> name_unit(const std::uint8_t* name, std::size_t i) {
    return load_at<std::make_unsigned_t<Char>>(name + i * sizeof(Char));
}

/// Length of a caller's name in code units, VLT_NAME_MAX + 1 when it is longer than a name can be.
template <typename Char>
std::size_t name_length(const Char* name) {
    std::size_t length = 0;
    while (length <= VLT_NAME_MAX && name[length]) ++length;
    return length;
}

/// A caller's name as a name field holds it. It may not be longer than VLT_NAME_MAX; what follows its terminator is
/// not set.
class NameField {
public:
    template <typename Char>
    explicit NameField(const Char* name) : length_(name_length(name) * sizeof(Char)) {
        std::memcpy(bytes_, name, length_);
        std::memset(bytes_ + length_, 0, kWord);
    }
    const std::uint8_t* bytes() const { return bytes_; }
    std::size_t length() const { return length_; }  // in bytes, without the terminator

private:
    static constexpr std::size_t kWord = sizeof(std::uint64_t);
    std::size_t length_;
    std::uint8_t bytes_[2 * VLT_NAME_MAX + kWord];
};

/// A hash of a name that letter case does not change.
template <typename Char>
std::uint32_t hash_name(const std::uint8_t* name) {
    std::uint32_t hash = 2166136261u;
    for (std::size_t i = 0; i <= VLT_NAME_MAX; ++i) {
        const std::uint32_t unit = name_unit<Char>(name, i);
        if (unit == 0) break;
        hash = (hash ^ fold_case(unit)) * 16777619u;
    }
    return hash ^ hash >> 15;
}

/// Several code units at once: whether those of two names are the same without regard to letter case, and none is a
/// terminator. The carry of a sum tells, in the upper bit of each unit, whether the unit is beyond a letter.
template <typename Unit>
bool same_units(const std::uint8_t* left, const std::uint8_t* right) {
    constexpr int bits = 8 * sizeof(Unit);
    constexpr std::uint64_t ones = ~std::uint64_t{0} / static_cast<Unit>(-1), upper = ones << (bits - 1);
    const auto fold = [](std::uint64_t units) {
        const std::uint64_t from_a = (units & ~upper) + (upper - ones * 'A');
        const std::uint64_t beyond_z = (units & ~upper) + (upper - ones * ('Z' + 1));
        return units | ((from_a & ~beyond_z & ~units & upper) >> (bits - 6));
    };
    const auto a = load_at<std::uint64_t>(left), b = load_at<std::uint64_t>(right);
    return fold(a) == fold(b) && ((a - ones) & ~a & upper) == 0;
}

/// Negative, 0 or positive: the order of two names without regard to letter case.
template <typename Char>
int compare_names(const std::uint8_t* a, const std::uint8_t* b) {
    using Unit = std::make_unsigned_t<Char>;
    constexpr std::size_t step = sizeof(std::uint64_t) / sizeof(Unit);
    std::size_t i = 0;
    while (i < VLT_NAME_MAX && same_units<Unit>(a + i * sizeof(Unit), b + i * sizeof(Unit))) i += step;
    for (; i <= VLT_NAME_MAX; ++i) {
        const Unit left = fold_case(name_unit<Char>(a, i)), right = fold_case(name_unit<Char>(b, i));
        if (left != right) return left < right ? -1 : 1;
        if (left == 0) break;
    }
    return 0;
}

/// Copies the name of an entry, with its terminator, into room for VLT_NAME_MAX + 1 code units.
template <typename Char>
void copy_name(Char* to, const std::uint8_t* stored) {
    std::size_t i = 0;
    for (; i < VLT_NAME_MAX && name_unit<Char>(stored, i) != 0; ++i)
        to[i] = static_cast<Char>(name_unit<Char>(stored, i));
    to[i] = 0;
}

}  // namespace vlt

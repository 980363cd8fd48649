// SPDX-License-Identifier: MIT
// Stored names in their two widths. Everything that differs between the narrow and the wide functions is here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "base/ascii_case.h"
#include "vlt/format.h"

/// One code unit of the name in a directory entry, which is not aligned and may lack its terminator when the package
/// is damaged.
template <typename Char>
std::make_unsigned_t<Char> vlt_name_unit(const std::uint8_t* name, std::size_t i) {
    return vlt_load<std::make_unsigned_t<Char>>(name + i * sizeof(Char));
}

/// Length of a caller's name in code units, VLT_NAME_MAX + 1 when it is longer than a name can be.
template <typename Char>
std::size_t vlt_name_length(const Char* name) {
    std::size_t length = 0;
    while (length <= VLT_NAME_MAX && name[length]) ++length;
    return length;
}

/// A hash of a name that letter case does not change. `unit` gives the code unit at a position.
template <typename Unit>
std::uint32_t vlt_name_hash(Unit unit) {
    std::uint32_t hash = 2166136261u;
    for (std::size_t i = 0; i <= VLT_NAME_MAX; ++i) {
        const std::uint32_t value = unit(i);
        if (value == 0) break;
        hash = (hash ^ fold_case(value)) * 16777619u;
    }
    return hash ^ hash >> 15;
}

/// Whether the name in an entry is the caller's, without regard to letter case.
template <typename Char>
bool vlt_name_equals(const std::uint8_t* stored, const Char* name) {
    using Unit = std::make_unsigned_t<Char>;
    for (std::size_t i = 0; i <= VLT_NAME_MAX; ++i) {
        const Unit unit = vlt_name_unit<Char>(stored, i);
        if (fold_case(unit) != fold_case(static_cast<Unit>(name[i]))) return false;
        if (unit == 0) return true;
    }
    return false;
}

/// Whether the names in two entries are equal, without regard to letter case.
template <typename Char>
bool vlt_names_equal(const std::uint8_t* a, const std::uint8_t* b) {
    for (std::size_t i = 0; i <= VLT_NAME_MAX; ++i) {
        const auto left = vlt_name_unit<Char>(a, i);
        if (fold_case(left) != fold_case(vlt_name_unit<Char>(b, i))) return false;
        if (left == 0) return true;
    }
    return true;
}

/// Copies the name of an entry, with its terminator, into room for VLT_NAME_MAX + 1 code units.
template <typename Char>
void vlt_name_copy(Char* to, const std::uint8_t* stored) {
    std::size_t i = 0;
    for (; i < VLT_NAME_MAX && vlt_name_unit<Char>(stored, i) != 0; ++i)
        to[i] = static_cast<Char>(vlt_name_unit<Char>(stored, i));
    to[i] = 0;
}

// SPDX-License-Identifier: MIT
// File handles, and the packages that the two widths of names are for.
#pragma once

#include <cstdint>

#include "vlt/package_table.h"

/// A file handle has 16 bits for its package; files cannot be opened through package handles beyond them.
inline constexpr std::int32_t VLT_FILE_PACKAGE_MAX = 0xFFFF;

inline std::int32_t vlt_file_handle(std::int32_t package, std::int32_t slot) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(package) << 16 | static_cast<std::uint32_t>(slot));
}

inline std::int32_t vlt_slot_of_file(std::uint32_t file) {
    return static_cast<std::int32_t>(file & 0xFFFF);
}

/// The package slot that a file handle names, null when it is not in use.
inline vlt_package* vlt_package_of_file(std::uint32_t file) {
    return vlt_package_at(static_cast<std::int32_t>(file >> 16));
}

/// The package slot of a handle if it stores names of that width, else null.
template <typename Char>
vlt_package* vlt_package_of_width(std::int32_t package) {
    vlt_package* slot = vlt_package_at(package);
    return slot && vlt_package_base(*slot).store->wide_names == (sizeof(Char) > 1) ? slot : nullptr;
}

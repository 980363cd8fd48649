// SPDX-License-Identifier: MIT
// File handles: the package handle in the upper 16 bits, the slot number in the lower ones.
#pragma once

#include <cstdint>

#include "vlt/package_table.h"

namespace vlt {

/// A file handle has 16 bits for its package; files cannot be opened through package handles beyond them.
inline constexpr std::int32_t VLT_FILE_PACKAGE_MAX = 0xFFFF;

inline std::int32_t file_handle(std::int32_t package, std::int32_t slot) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(package) << 16 | static_cast<std::uint32_t>(slot));
}

inline std::int32_t slot_of_file(std::uint32_t file) {
    return static_cast<std::int32_t>(file & 0xFFFF);
}

/// The package slot that a file handle names, null when it is not in use.
inline vlt_package* package_of_file(std::uint32_t file) {
    return package_at(static_cast<std::int32_t>(file >> 16));
}

}  // namespace vlt

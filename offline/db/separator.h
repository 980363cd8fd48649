// SPDX-License-Identifier: MIT
// The names that the characters of a separator have in a schema.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vlt {

/// Bytes that KOfflineDb_ConvertSeparator may need for its result.
inline constexpr std::size_t kSeparatorNamesSize = 256;

/// Turns names of separator characters ("COMMA+TAB") into those characters, or back.
///   text            cut in place when names are turned into characters
///   out             room for kSeparatorNamesSize bytes
///   names_to_chars  not 0: from names to characters
/// False with `out` untouched when nothing comes out, or more than fits.
bool KOfflineDb_ConvertSeparator(char* text, char* out, std::int32_t names_to_chars);

}  // namespace vlt

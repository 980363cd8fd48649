// SPDX-License-Identifier: MIT
// Character boundaries of narrow text in the process's multibyte character set: the runtime library's current
// code page on Windows, the current C locale elsewhere.
#pragma once

namespace vlt {

extern "C" {

/// The character after the one at `text`. A lead byte right before the terminator steps onto the terminator, and
/// the terminator itself steps nowhere.
const char* multibyte_next(const char* text);

/// True when no byte below 0x80 can be the trailing part of a character, so that an ASCII byte can be looked for
/// byte by byte. Asked anew for each text: the character set belongs to the process and may change.
bool multibyte_ascii_is_whole();

}  // extern "C"

}  // namespace vlt

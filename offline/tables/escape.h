// SPDX-License-Identifier: MIT
// Escaping of values, so that they can hold the characters that structure a data file.
//
//     plain character       written as
//     backslash             \\     the escape character itself
//     comma                 \c
//     tab                   \t
//     carriage return       \r
//     line feed             \n
//     slash                 \/     two slashes would begin a comment
//
// KText_Swap is the general engine over any table of such rules. Data files of real size go through escape_decode
// and escape_code, which know the one table by heart and give the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vlt {

inline constexpr char KOFFLINE_ESCAPE_CHAR = '\\';
inline constexpr char KOFFLINE_ESCAPE_TABLE[] = "c:,|t:\t|r:\r|n:\n|/:/";
inline constexpr char KOFFLINE_ENTRY_SEPARATOR = '|';
inline constexpr char KOFFLINE_PAIR_SEPARATOR = ':';

/// Decodes (`direction` 0) or encodes `input` into `output`, which has room for `size` bytes (no limit when negative)
/// and may be the input itself. `table` holds entries "code, pair separator, plain text" between entry separators; an
/// entry for the escape character itself stands in front of them. An entry without a pair separator ends the table.
///
/// Returns 0; 1 when the two separators are equal (nothing is written); 2 when the output does not fit or memory runs
/// out; -p when decoding meets at position p, counted from 1, an escape character that no entry continues. After 2
/// and -p the output holds what was made before.
std::int32_t KText_Swap(const char* input, char escape, const char* table, char entry_separator, char pair_separator,
                        char* output, std::int32_t size, std::int32_t direction);

/// Decodes a value in place and returns its new length; what cannot be decoded ends the value. `ascii_is_whole` is
/// what multibyte_ascii_is_whole() said, asked once for many values.
std::size_t escape_decode(char* text, std::size_t length, bool ascii_is_whole);

/// For each byte, the code that follows the escape character where the byte is written as an escape sequence; 0 where
/// it is written as it is.
struct EscapeCodes {
    char code[256];
    char plain[256];  // the other way: what a code stands for, 0 for no code
};
extern const EscapeCodes kEscapeCodes;

inline char escape_code(char plain) {
    return kEscapeCodes.code[static_cast<unsigned char>(plain)];
}

}  // namespace vlt

// SPDX-License-Identifier: MIT
// Small routines on narrow text in the process's multibyte character set.
//
// A scan for a character steps over double-byte characters whole, so that a trail byte never passes for the
// character that is looked for. Every routine takes null for "no text".
#pragma once

#include <cstddef>
#include <cstdint>

namespace vlt {

/// The character after the one at `text`; the terminator steps nowhere.
const char* KText_NextChar(const char* text);

/// The first character that is the single byte `c`; null when there is none. The terminator is no character.
const char* KText_FindChar(const char* text, char c);

/// The first occurrence of `pattern` that begins at a character boundary; null when there is none. An empty pattern
/// is found at once.
const char* KText_Find(const char* text, const char* pattern);

/// Removes the bytes of `leading` in front and those of `trailing` at the end, in place and byte by byte; a null or
/// empty set removes nothing. Returns `text`.
char* KText_Trim(char* text, const char* leading, const char* trailing);

/// 1 for an integer, 2 for digits with at least one point, 0 for anything else. Signs and blanks may lead.
std::int32_t KText_IsNumber(const char* text);

/// Cuts the text at its first comma, stores in `rest` what follows it (null without a comma) and returns the head,
/// trimmed of blanks and tabs. No text gives null and leaves `rest` alone.
char* KText_SplitComma(char* text, char** rest);

/// The number that an integer text begins with, as `atoi` reads it, but held at the ends of the range instead of
/// running over them: what a target's own runtime library does there differs.
std::int32_t text_to_int(const char* text);

/// Copies as much of a text as fits into `size` bytes, terminator included; the two may overlap. Tells whether all of
/// it fits.
bool text_copy_cut(char* to, std::size_t size, const char* from);

/// The part of a field name that names the field: what follows the first point, or all of it.
const char* text_name_key(const char* name);

}  // namespace vlt

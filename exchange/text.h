// SPDX-License-Identifier: MIT
// Small questions about text. Letter case is that of A to Z, as the database sees it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace exchange {

/// Whether the bytes are UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool is_utf8(std::string_view bytes);

std::string upper(std::string_view text);
std::string lower(std::string_view text);

/// Without blanks and tabs at both ends.
std::string_view trimmed(std::string_view text);

/// The first characters of a text of UTF-8 that have room in so many bytes.
std::string_view shortened(std::string_view text, std::size_t bytes);

/// Two digits a byte, and back; `from_hex` fails with `Error`.
std::string to_hex(std::string_view bytes);
std::string from_hex(std::string_view digits);

}  // namespace exchange

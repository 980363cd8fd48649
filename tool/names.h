// SPDX-License-Identifier: MIT
// Names of stored files as text.
//
// Inside the program a stored name is a byte string that loses nothing: the bytes as stored where names are narrow;
// where they are wide, their UTF-16 as UTF-8, a surrogate without its partner taking three bytes like other units.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tool/system.h"

namespace tool {

std::u16string utf16_of_name(std::string_view stored);
std::string name_of_utf16(std::u16string_view wide);

/// Whether a code page is UTF-8, which none stands for as well.
bool is_utf8_name(std::string name);

/// The stored form of names without regard to the case of A to Z, as the library compares them.
std::string folded(std::string_view stored);

class Names {
public:
    /// `encoding` is the code page of narrow names; empty or UTF-8 for none.
    Names(bool wide, const std::string& encoding);

    /// For people: what cannot be shown stands as `\xHH`, a byte of the stored form each. Nothing is lost: a
    /// backslash that would look like the start of such a byte stands as `\x5c`.
    std::string shown(std::string_view stored) const { return text(stored, true); }

    /// For programs and paths: as UTF-8, bytes that are no text unchanged.
    std::string plain(std::string_view stored) const { return text(stored, false); }

    /// Whether `plain` is UTF-8.
    bool is_text(std::string_view stored) const;

    /// The stored form of a text; nothing where the package cannot store it (too long, not in the code page).
    std::optional<std::string> stored(std::string_view text) const;

    /// Like `stored`, for what people type: `\xHH` stands for a byte of the stored form.
    std::optional<std::string> typed(std::string_view text) const;

    /// The bytes in the package, in hexadecimal.
    std::string hex(std::string_view stored) const;

    bool wide() const { return wide_; }

private:
    std::string text(std::string_view stored, bool for_people) const;
    std::size_t decode(std::string_view bytes, std::string& text) const;
    bool encode(std::string_view text, std::string& stored) const;
    bool fits(const std::string& stored) const;

    bool wide_;
    std::shared_ptr<CodePage> page_;
};

/// The number of bytes of the UTF-8 character that `text` starts with; 0 when it starts with none.
std::size_t utf8_length(std::string_view text);

/// A text for one line of a terminal: control characters and bytes that are no UTF-8 as `\xHH`.
std::string shown_text(std::string_view text);

}  // namespace tool

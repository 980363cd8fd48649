// SPDX-License-Identifier: MIT
#include "offline/db/separator.h"

#include <cstring>

#include "base/ascii_case.h"
#include "offline/tables/text.h"

namespace vlt {

namespace {

struct NamedCharacter {
    char character;
    const char* further;  // as written after other characters; without the '+' in front of them
};

constexpr NamedCharacter kNamedCharacters[] = {{'\t', "+TAB"}, {' ', "+BLANK"}, {',', "+COMMA"}, {';', "+SEMICOLON"}};

/// The text made so far; once a piece does not fit, nothing comes of it.
class Result {
public:
    void append(const char* piece, std::size_t length) {
        fits_ = fits_ && length < sizeof text_ - length_;
        if (!fits_) return;
        std::memcpy(text_ + length_, piece, length);
        length_ += length;
    }

    bool empty() const { return length_ == 0; }

    bool store(char* out) const {
        if (!fits_ || empty()) return false;
        std::memcpy(out, text_, length_);
        out[length_] = 0;
        return true;
    }

private:
    char text_[kSeparatorNamesSize];
    std::size_t length_ = 0;
    bool fits_ = true;
};

void append_meaning(Result& result, const char* piece) {
    for (const NamedCharacter& named : kNamedCharacters) {
        if (equals_fold(piece, named.further + 1)) return result.append(&named.character, 1);
    }
    result.append(piece, std::strlen(piece));
}

bool names_into_characters(char* text, char* out) {
    Result result;
    char* piece = text;
    for (char* at = text;;) {
        char* next = const_cast<char*>(KText_NextChar(at));
        const char c = *at;
        if (c == 0 || c == '+' || c == '&') {
            *at = 0;
            append_meaning(result, KText_Trim(piece, " \t", " \t"));
            piece = next;
        }
        if (c == 0) return result.store(out);
        at = next;
    }
}

void append_name(Result& result, const char* character, std::size_t length) {
    for (const NamedCharacter& named : kNamedCharacters) {
        if (*character != named.character) continue;
        const char* name = result.empty() ? named.further + 1 : named.further;
        return result.append(name, std::strlen(name));
    }
    result.append(character, length);
}

bool characters_into_names(const char* text, char* out) {
    Result result;
    while (*text) {
        const char* next = KText_NextChar(text);
        append_name(result, text, static_cast<std::size_t>(next - text));
        text = next;
    }
    return result.store(out);
}

}  // namespace

bool KOfflineDb_ConvertSeparator(char* text, char* out, std::int32_t names_to_chars) {
    if (!text || !out) return false;
    return names_to_chars ? names_into_characters(text, out) : characters_into_names(text, out);
}

}  // namespace vlt

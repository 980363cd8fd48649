// SPDX-License-Identifier: MIT
#include "exchange/json_text.h"

#include <array>

#include "exchange/text.h"

namespace exchange {

namespace {

enum CharacterKind : unsigned char { kPlain, kEscaped, kHigh };

constexpr std::array<CharacterKind, 256> kinds() {
    std::array<CharacterKind, 256> result{};
    for (std::size_t c = 0; c < 256; ++c)
        result[c] = c >= 0x80 ? kHigh : c < 0x20 || c == '"' || c == '\\' ? kEscaped : kPlain;
    return result;
}
constexpr std::array<CharacterKind, 256> kKinds = kinds();

CharacterKind kind_of(char c) {
    return kKinds[static_cast<unsigned char>(c)];
}

void add_escape(Output& output, char c) {
    output.add('\\');
    switch (c) {
        case '"':
        case '\\':
            return output.add(c);
        case '\n':
            return output.add('n');
        case '\r':
            return output.add('r');
        case '\t':
            return output.add('t');
        default:
            output.add("u00");
            output.add(to_hex({&c, 1}));
    }
}

/// A text that is not plain ASCII without escapes.
void add_other(Output& output, std::string_view text) {
    if (!is_utf8(text)) return output.add("{\"hex\":\"" + to_hex(text) + "\"}");
    output.add('"');
    for (const char c : text) kind_of(c) == kEscaped ? add_escape(output, c) : output.add(c);
    output.add('"');
}

}  // namespace

void add_json(Output& output, std::string_view text) {
    char* const room = output.room(text.size() + 2);
    room[0] = '"';
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (kind_of(text[i]) != kPlain) return add_other(output, text);
        room[i + 1] = text[i];
    }
    room[text.size() + 1] = '"';
    output.added(text.size() + 2);
}

}  // namespace exchange

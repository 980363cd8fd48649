// SPDX-License-Identifier: MIT
#include "tool/names.h"

#include <fmt/format.h>
#include <algorithm>
#include <cctype>

#include "include/vlt.h"

namespace tool {

namespace {

constexpr std::uint32_t kNoCharacter = 0xffffffff;

std::uint8_t byte_at(std::string_view text, std::size_t at) {
    return static_cast<std::uint8_t>(text[at]);
}

/// Reads one character in UTF-8's form, surrogates included; stores its length.
std::uint32_t read_utf8(std::string_view text, std::size_t* length) {
    const std::uint8_t first = byte_at(text, 0);
    *length = first < 0x80 ? 1 : first < 0xc2 ? 0 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : first < 0xf5 ? 4 : 0;
    if (*length == 0 || *length > text.size()) return kNoCharacter;
    std::uint32_t character = *length == 1 ? first : first & (0x7fu >> *length);
    for (std::size_t i = 1; i < *length; ++i) {
        if ((byte_at(text, i) & 0xc0) != 0x80) return kNoCharacter;
        character = character << 6 | (byte_at(text, i) & 0x3f);
    }
    const bool too_long = (*length == 3 && character < 0x800) || (*length == 4 && character < 0x10000);
    return too_long || character > 0x10ffff ? kNoCharacter : character;
}

void write_utf8(std::uint32_t character, std::string& text) {
    const auto put = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80) return put(character);
    if (character < 0x800) return put(0xc0 | character >> 6), put(0x80 | (character & 0x3f));
    if (character < 0x10000) {
        put(0xe0 | character >> 12);
    } else {
        put(0xf0 | character >> 18);
        put(0x80 | (character >> 12 & 0x3f));
    }
    put(0x80 | (character >> 6 & 0x3f));
    put(0x80 | (character & 0x3f));
}

bool is_surrogate(std::uint32_t character) {
    return character >= 0xd800 && character < 0xe000;
}

/// Control characters, and those that turn or break the line they stand in.
bool can_be_shown(std::uint32_t c) {
    const bool control = c < 0x20 || (c >= 0x7f && c < 0xa0);
    const bool direction = c == 0x200e || c == 0x200f || (c >= 0x2028 && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069);
    return !control && !direction && c != 0xfeff && c != kNoCharacter && !is_surrogate(c);
}

int hex_digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

bool starts_with_escape(std::string_view text) {
    return text.size() >= 4 && text[0] == '\\' && text[1] == 'x' && hex_digit(text[2]) >= 0 &&
           hex_digit(text[3]) >= 0;
}

void write_escaped(std::string_view bytes, std::string& text) {
    for (const char byte : bytes) text += fmt::format("\\x{:02x}", static_cast<std::uint8_t>(byte));
}

}  // namespace

bool is_utf8_name(std::string name) {
    for (char& letter : name) letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    return name.empty() || name == "UTF-8" || name == "UTF8" || name == "CP65001";
}

std::size_t utf8_length(std::string_view text) {
    if (text.empty()) return 0;
    std::size_t length = 0;
    const std::uint32_t character = read_utf8(text, &length);
    return character == kNoCharacter || is_surrogate(character) ? 0 : length;
}

std::string shown_text(std::string_view text) {
    return Names(false, "").shown(text);
}

std::u16string utf16_of_name(std::string_view stored) {
    std::u16string wide;
    for (std::size_t length = 0; !stored.empty(); stored.remove_prefix(length)) {
        std::uint32_t character = read_utf8(stored, &length);
        if (character == kNoCharacter) character = 0xfffd, length = 1;
        if (character >= 0x10000) {
            wide += static_cast<char16_t>(0xd7c0 + (character >> 10));
            character = 0xdc00 | (character & 0x3ff);
        }
        wide += static_cast<char16_t>(character);
    }
    return wide;
}

std::string name_of_utf16(std::u16string_view wide) {
    std::string stored;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        std::uint32_t character = wide[i];
        const bool pair = (character & 0xfc00) == 0xd800 && i + 1 < wide.size() && (wide[i + 1] & 0xfc00) == 0xdc00;
        if (pair) character = ((character & 0x3ff) << 10 | (wide[++i] & 0x3ffu)) + 0x10000;
        write_utf8(character, stored);
    }
    return stored;
}

std::string folded(std::string_view stored) {
    std::string result(stored);
    for (char& letter : result)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter + ('a' - 'A'));
    return result;
}

Names::Names(bool wide, const std::string& encoding)
    : wide_(wide), page_(wide || is_utf8_name(encoding) ? nullptr : std::make_shared<CodePage>(encoding)) {}

/// One character of the stored form as UTF-8; returns how many bytes it has, 0 when it is no text.
std::size_t Names::decode(std::string_view bytes, std::string& text) const {
    const bool ascii = byte_at(bytes, 0) < 0x80;
    if (page_ && !ascii) return page_->decode(bytes, text);
    const std::size_t length = utf8_length(bytes);
    text.append(bytes.substr(0, length));
    return length;
}

bool Names::encode(std::string_view text, std::string& stored) const {
    if (page_) return page_->encode(text, stored);
    stored += text;
    return true;
}

bool Names::fits(const std::string& stored) const {
    if (stored.find('\0') != std::string::npos) return false;
    return (wide_ ? utf16_of_name(stored).size() : stored.size()) <= VLT_NAME_MAX;
}

std::string Names::text(std::string_view stored, bool for_people) const {
    const auto plain = [](char c) { return c >= ' ' && c < 0x7f && c != '\\'; };
    if (std::all_of(stored.begin(), stored.end(), plain)) return std::string(stored);
    std::string result, character;
    while (!stored.empty()) {
        character.clear();
        const std::size_t length = decode(stored, character);
        const std::string_view bytes = stored.substr(0, std::max<std::size_t>(length, 1));
        std::size_t unused = 0;
        const bool good = length > 0 && can_be_shown(read_utf8(character, &unused)) && !starts_with_escape(stored);
        if (good || (length > 0 && !for_people))
            result += character;
        else if (for_people)
            write_escaped(bytes, result);
        else
            result += bytes;
        stored.remove_prefix(bytes.size());
    }
    return result;
}

bool Names::is_text(std::string_view stored) const {
    std::string character;
    while (!stored.empty()) {
        const std::size_t length = decode(stored, character);
        if (length == 0) return false;
        stored.remove_prefix(length);
    }
    return true;
}

std::optional<std::string> Names::stored(std::string_view text) const {
    std::string result;
    if (!encode(text, result)) {
        // Bytes that are no text came from a host file's name; a code page takes them as they are.
        result.clear();
        while (!text.empty()) {
            const std::size_t length = utf8_length(text);
            if (length > 0 && !encode(text.substr(0, length), result)) return std::nullopt;
            if (length == 0) result += text[0];
            text.remove_prefix(std::max<std::size_t>(length, 1));
        }
    }
    if (!fits(result) || (wide_ && name_of_utf16(utf16_of_name(result)) != result)) return std::nullopt;
    return result;
}

std::optional<std::string> Names::typed(std::string_view text) const {
    std::string result;
    while (!text.empty()) {
        if (starts_with_escape(text)) {
            result += static_cast<char>(hex_digit(text[2]) << 4 | hex_digit(text[3]));
            text.remove_prefix(4);
            continue;
        }
        const std::size_t end = std::min(text.find('\\', 1), text.size());
        const auto part = stored(text.substr(0, end));
        if (!part) return std::nullopt;
        result += *part;
        text.remove_prefix(end);
    }
    return fits(result) ? std::optional(result) : std::nullopt;
}

std::string Names::hex(std::string_view stored) const {
    std::string result;
    if (!wide_) {
        for (const char byte : stored) result += fmt::format("{:02x}", static_cast<std::uint8_t>(byte));
    } else {
        for (const char16_t unit : utf16_of_name(stored))
            result += fmt::format("{:02x}{:02x}", unit & 0xff, unit >> 8);
    }
    return result;
}

}  // namespace tool

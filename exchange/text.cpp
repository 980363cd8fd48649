// SPDX-License-Identifier: MIT
#include "exchange/text.h"

#include <algorithm>

#include "exchange/error.h"

namespace exchange {

namespace {

/// The least second byte and the greatest, and the length, of the UTF-8 sequences that begin with a byte.
struct Lead {
    unsigned length = 0;
    unsigned char second_least = 0x80, second_greatest = 0xBF;
};

Lead lead_of(unsigned char byte) {
    if (byte >= 0xC2 && byte <= 0xDF) return {2};
    if (byte == 0xE0) return {3, 0xA0};
    if (byte == 0xED) return {3, 0x80, 0x9F};
    if (byte >= 0xE1 && byte <= 0xEF) return {3};
    if (byte == 0xF0) return {4, 0x90};
    if (byte >= 0xF1 && byte <= 0xF3) return {4};
    if (byte == 0xF4) return {4, 0x80, 0x8F};
    return {};
}

int digit_of(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    throw Error("not a hexadecimal digit");
}

std::string mapped(std::string_view text, char first, char last, int shift) {
    std::string result(text);
    for (char& c : result)
        if (c >= first && c <= last) c = static_cast<char>(c + shift);
    return result;
}

}  // namespace

bool is_utf8(std::string_view bytes) {
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto* const end = p + bytes.size();
    while (p != end) {
        if (*p < 0x80) {
            ++p;
            continue;
        }
        const Lead lead = lead_of(*p);
        if (lead.length == 0 || end - p < static_cast<std::ptrdiff_t>(lead.length)) return false;
        if (p[1] < lead.second_least || p[1] > lead.second_greatest) return false;
        if (!std::all_of(p + 2, p + lead.length, [](unsigned char c) { return (c & 0xC0) == 0x80; })) return false;
        p += lead.length;
    }
    return true;
}

std::string upper(std::string_view text) {
    return mapped(text, 'a', 'z', 'A' - 'a');
}

std::string lower(std::string_view text) {
    return mapped(text, 'A', 'Z', 'a' - 'A');
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string_view shortened(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0) == 0x80) --bytes;
    return text.substr(0, bytes);
}

std::string to_hex(std::string_view bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string result;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        result += digits[byte >> 4];
        result += digits[byte & 15];
    }
    return result;
}

std::string from_hex(std::string_view digits) {
    if (digits.size() % 2 != 0) throw Error("an odd number of hexadecimal digits");
    std::string result;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        result += static_cast<char>(digit_of(digits[i]) << 4 | digit_of(digits[i + 1]));
    return result;
}

}  // namespace exchange

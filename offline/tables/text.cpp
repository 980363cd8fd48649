// SPDX-License-Identifier: MIT
#include "offline/tables/text.h"

#include <cstring>
#include <limits>

#include "platform/multibyte.h"

namespace vlt {

namespace {

constexpr char kBlanks[] = " \t";

bool in_set(const char* set, char c) {
    return c != 0 && KText_FindChar(set, c) != nullptr;
}

bool starts_with(const char* text, const char* pattern) {
    while (*pattern && *text == *pattern) ++text, ++pattern;
    return *pattern == 0;
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

const char* KText_NextChar(const char* text) {
    return multibyte_next(text);
}

const char* KText_FindChar(const char* text, char c) {
    if (!text) return nullptr;
    for (; *text; text = multibyte_next(text)) {
        if (*text == c) return text;
    }
    return nullptr;
}

const char* KText_Find(const char* text, const char* pattern) {
    if (!text || !pattern) return nullptr;
    if (*pattern == 0) return text;
    for (; *text; text = multibyte_next(text)) {
        if (starts_with(text, pattern)) return text;
    }
    return nullptr;
}

char* KText_Trim(char* text, const char* leading, const char* trailing) {
    if (!text) return nullptr;
    char* begin = text;
    while (in_set(leading, *begin)) ++begin;
    char* end = begin + std::strlen(begin);
    while (end > begin && in_set(trailing, end[-1])) *--end = 0;
    if (begin != text) std::memmove(text, begin, static_cast<std::size_t>(end - begin) + 1);
    return text;
}

std::int32_t KText_IsNumber(const char* text) {
    if (!text) return 0;
    while (*text == '-' || *text == '+' || *text == ' ') ++text;
    if (*text == 0) return 0;
    std::int32_t kind = 1;
    for (; *text; ++text) {
        if (*text == '.') {
            kind = 2;
        } else if (!is_digit(*text)) {
            return 0;
        }
    }
    return kind;
}

char* KText_SplitComma(char* text, char** rest) {
    if (!text) return nullptr;
    char* comma = std::strchr(text, ',');
    if (comma) *comma = 0;
    *rest = comma ? comma + 1 : nullptr;
    return KText_Trim(text, kBlanks, kBlanks);
}

std::int32_t text_to_int(const char* text) {
    while (*text == ' ') ++text;
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+') ++text;
    constexpr std::int64_t limit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
    std::int64_t value = 0;
    for (; is_digit(*text) && value < limit; ++text) value = value * 10 + (*text - '0');
    if (value >= limit)
        return negative ? std::numeric_limits<std::int32_t>::min() : std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(negative ? -value : value);
}

bool text_copy_cut(char* to, std::size_t size, const char* from) {
    const std::size_t length = ::strnlen(from, size);
    const std::size_t kept = length < size ? length : size - 1;
    std::memmove(to, from, kept);
    to[kept] = 0;
    return kept == length;
}

const char* text_name_key(const char* name) {
    const char* point = KText_FindChar(name, '.');
    return point ? point + 1 : name;
}

}  // namespace vlt

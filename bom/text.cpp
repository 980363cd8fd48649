// SPDX-License-Identifier: MIT
#include "bom/text.h"

namespace bom {

namespace {

char small(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

std::string folded(const char* text) {
    std::string result(text);
    for (char& c : result) c = small(c);
    return result;
}

std::uint32_t folded_hash(const char* text) {
    std::uint64_t hash = 0;
    for (; *text; ++text) hash = (hash + static_cast<unsigned char>(small(*text))) * 0x9E3779B97F4A7C15;
    return static_cast<std::uint32_t>(hash >> 32);
}

int compare_folded(const char* a, const char* b) {
    while (*a && small(*a) == small(*b)) ++a, ++b;
    return static_cast<unsigned char>(small(*a)) - static_cast<unsigned char>(small(*b));
}

}  // namespace bom

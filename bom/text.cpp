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

int compare_folded(const char* a, const char* b) {
    while (*a && small(*a) == small(*b)) ++a, ++b;
    return static_cast<unsigned char>(small(*a)) - static_cast<unsigned char>(small(*b));
}

}  // namespace bom

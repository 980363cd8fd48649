// SPDX-License-Identifier: MIT
#include "tool/safe_names.h"

#include <algorithm>

#include "tool/names.h"

namespace tool {

namespace {

#if defined(_WIN32)
constexpr bool kWindows = true;
#else
constexpr bool kWindows = false;
#endif

bool is_control(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

bool only_windows_forbids(char c) {
    return std::string_view(":<>\"|?*").find(c) != std::string_view::npos;
}

/// CON, PRN, AUX, NUL, COM1 and the like are devices, also with something behind a point.
bool is_device(const std::string& part) {
    std::string stem = folded(part.substr(0, part.find('.')));
    while (!stem.empty() && stem.back() == ' ') stem.pop_back();
    for (const char* device : {"con", "prn", "aux", "nul", "conin$", "conout$", "clock$"})
        if (stem == device) return true;
    const std::string start = stem.substr(0, 3);
    const bool numbered = start == "com" || start == "lpt";
    const std::string number = stem.size() > 3 ? stem.substr(3) : "";
    return numbered && ((number.size() == 1 && number[0] >= '0' && number[0] <= '9') || number == "\xc2\xb9" ||
                        number == "\xc2\xb2" || number == "\xc2\xb3");
}

std::string refusal_of_part(const std::string& part, NameRules rules) {
    if (part.empty()) return "it has an empty part";
    if (part == "." || part == "..") return "it leads out of the folder, or to itself";
    if (part.size() > 255) return "a part of it is longer than 255 bytes";
    if (std::any_of(part.begin(), part.end(), is_control)) return "it has control characters";
    if (!kWindows && rules == NameRules::native) return "";
    if (std::any_of(part.begin(), part.end(), only_windows_forbids))
        return "Windows cannot have one of its characters";
    if (part.back() == '.' || part.back() == ' ') return "Windows drops the point or blank at its end";
    if (is_device(part)) return "Windows has a device of that name";
    return "";
}

std::string safe_part(std::string part) {
    for (char& c : part)
        if (is_control(c) || only_windows_forbids(c)) c = '_';
    for (std::size_t i = part.size(); i-- > 0 && (part[i] == '.' || part[i] == ' ');) part[i] = '_';
    if (part.size() > 255) part.resize(255);
    return is_device(part) ? "_" + part : part;
}

/// Capital letters of Latin, Greek and Cyrillic as small ones.
char16_t small_letter(char16_t c) {
    if ((c >= 'A' && c <= 'Z') || (c >= 0xc0 && c <= 0xde && c != 0xd7)) return static_cast<char16_t>(c + 32);
    if ((c >= 0x391 && c <= 0x3a9) || (c >= 0x410 && c <= 0x42f)) return static_cast<char16_t>(c + 32);
    if (c >= 0x400 && c <= 0x40f) return static_cast<char16_t>(c + 80);
    const bool odd_is_small =
        (c >= 0x100 && c <= 0x137) || (c >= 0x14a && c <= 0x177) || (c >= 0x1e00 && c <= 0x1eff);
    const bool even_is_small = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17e);
    if ((odd_is_small && c % 2 == 0) || (even_is_small && c % 2 == 1)) return static_cast<char16_t>(c + 1);
    return c;
}

}  // namespace

std::vector<std::string> parts_of_name(const std::string& name) {
    std::vector<std::string> parts(1);
    for (const char c : name)
        if (c == '/' || c == '\\')
            parts.emplace_back();
        else
            parts.back() += c;
    return parts;
}

std::string refusal_of(const std::string& name, NameRules rules) {
    if (name.empty()) return "it is empty";
    if (name[0] == '/' || name[0] == '\\') return "it is absolute";
    for (const std::string& part : parts_of_name(name)) {
        std::string refusal = refusal_of_part(part, rules);
        if (!refusal.empty()) return refusal;
    }
    return "";
}

std::string safe_name(const std::string& name) {
    std::string result;
    for (const std::string& part : parts_of_name(name))
        if (!part.empty()) result += (result.empty() ? "" : "/") + safe_part(part);
    return result.empty() ? "_" : result;
}

std::string case_folded(const std::string& name) {
    std::u16string wide = utf16_of_name(name);
    for (char16_t& c : wide) c = c == u'\\' ? u'/' : small_letter(c);
    return name_of_utf16(wide);
}

}  // namespace tool

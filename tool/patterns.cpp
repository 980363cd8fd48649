// SPDX-License-Identifier: MIT
#include "tool/patterns.h"

#include <algorithm>

#include "tool/failure.h"

namespace tool {

namespace {

std::string_view take_character(std::string_view& text) {
    const std::string_view character = text.substr(0, std::max<std::size_t>(utf8_length(text), 1));
    text.remove_prefix(character.size());
    return character;
}

/// Takes `[...]` off the pattern and tells whether the character is in it. Without an end, '[' stands for itself.
bool matches_set(std::string_view& pattern, std::string_view character) {
    std::size_t end = pattern.find(']', pattern.size() > 1 && pattern[1] == '!' ? 3 : 2);
    if (end == std::string_view::npos) {
        pattern.remove_prefix(1);
        return character == "[";
    }
    std::string_view set = pattern.substr(1, end - 1);
    pattern.remove_prefix(end + 1);
    const bool wanted = set[0] != '!';
    if (!wanted) set.remove_prefix(1);
    while (!set.empty()) {
        const std::string_view first = take_character(set);
        std::string_view last = first;
        if (set.size() > 1 && set[0] == '-') {
            set.remove_prefix(1);
            last = take_character(set);
        }
        if (character >= first && character <= last) return wanted;
    }
    return !wanted;
}

bool matches_character(std::string_view& pattern, std::string_view character) {
    if (pattern[0] == '[') return matches_set(pattern, character);
    return take_character(pattern) == character;
}

/// Goes back to the last '*' only: any text that an earlier one could take, the last one can take as well.
bool matches_folded(std::string_view pattern, std::string_view text) {
    std::string_view after_star, star_text;
    bool star = false;
    while (!text.empty()) {
        if (!pattern.empty() && pattern[0] == '*') {
            star = true;
            after_star = pattern = pattern.substr(1);
            star_text = text;
            continue;
        }
        const std::string_view character = take_character(text);
        if (!pattern.empty() && pattern[0] == '?') {
            pattern.remove_prefix(1);
            continue;
        }
        if (!pattern.empty() && matches_character(pattern, character)) continue;
        if (!star) return false;
        take_character(star_text);
        text = star_text;
        pattern = after_star;
    }
    return pattern.find_first_not_of('*') == std::string_view::npos;
}

}  // namespace

bool is_pattern(const std::string& text) {
    return text.find_first_of("*?[") != std::string::npos;
}

bool matches(std::string_view pattern, std::string_view text) {
    return matches_folded(folded(pattern), folded(text));
}

Selection::Selection(const std::vector<std::string>& patterns, const Names& names, Folders folders)
    : names_(names), folders_(folders) {
    for (const std::string& text : patterns) {
        auto name = names.typed(text);
        if (name) name = folded(*name);
        patterns_.push_back({text, name, is_pattern(text)});
    }
}

bool Selection::selects(const Pattern& pattern, const std::string& name, const std::string& shown) const {
    if (name == pattern.name || shown == folded(pattern.text)) return true;
    const std::string start = pattern.name.value_or("");
    const bool folder = folders_ == Folders::whole && !start.empty() && name.size() > start.size() &&
                        name.compare(0, start.size(), start) == 0 &&
                        (start.back() == '/' || name[start.size()] == '/');
    return folder || (pattern.wildcard && matches(pattern.text, shown));
}

bool Selection::selects(const std::string& stored) {
    if (patterns_.empty()) return true;
    const std::string name = folded(stored), shown = folded(names_.shown(stored));
    bool selected = false;
    for (Pattern& pattern : patterns_)
        if (selects(pattern, name, shown)) pattern.used = selected = true;
    return selected;
}

bool Selection::report_unused(const std::string& package) const {
    for (const std::string& text : unused()) warn(package + ": nothing is named '" + shown_text(text) + "'");
    return !unused().empty();
}

std::vector<std::string> Selection::unused() const {
    std::vector<std::string> result;
    for (const Pattern& pattern : patterns_)
        if (!pattern.used) result.push_back(pattern.text);
    return result;
}

}  // namespace tool

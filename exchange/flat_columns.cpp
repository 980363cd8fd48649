// SPDX-License-Identifier: MIT
#include "exchange/flat_columns.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "exchange/text.h"

namespace exchange {

namespace {

constexpr std::size_t kFieldNameMax = 32;

struct KnownRole {
    const char* name;
    std::initializer_list<std::string_view> headings;
};

const std::array<KnownRole, kRoleCount> kRoles = {{
    {"level", {"level", "depth", "lvl", "bom level", "structure level", "indent level", "indenture level", "indent"}},
    {"item", {"item no", "item number", "item", "position", "pos", "pos no", "find no", "find number", "id", "no"}},
    {"parent",
     {"parent part number", "parent number", "parent code", "parent id", "parent part", "parent item", "parent no",
      "parent", "next assembly", "assembly", "used in"}},
    {"code",
     {"part number", "part no", "part id", "part code", "number", "code", "item code", "article number", "article no",
      "part"}},
    {"name", {"name", "part name", "item name", "description", "designation", "title"}},
    {"quantity", {"qty", "quantity", "count", "qty per", "quantity per", "qty per assembly", "amount"}},
}};

bool is_word_character(char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || (static_cast<unsigned char>(c) & 0x80) != 0;
}

}  // namespace

std::string heading_words(std::string_view heading) {
    std::string words;
    bool gap = false;
    for (const char c : lower(heading)) {
        if (!is_word_character(c)) {
            gap = true;
            continue;
        }
        if (gap && !words.empty()) words += ' ';
        gap = false;
        words += c;
    }
    return words;
}

void guess_roles(std::span<const std::string> headings, const std::vector<bool>& taken, Roles& roles) {
    std::vector<std::string> words;
    for (const std::string& heading : headings) words.push_back(heading_words(heading));
    for (std::size_t role = 0; role < kRoleCount; ++role)
        for (const std::string_view known : kRoles[role].headings)
            for (std::size_t c = 0; c < words.size(); ++c)
                if (!roles[role] && !taken[c] && words[c] == known) roles[role] = c;
    // With a structure told otherwise, an item number may be the only code.
    if (!roles[kCode] && (roles[kLevel] || roles[kParent])) roles[kCode] = std::exchange(roles[kItemNumber], {});
}

std::optional<Role> role_of(std::string_view name) {
    for (std::size_t role = 0; role < kRoleCount; ++role)
        if (lower(name) == kRoles[role].name) return static_cast<Role>(role);
    return {};
}

const char* role_name(Role role) {
    return kRoles[role].name;
}

std::string field_name(std::string_view heading) {
    std::string name;
    for (const char c : trimmed(heading))
        name += static_cast<unsigned char>(c) < 0x20 || c == ',' || c == '.' || c == '/' ? '_' : c;
    return std::string(trimmed(shortened(name, kFieldNameMax)));
}

std::string flat_template(Notation notation) {
    const char* const structure[] = {"Level", "Item No.", "Parent"};
    return std::string(structure[static_cast<std::size_t>(notation)]) + ",Part Number,Name,Quantity\r\n";
}

}  // namespace exchange

// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tool/names.h"

namespace tool {

/// Whether a text matches a pattern: `*` any characters, `?` one character, `[a-z]` and `[!a-z]` one of a set. '/' is
/// a character like others. The case of A to Z does not count.
bool matches(std::string_view pattern, std::string_view text);

bool is_pattern(const std::string& text);

/// Whether the name of a folder selects what lies in it.
enum class Folders { whole, none };

/// Names and patterns as given on the command line, and which of them matched nothing.
class Selection {
public:
    /// No patterns select everything.
    Selection(const std::vector<std::string>& patterns, const Names& names, Folders folders = Folders::whole);

    /// A name is selected by itself, by a pattern, and by the name of a folder above it.
    bool selects(const std::string& stored);

    /// The arguments that selected nothing so far.
    std::vector<std::string> unused() const;
    /// Says so on stderr; returns whether there are any.
    bool report_unused(const std::string& package) const;

private:
    struct Pattern {
        std::string text;                 // as given
        std::optional<std::string> name;  // the stored name that it may be, folded
        bool wildcard, used = false;
    };
    bool selects(const Pattern& pattern, const std::string& name, const std::string& shown) const;

    const Names& names_;
    Folders folders_;
    std::vector<Pattern> patterns_;
};

}  // namespace tool

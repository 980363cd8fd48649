// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace exchange {

/// Something in a flat bill of material that disagrees. An error leaves the product in doubt, and nothing is imported
/// unless the user accepts what its text says is done instead.
struct Finding {
    bool error = false;
    std::int64_t line = 0;  // of the file, from 1
    std::string kind;       // such as "jump", "name", "contents"
    std::string code;       // of the item in question, or empty
    std::string field;      // that differs, or empty
    std::string before, after;
    std::string text;
};

using Findings = std::vector<Finding>;

}  // namespace exchange

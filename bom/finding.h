// SPDX-License-Identifier: MIT
// What is wrong with a database, as db check tells it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bom {

struct Finding {
    std::string kind;  // a word that does not change, such as "dangling-link"
    std::string text;  // what is wrong, for people

    std::string file{};      // the data file or document, or empty
    std::uint32_t line = 0;  // in the file, from 1; 0 for the file as a whole

    std::string code{};             // of the item, drawing or process plan, where there is one
    std::string field{};            // the field that holds the value
    std::string before{}, after{};  // the value, and what a load or a save makes of it
};

using Findings = std::vector<Finding>;

}  // namespace bom

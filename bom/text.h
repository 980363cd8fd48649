// SPDX-License-Identifier: MIT
// Texts as the database compares them: codes, NIDs and field names, without regard to the case of A to Z.
#pragma once

#include <cstdint>
#include <string>

namespace bom {

/// The text with the letters A to Z made small.
std::string folded(const char* text);

/// The same for texts that compare_folded finds equal.
std::uint32_t folded_hash(const char* text);

/// Negative, 0 or positive, in the order of an index.
int compare_folded(const char* a, const char* b);

}  // namespace bom

// SPDX-License-Identifier: MIT
// Comparison without regard to letter case, for the ASCII letters only: stored names, field names, keywords and
// codes compare the same way under every locale and on every target.
#pragma once

namespace vlt {

/// A to Z become a to z; every other code unit stays as it is.
template <typename Unit>
constexpr Unit fold_case(Unit unit) {
    return unit >= Unit('A') && unit <= Unit('Z') ? static_cast<Unit>(unit + ('a' - 'A')) : unit;
}

/// Negative, 0 or positive, as `strcmp` after folding; bytes from 0x80 on compare as unsigned values.
inline int compare_fold(const char* a, const char* b) {
    for (;; ++a, ++b) {
        const auto left = fold_case(static_cast<unsigned char>(*a));
        const auto right = fold_case(static_cast<unsigned char>(*b));
        if (left != right) return left < right ? -1 : 1;
        if (left == 0) return 0;
    }
}

inline bool equals_fold(const char* a, const char* b) {
    return compare_fold(a, b) == 0;
}

}  // namespace vlt

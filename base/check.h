// SPDX-License-Identifier: MIT
// Builds with sanitizers compare every derived structure with the plain truth after each operation.
#pragma once

#include <cstdlib>

#ifndef VLT_CHECK_DERIVED
#define VLT_CHECK_DERIVED 0
#endif

inline constexpr bool check_derived = VLT_CHECK_DERIVED != 0;

/// Ends the process when a derived structure has left the truth; a build without the checks never calls it.
inline void check_truth(bool holds) {
    if (!holds) std::abort();
}

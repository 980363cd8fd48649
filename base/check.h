// SPDX-License-Identifier: MIT
// Builds with sanitizers compare every derived structure after each operation with what it is derived from.
#pragma once

#include <cstdlib>

#ifndef VLT_CHECK_DERIVED
#define VLT_CHECK_DERIVED 0
#endif

namespace vlt {

inline constexpr bool check_derived = VLT_CHECK_DERIVED != 0;

/// Ends the process when an invariant of a derived structure does not hold. Builds without the checks never call it.
inline void check_truth(bool holds) {
    if (!holds) std::abort();
}

}  // namespace vlt

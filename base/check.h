// SPDX-License-Identifier: MIT
// Builds that define VLT_CHECK_DERIVED, as those with sanitizers do, compare derived structures with what they are
// derived from. The two files plain_truth.cpp say which, and up to what size.
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

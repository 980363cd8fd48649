// SPDX-License-Identifier: MIT
// Keeps the sums of a sealed package right while its files change.
#pragma once

#include "tool/package.h"

namespace tool {

/// Stores the sums anew, if the package has any and the changes concern them. Called when a package that was written
/// is closed.
void keep_sums(Package& package, const Changes& changes);

}  // namespace tool

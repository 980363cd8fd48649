// SPDX-License-Identifier: MIT
// Who may open a stored file that is open already.
#pragma once

#include <cstdint>

#include "vlt/store.h"

namespace vlt {

/// Whether a file may be opened in that way beside the opens that it has, over all handles of the package: any number
/// of readers, one writer among them, and nobody beside an exclusive open.
bool vlt_file_check_share(const Store& store, std::int32_t entry_index, std::uint32_t mode, bool exclusive);

}  // namespace vlt

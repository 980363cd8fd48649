// SPDX-License-Identifier: MIT
// Writing the schema file.
#pragma once

#include "include/offline.h"

namespace vlt {

/// Writes the schema of `db` to `path`. False with the error set; the file keeps what was written so far.
bool KOfflineDb_WriteSchema(KOfflineDb* db, const char* path);

}  // namespace vlt

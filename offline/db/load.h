// SPDX-License-Identifier: MIT
// The step of a load that has a name of its own; the load itself is KOfflineDb_Load.
#pragma once

#include "include/offline.h"
#include "offline/db/error_state.h"

namespace vlt {

/// Appends a field under a name as it stands, without looking for one of that name; a name over 32 bytes is cut, for
/// dropping the field would shift the columns after it.
Failure KOfflineDb_AppendSchemaField(KOfflineTable* table, const char* name);

}  // namespace vlt

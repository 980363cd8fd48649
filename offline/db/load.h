// SPDX-License-Identifier: MIT
// Steps of a load that other parts of the database layer use.
#pragma once

#include <cstdint>

#include "include/offline.h"

/// Appends a field under a name as it stands, without looking for one of that name; a name over 32 bytes is cut, for
/// dropping the field would shift the columns after it. Sets KOFFLINE_ERR_MEMORY when memory runs out.
void KOfflineDb_AppendSchemaField(KOfflineTable* table, const char* name);

/// 1 when a stream of `db` can be opened on `path` for reading, else 0.
std::int32_t KOfflineDb_FileExists(KOfflineDb* db, const char* path);

// SPDX-License-Identifier: MIT
// Lookups that other parts of the database layer use.
#pragma once

#include <cstdint>

#include "include/offline.h"
#include "offline/db/field_list.h"

namespace vlt {

/// The code of the record with this NID in BITM, BDWG or BCAPP; empty for a record without one, null when there is
/// no such record, the NID is below 1 or the table has no codes. Valid as long as the record's values are.
const char* code_by_nid(KOfflineDb* db, TableSlot table, std::int32_t nid);

}  // namespace vlt

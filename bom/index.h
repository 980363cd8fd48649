// SPDX-License-Identifier: MIT
// The records of a table in the order of a field.
#pragma once

#include <cstdint>
#include <span>

#include "include/offline.h"

namespace bom {

/// Every record once, in ascending order of the value, letter case aside; none where the field has no index. Valid
/// until the table changes.
std::span<const std::int32_t> sorted_records(KOfflineTable* table, std::int32_t field);

}  // namespace bom

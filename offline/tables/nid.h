// SPDX-License-Identifier: MIT
// Node identifiers: the decimal number in the field named "NID", and the numbering of records that bring none.
//
// The table's `nid_watermark` is the base that was asked for last, -1 until one is needed. The next base is one
// higher, and an automatic NID is one higher than its base. The watermark only ever grows, so an automatic NID
// repeats neither one that was there when numbering began nor one given out since.
#pragma once

#include <cstdint>

#include "include/offline.h"
#include "offline/db/error_state.h"

namespace vlt {

/// A NID as the text of a value.
struct NidText {
    explicit NidText(std::int32_t nid);
    char text[12];
};

/// What a NID value says, -1 for anything but an integer; null is no value.
std::int32_t nid_from_text(const char* value);

/// The field that holds the NID, -1 when the table has none.
std::int32_t nid_field(const KOfflineTable* table);

/// The next base, counted from all records when this is the first one; -1 when the table has no NID field or the
/// numbers are used up.
std::int32_t KOfflineTable_NextNIDBase(KOfflineTable* table);

/// Gives a record that is not yet part of the table an automatic NID, only where it has none unless `force` is set.
/// After a failure nothing has changed.
Failure KOfflineTable_AssignNID(KOfflineTable* table, std::int32_t nid_field, KOfflineRecord** record, bool force);

}  // namespace vlt

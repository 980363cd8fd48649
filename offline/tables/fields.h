// SPDX-License-Identifier: MIT
// The fields of a table.
#pragma once

#include <cstddef>
#include <cstdint>

#include "include/offline.h"
#include "offline/db/error_state.h"
#include "offline/tables/headed.h"

namespace vlt {

/// The longest field name; longer ones are refused by KOfflineTable_AddFld and cut in a schema.
inline constexpr std::size_t kFieldNameMax = 32;

struct FieldsHead {
    std::size_t slots;   // fields the array has room for; a schema may declare very many, one by one
    std::int32_t count;  // fields there are, whatever a caller writes into `field_count`
};

using Fields = Headed<FieldsHead, KOfflineField>;

inline bool table_has_field(const KOfflineTable* table, std::int32_t field) {
    return table && field >= 0 && field < table->field_count;
}

/// Appends a field without looking for an existing one of that name, cutting the name at 32 bytes. Records that the
/// table already has are laid out anew, without a value for the field. After a failure nothing has changed.
Failure append_field(KOfflineTable* table, const char* name);

/// Appends a field in the same way, but leaves the records as they are: `lay_out_records` follows before anything
/// else uses the table.
Failure append_field_alone(KOfflineTable* table, const char* name);

/// Lays records that have `old_count` fields out for all fields of the table. After a failure the fields from
/// `old_count` on are gone.
Failure lay_out_records(KOfflineTable* table, std::int32_t old_count);

/// Removes the fields from `count` on, with their indexes; the records are as they were.
void truncate_fields(KOfflineTable* table, std::int32_t count);

/// Gives the field array back; the indexes of the fields are gone before.
void free_fields(KOfflineTable* table);

}  // namespace vlt

// SPDX-License-Identifier: MIT
// What the tables offer to the rest of the library beyond offline.h.
#pragma once

#include <cstdint>

#include "include/offline.h"
#include "offline/tables/record.h"

/// The longest field name; longer ones are refused by KOfflineTable_AddFld and cut in a schema.
inline constexpr std::size_t kFieldNameMax = 32;

inline bool table_has_field(const KOfflineTable* table, std::int32_t field) {
    return table && field >= 0 && field < table->field_count;
}

/// Appends a field without looking for an existing one of that name, cutting the name at 32 bytes. Records that the
/// table already has are laid out anew, without a value for the field. False with KOFFLINE_ERR_MEMORY when memory
/// runs out, and nothing has changed.
bool append_field(KOfflineTable* table, const char* name);

/// Appends a field in the same way, but leaves the records as they are: `lay_out_records` follows before anything
/// else uses the table.
bool append_field_alone(KOfflineTable* table, const char* name);

/// Lays records that have `old_count` fields out for all fields of the table. False with KOFFLINE_ERR_MEMORY when
/// memory runs out, and the fields from `old_count` on are gone.
bool lay_out_records(KOfflineTable* table, std::int32_t old_count);

/// Gives the field array back; the indexes of the fields are gone before.
void free_fields(KOfflineTable* table);

/// How lines become records of one table: what is the same for every line of a file.
struct LineReader {
    LineReader(KOfflineTable* into, const char* separator, RecordArena* room);

    KOfflineTable* table;
    LineFormat format;
    std::int32_t nid_field;
    RecordArena* arena;  ///< null: every record gets a block of its own
};

/// Adds one line as a record, which gets an automatic NID when it brings none. Returns the failure, which is noted in
/// the database as well, or KOFFLINE_ERR_NONE; after a failure nothing has changed.
std::int32_t table_add_line(const LineReader& reader, const char* line, std::size_t length);

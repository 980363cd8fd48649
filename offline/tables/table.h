// SPDX-License-Identifier: MIT
// Adding lines to a table as records; the rest of a table's functions are those of offline.h.
#pragma once

#include <cstdint>

#include "include/offline.h"
#include "offline/tables/record_bytes.h"

namespace vlt {

/// How lines become records of one table: what is the same for every line of a file.
struct LineReader {
    LineReader(KOfflineTable* into, const char* separator, RecordArena* room);

    KOfflineTable* table;
    LineFormat format;
    std::int32_t nid_field;
    RecordArena* arena;  // null: every record gets a block of its own
};

/// Adds one line as a record, which gets an automatic NID when it brings none. A failure is noted in the database as
/// well, and nothing has changed.
Failure table_add_line(const LineReader& reader, const char* line, std::size_t length);

}  // namespace vlt

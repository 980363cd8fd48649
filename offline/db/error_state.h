// SPDX-License-Identifier: MIT
// How the tables and the database layer report a failure: the last one stays in the database record until the next
// load begins. A table without a database reports to nobody.
#pragma once

#include <cstdint>

#include "include/offline.h"
#include "offline/tables/text.h"

namespace vlt {

/// What an operation inside the library failed of: the codes of the interface.
enum class [[nodiscard]] Failure : std::int32_t{
    none = KOFFLINE_ERR_NONE,     memory = KOFFLINE_ERR_MEMORY,
    file = KOFFLINE_ERR_FILE,     separator = KOFFLINE_ERR_SEPARATOR,
    field = KOFFLINE_ERR_FIELD,   index = KOFFLINE_ERR_INDEX,
    record = KOFFLINE_ERR_RECORD, schema_write = KOFFLINE_ERR_SCHEMA_WRITE,
    table = KOFFLINE_ERR_TABLE};

constexpr bool failed(Failure failure) {
    return failure != Failure::none;
}

/// Notes a failure without detail; the text of the failure before it stays.
inline void KOfflineDb_SetError(KOfflineDb* db, Failure failure) {
    if (db) db->error_code = static_cast<std::int32_t>(failure);
}

/// Notes a failure with its detail, cut to the room there is.
inline void KOfflineDb_SetError(KOfflineDb* db, Failure failure, const char* text) {
    if (!db) return;
    db->error_code = static_cast<std::int32_t>(failure);
    text_copy_cut(db->error_text, sizeof db->error_text, text ? text : "");
}

}  // namespace vlt

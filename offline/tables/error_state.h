// SPDX-License-Identifier: MIT
// How the tables and the database layer report a failure: the last one stays in the database record until the next
// load begins. A table without a database reports to nobody.
#pragma once

#include <cstddef>
#include <cstring>

#include "include/offline.h"

/// Notes a failure without detail; the text of the failure before it stays.
inline void KOfflineDb_SetError(KOfflineDb* db, int32_t code) {
    if (db) db->error_code = code;
}

/// Notes a failure with its detail, cut to the room there is.
inline void KOfflineDb_SetErrorText(KOfflineDb* db, int32_t code, const char* text) {
    if (!db) return;
    db->error_code = code;
    const std::size_t length = text ? ::strnlen(text, sizeof db->error_text - 1) : 0;
    if (length) std::memmove(db->error_text, text, length);
    db->error_text[length] = 0;
}

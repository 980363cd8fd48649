// SPDX-License-Identifier: MIT
// The schema file "kdbmain.txt": which fields each table has, what separates the values of the data files, and the
// code of the root item, as level-numbered text. Here it is read.
#pragma once

#include <cstdint>

#include "include/offline.h"
#include "offline/db/error_state.h"
#include "offline/db/field_list.h"
#include "offline/db/level_text.h"

namespace vlt {

/// What one load has read of its schema so far. All zero at first, but for the database.
struct KOfflineDb_SchemaState {
    KOfflineDb* db;
    char root_code[256];  // code of the last root line; empty when there is none
    char section[32];     // first word of the last top-level line that means something: "table" or "ini"
    char table[32];       // name of the last table line
    std::int32_t declared[TABLE_COUNT];  // 1 for a table that a table line names
    Failure failure;                     // what a field could not be added of
};

/// Applies one line of a schema, as the procedure of KLevelText_Parse; `user` is the KOfflineDb_SchemaState.
std::int32_t KOfflineDb_SchemaNode(KLevelTextNode* node);

/// Reads the schema of `db` from the file `path` into the field lists and the separator of `db` and into `state`.
/// False with the error set.
bool read_schema(KOfflineDb* db, const char* path, KOfflineDb_SchemaState* state);

}  // namespace vlt

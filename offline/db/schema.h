// SPDX-License-Identifier: MIT
// The schema file "kdbmain.txt": which fields each table has, what separates the values of the data files, and the
// code of the root item, as level-numbered text.
#pragma once

#include <cstdint>

#include "include/offline.h"
#include "offline/db/field_list.h"
#include "offline/db/level_text.h"

/// What one load has read of its schema so far. All zero at first, but for the database.
struct KOfflineDb_SchemaState {
    KOfflineDb* db;
    char root_code[256];  ///< code of the last root line; empty when there is none
    char section[32];     ///< first word of the last top-level line that means something: "table" or "ini"
    char table[32];       ///< name of the last table line
    std::int32_t declared[TABLE_COUNT];  ///< 1 for a table that a table line names
};

/// Bytes that KOfflineDb_ConvertSeparator may need for its result.
inline constexpr std::size_t kSeparatorNamesSize = 256;

/// Applies one line of a schema, as the procedure of KLevelText_Parse; `user` is the KOfflineDb_SchemaState.
std::int32_t KOfflineDb_SchemaNode(KLevelTextNode* node);

/// Turns names of separator characters ("COMMA+TAB") into those characters, or back.
///   text            cut in place when names are turned into characters
///   out             room for kSeparatorNamesSize bytes
///   names_to_chars  not 0: from names to characters
/// Returns 1; 0 with `out` untouched when nothing comes out, or more than fits.
std::int32_t KOfflineDb_ConvertSeparator(char* text, char* out, std::int32_t names_to_chars);

/// Reads the schema of `db` from the file `path` into the field lists and the separator of `db` and into `state`.
/// Returns 1, or 0 with the error set.
std::int32_t read_schema(KOfflineDb* db, const char* path, KOfflineDb_SchemaState* state);

/// Writes the schema of `db` to `path`. Returns 1, or 0 with the error set; the file keeps what was written so far.
std::int32_t KOfflineDb_WriteSchema(KOfflineDb* db, const char* path);

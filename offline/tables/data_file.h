// SPDX-License-Identifier: MIT
// Table data files: one line a record, values in field order, escaped, between separators. The writer,
// KOfflineTable_WriteFile, is declared in offline.h.
//
// Read are lines that end with CR, LF or CR LF. Two slashes begin a comment that runs to the end of the line; of
// several pairs in a line the last one counts. Blanks in front of a line, blanks and tabs behind it, and lines that
// are then empty are skipped. A zero byte ends the file.
#pragma once

#include <cstdint>

#include "include/offline.h"

namespace vlt {

/// Replaces the table's records by those of a file. False with the error state set: a file that cannot be read leaves
/// the table without records, a record that cannot be added leaves those before it.
bool KOfflineTable_ReadFile(KOfflineTable* table, const char* path, const char* separator);

/// Adds a record for each line of a terminated text. False at the first record that cannot be added.
bool KOfflineTable_ParseLines(KOfflineTable* table, const char* text, const char* separator);

}  // namespace vlt

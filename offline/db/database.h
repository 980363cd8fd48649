// SPDX-License-Identifier: MIT
// The database record: its package, and what several parts of the database layer do with it.
#pragma once

#include <cstdint>

#include "include/offline.h"

namespace vlt {

/// Opens the package that `path` names and keeps its handle in `db`, whose package is closed. True also for a
/// directory and for a path that names nothing, which is taken for a directory; false for a file that is no package
/// to be opened for reading and writing. Sets no error.
bool KOfflineDb_OpenPackage(KOfflineDb* db, const char* path);

/// Closes the package of `db`, if it has one.
void close_package(KOfflineDb* db);

/// Keeps a path of at most 259 bytes in `db`; `path` may be the kept one itself.
void keep_path(KOfflineDb* db, const char* path);

/// Ends the texts in `db`, where a caller may have written over their ends.
void end_texts(KOfflineDb* db);

}  // namespace vlt

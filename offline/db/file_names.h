// SPDX-License-Identifier: MIT
// Names of the files of a database.
#pragma once

#include <cstddef>

namespace vlt {

/// The schema of a database; the names of its data files stand in field_list.h.
inline constexpr const char* kSchemaFile = "kdbmain.txt";

/// A formed name and its terminator fit this many bytes.
inline constexpr std::size_t kFileNameSize = 256;

/// What follows the last '\' or '/' of a path, which is the name a stored file has; the whole path without one.
const char* last_component(const char* path);

/// Writes `path`, trimmed of blanks and tabs, a '\' unless it ends in '\' or '/', and `file` into `name`, which has
/// kFileNameSize bytes. False for a path that is empty then, and for a path or a name too long for the buffer; `name`
/// holds as much of the name as fits.
bool form_file_name(const char* path, const char* file, char* name);

}  // namespace vlt

// SPDX-License-Identifier: MIT
// What disk paths name, without opening it.
#pragma once

namespace vlt {

enum class PathKind { missing, directory, file };

extern "C" {

/// Tells what a path names. No character of a path is a wildcard.
PathKind disk_path_kind(const char* path);

/// Removes a file; anything else stays, a device among them.
void disk_remove(const char* path);

}  // extern "C"

}  // namespace vlt

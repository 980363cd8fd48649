// SPDX-License-Identifier: MIT
// A script of calls on a table. After each, the table is compared with the reference.
#pragma once

#include <string>

#include "offline.h"
#include "tests/support/input.h"

enum TableCall { kAdd, kCopy, kSet, kDelete, kIndex, kFind, kNid, kField, kClear, kFile, kTableCalls };
constexpr int kHeld = 0x10;  // added to a call: its text is a value of the table
constexpr int kLong = 0xfa;  // added to one of the first: its text is longer by nearly as much as a record takes

using TableReader = bool (*)(KOfflineTable*, const char* path, const char* separator);

/// Returns what is not as the reference says, "" when all is. The input:
///
///     1 byte       which fields the table has at first
///     1 byte       the separator
///     up to 0x1e   the contents of the file `path`, which are read where there is a reader
///     a call       a byte what, two a record, one a field or its name; a text up to 0x1f
std::string RunTableScript(Input input, const std::string& path, TableReader reader = nullptr,
                           bool double_bytes = false);

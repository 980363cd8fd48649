// SPDX-License-Identifier: MIT
// Brings back what export.h wrote, and files that other programs made in its likeness. Every failure is an `Error`
// that says where.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "exchange/schema.h"

namespace exchange {

/// Returns a database without records that declares this schema; it is filled then.
using OpenEmpty = std::function<KOfflineDb*(const Schema&)>;

/// Returns the text of the file of this name; nothing when there is none.
using ReadFile = std::function<std::optional<std::string>(const std::string& name)>;

/// Without `schema.csv`, the first lines of the tables tell the fields and a comma is the separator.
void import_csv(const ReadFile& read_file, const OpenEmpty& open_empty);

/// One object, or an object a line. Without a schema, fields are added as they come.
void import_json(std::string_view text, const OpenEmpty& open_empty);

/// `tick` is called now and then. Fails where the program was built without SQLite.
void import_sqlite(const std::string& path, const OpenEmpty& open_empty, const std::function<void()>& tick);

}  // namespace exchange

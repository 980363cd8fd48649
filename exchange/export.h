// SPDX-License-Identifier: MIT
// A loaded database as files for other programs. Text is written as the database holds it.
#pragma once

#include <functional>
#include <string>

#include "exchange/output.h"
#include "include/offline.h"

namespace exchange {

/// The CSV files of a database: `schema.csv`, with a line for the separator, the root and every field, and one file a
/// table, such as `bitm.csv`, with the fields' names in its first line.
constexpr const char* kSchemaCsv = "schema.csv";
std::string csv_name(std::size_t table);

/// Makes the file of this name and returns where its text goes.
using MakeFile = std::function<Sink(const std::string& name)>;

void export_csv(KOfflineDb* db, const MakeFile& make_file);

/// One object: "schema", and under each table's name an array of records. A missing value has no key; one that is
/// not UTF-8 is an object with its bytes: {"hex": "ff00"}.
void export_json(KOfflineDb* db, Output& output);

/// The same in lines: the schema's first, then one a record, with the key "table".
void export_jsonl(KOfflineDb* db, Output& output);

/// Statements for SQLite that make and fill the tables, with keys, foreign keys and the view `bom`.
void export_sql(KOfflineDb* db, Output& output);

/// The same as a database file, which must not exist yet. `tick` is called now and then. Fails with `Error` where the
/// program was built without SQLite.
void export_sqlite(KOfflineDb* db, const std::string& path, const std::function<void()>& tick);

}  // namespace exchange

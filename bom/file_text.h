// SPDX-License-Identifier: MIT
// The files of a database as text, as they lie in a folder or package: what a load makes of them without a word.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "bom/finding.h"

namespace bom {

/// What a schema says, beside the order of the fields: a load adds to them, and drops a root that is not there.
struct Schema {
    std::array<bool, 6> is_declared{};          // by table
    std::array<std::int32_t, 6> field_count{};  // by table: those added by a load come after them
    std::string root;                           // the code; empty for none
};

Schema read_schema(std::string_view text);

/// The six tables in the order of KOfflineDb.tables, and the files that hold them.
extern const std::array<const char*, 6> kTableNames;
extern const std::array<const char*, 6> kTableFiles;
constexpr const char* kSchemaFile = "kdbmain.txt";

/// A byte order mark, and lines that do not end with CR LF, which a load takes for parts of one line.
void check_schema(const std::string& file, std::string_view text, Findings& findings);

/// How the table of a data file is declared.
struct DataForm {
    std::string_view separator;
    std::int32_t fields;
};

/// A byte order mark, values beyond the last field, text behind `//`, quotes as CSV has them, escapes that stand for
/// nothing, and what lies behind a zero byte. Returns the line of each record.
std::vector<std::uint32_t> check_data(const std::string& file, std::string_view text, const DataForm& form,
                                      Findings& findings);

}  // namespace bom

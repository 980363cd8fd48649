// SPDX-License-Identifier: MIT
// What imports share: the database that is made, and where it goes.
#pragma once

#include "exchange/import.h"
#include "tool/database_copy.h"
#include "tool/program.h"

namespace tool {

struct ImportOptions {
    std::string source, database, encoding, source_encoding;
    Credentials words;
    bool package = false, folder = false, force = false, quiet = false, no_lock = false, sync = false;
    // Of a flat bill of material:
    bool bom = false, check = false, accept = false, json = false, make_template = false;
    std::string notation, delimiter, decimal, top;
    std::vector<std::string> meanings, line_headings;

    Parameters parameters();
};

/// Makes the database that `fill` fills, and brings it to its place.
void make_database(const ImportOptions& options, const std::function<void(const exchange::OpenEmpty&)>& fill);

/// Imports a flat bill of material, checks one, or prints an empty one.
int import_bill(Program& program, const ImportOptions& options);

}  // namespace tool

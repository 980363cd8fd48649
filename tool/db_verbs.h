// SPDX-License-Identifier: MIT
// The verbs of `vlt db`, a function each that adds it to the group.
#pragma once

#include "tool/database.h"
#include "tool/program.h"

namespace tool {

void add_db_info_verb(Program& program, Verb group);
void add_db_table_verb(Program& program, Verb group);
void add_db_show_verb(Program& program, Verb group);
void add_db_check_verb(Program& program, Verb group);
void add_db_export_verb(Program& program, Verb group);
void add_db_import_verb(Program& program, Verb group);
void add_db_pack_verbs(Program& program, Verb group);
void add_db_edit_verb(Program& program, Verb group);

/// What follows the first point of a field's name: "NID" of "BDWG.NID".
std::string field_key(KOfflineTable* table, std::int32_t field);

}  // namespace tool

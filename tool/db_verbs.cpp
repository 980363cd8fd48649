// SPDX-License-Identifier: MIT
#include "tool/db_verbs.h"

namespace tool {

void add_db_verbs(Program& program) {
    Verb group = program.add_group("db", "databases: look into them, check them, bring them in and out, change them");
    add_db_info_verb(program, group);
    add_db_table_verb(program, group);
    add_db_show_verb(program, group);
    add_db_check_verb(program, group);
    add_db_export_verb(program, group);
    add_db_import_verb(program, group);
    add_db_pack_verbs(program, group);
    add_db_edit_verb(program, group);
}

std::string field_key(KOfflineTable* table, std::int32_t field) {
    char name[33];
    KOfflineTable_GetFldName(table, field, name);
    const std::string text = name;
    return text.substr(text.find('.') + 1);
}

}  // namespace tool

// SPDX-License-Identifier: MIT
#include "tool/program.h"
#include "tool/system.h"

namespace tool {

namespace {

/// In the order of the help.
void add_verbs(Program& program) {
    add_create_verb(program);
    add_ls_verb(program);
    add_add_verb(program);
    add_extract_verbs(program);
    add_change_verbs(program);
    add_compact_verb(program);
    add_diff_verb(program);
    add_info_verb(program);
    add_check_verb(program);
    add_dump_verb(program);
    add_sum_verbs(program);
    add_salvage_verb(program);
    add_mount_verb(program);

    program.add_group("db", "databases: look into them, check them, bring them in and out, change them");
    add_db_info_verb(program);
    add_db_table_verb(program);
    add_db_show_verb(program);
    add_db_check_verb(program);
    add_db_export_verb(program);
    add_db_import_verb(program);
    add_db_pack_verbs(program);
    add_db_edit_verb(program);

    program.add_group("bom", "bills of material: structure, where-used, comparison");
    add_bom_tree_verb(program);
    add_bom_flat_verb(program);
    add_bom_where_used_verb(program);
    add_bom_sum_verb(program);
    add_bom_diff_verb(program);
    add_bom_graph_verb(program);
    add_bom_html_verb(program);

    add_help_verb(program);
}

}  // namespace

}  // namespace tool

int main(int argc, char** argv) {
    using namespace tool;
    std::vector<std::string> arguments = program_arguments(argc, argv);
    catch_interrupts();
    Program program;
    add_verbs(program);
    return program.run(std::move(arguments));
}

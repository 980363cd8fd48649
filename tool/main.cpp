// SPDX-License-Identifier: MIT
#include "tool/program.h"
#include "tool/system.h"

int main(int argc, char** argv) {
    using namespace tool;
    std::vector<std::string> arguments = program_arguments(argc, argv);
    catch_interrupts();
    Program program;
    add_create_verb(program);
    add_listing_verbs(program);
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
    add_db_verbs(program);
    add_bom_verbs(program);
    add_help_verbs(program);
    return program.run(std::move(arguments));
}

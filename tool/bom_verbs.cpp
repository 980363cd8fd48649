// SPDX-License-Identifier: MIT
#include "tool/bom_verbs.h"

namespace tool {

void add_bom_verbs(Program& program) {
    Verb group = program.add_group("bom", "bills of material: structure, where-used, comparison");
    add_tree_verb(program, group);
    add_flat_verb(program, group);
    add_where_used_verb(program, group);
    add_sum_verb(program, group);
    add_diff_verb(program, group);
    add_graph_verb(program, group);
    add_html_verb(program, group);
}

}  // namespace tool

// SPDX-License-Identifier: MIT
// The verbs of `vlt bom`, a function each that adds it to the group.
#pragma once

#include "tool/items.h"
#include "tool/program.h"

namespace tool {

void add_tree_verb(Program& program, Verb group);
void add_flat_verb(Program& program, Verb group);
void add_where_used_verb(Program& program, Verb group);
void add_sum_verb(Program& program, Verb group);
void add_diff_verb(Program& program, Verb group);
void add_graph_verb(Program& program, Verb group);
void add_html_verb(Program& program, Verb group);

}  // namespace tool

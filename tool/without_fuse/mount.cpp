// SPDX-License-Identifier: MIT
// Stands for mount.cpp where there is no libfuse3: the verb does not exist.
#include "tool/program.h"

namespace tool {

void add_mount_verb(Program&) {}

}  // namespace tool

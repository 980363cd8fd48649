// SPDX-License-Identifier: MIT
// What the library does when it is loaded into a process and unloaded from it; the platform calls these.
#pragma once

namespace vlt {

extern "C" {

void vlt_module_loaded();
void vlt_module_unloaded();

}  // extern "C"

}  // namespace vlt

// SPDX-License-Identifier: MIT
// What happens when the library is loaded into a process and unloaded from it.
#include <cstdint>

#include "include/vlt.h"
#include "platform/module.h"

namespace vlt {

namespace {

std::int32_t vlt_load_count = 0;

}  // namespace

extern "C" void vlt_module_loaded() {
    ++vlt_load_count;
}

extern "C" void vlt_module_unloaded() {
    if (vlt_load_count > 0 && --vlt_load_count < 1) vlt_package_close_all();
}

}  // namespace vlt

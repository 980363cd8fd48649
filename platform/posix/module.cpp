// SPDX-License-Identifier: MIT
#include "platform/module.h"

namespace vlt {

namespace {

__attribute__((constructor)) void on_load() {
    vlt_module_loaded();
}

__attribute__((destructor)) void on_unload() {
    vlt_module_unloaded();
}

}  // namespace

}  // namespace vlt

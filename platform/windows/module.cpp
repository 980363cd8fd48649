// SPDX-License-Identifier: MIT
#include "platform/module.h"

#include <windows.h>

namespace vlt {

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) vlt_module_loaded();
    if (reason == DLL_PROCESS_DETACH) vlt_module_unloaded();
    return TRUE;
}

}  // namespace vlt

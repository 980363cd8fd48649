// SPDX-License-Identifier: MIT
// libfuse3, which is found when a package is mounted: on a system without it the program does everything else.
#pragma once

#define FUSE_USE_VERSION 31
#include <dlfcn.h>
#include <fuse.h>

#include "tool/failure.h"

namespace tool {

#define VLT_FUSE_FUNCTIONS(FUNCTION)      \
    FUNCTION(fuse_destroy)                \
    FUNCTION(fuse_get_context)            \
    FUNCTION(fuse_get_session)            \
    FUNCTION(fuse_loop)                   \
    FUNCTION(fuse_mount)                  \
    FUNCTION(fuse_new)                    \
    FUNCTION(fuse_remove_signal_handlers) \
    FUNCTION(fuse_set_log_func)           \
    FUNCTION(fuse_set_signal_handlers)    \
    FUNCTION(fuse_unmount)

class FuseLibrary {
public:
    /// Fails with `Failure` where the library is missing.
    static const FuseLibrary& get() {
        static const FuseLibrary library;
        return library;
    }

#define VLT_FUNCTION(name) /* NOLINTNEXTLINE(bugprone-macro-parentheses) */ \
    decltype(&::name) name = reinterpret_cast<decltype(&::name)>(find(#name));
    VLT_FUSE_FUNCTIONS(VLT_FUNCTION)
#undef VLT_FUNCTION

private:
    static void* find(const char* name) {
        static void* const library = dlopen(VLT_FUSE_LIBRARY, RTLD_NOW);  // until the program ends
        void* const found = library ? dlsym(library, name) : nullptr;
        if (found) return found;
        const char* reason = dlerror();
        throw Failure("mount", std::string("libfuse3 is needed; install it (") + (reason ? reason : name) + ")");
    }
};

}  // namespace tool

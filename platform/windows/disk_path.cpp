// SPDX-License-Identifier: MIT
#include "platform/disk_path.h"

#include <io.h>
#include <cstdio>
#include <cstring>

namespace vlt {

PathKind disk_path_kind(const char* path) {
    if (std::strpbrk(path, "*?")) return PathKind::missing;  // no file name holds these letters
    __finddata64_t found;                                    // sizes and dates of 64 bits
    const intptr_t search = ::_findfirst64(path, &found);
    if (search == -1) return PathKind::missing;
    ::_findclose(search);
    return found.attrib & _A_SUBDIR ? PathKind::directory : PathKind::file;
}

void disk_remove(const char* path) {
    std::remove(path);  // refuses directories
}

}  // namespace vlt

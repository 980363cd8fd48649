// SPDX-License-Identifier: MIT
#include "platform/disk_path.h"

#include <sys/stat.h>
#include <cstdio>

#include "platform/posix/posix_path.h"

namespace vlt {

PathKind disk_path_kind(const char* path) {
    const PosixPath native(path);
    struct stat info;
    if (!native.get() || ::stat(native.get(), &info) != 0) return PathKind::missing;
    return S_ISDIR(info.st_mode) ? PathKind::directory : PathKind::file;
}

void disk_remove(const char* path) {
    const PosixPath native(path);
    struct stat info;  // never a device that could not be written
    if (native.get() && ::lstat(native.get(), &info) == 0 && S_ISREG(info.st_mode)) std::remove(native.get());
}

}  // namespace vlt

// SPDX-License-Identifier: MIT
#include "platform/disk_stream.h"

#include <sys/stat.h>

#include "platform/posix/posix_path.h"

namespace vlt {

std::FILE* disk_open(const char* path, DiskMode mode) {
    const PosixPath native(path);
    if (!native.get()) return nullptr;
    struct stat info;  // a directory would open for reading, and a pipe would wait for its other end
    if (::stat(native.get(), &info) == 0 && (S_ISDIR(info.st_mode) || S_ISFIFO(info.st_mode))) return nullptr;
    return std::fopen(native.get(), mode == DiskMode::read ? "rbe" : "wbe");
}

bool disk_size(std::FILE* stream, std::int64_t* size) {
    *size = 0;
    if (::fseeko(stream, 0, SEEK_END) != 0) return false;
    const off_t end = ::ftello(stream);
    if (end < 0 || ::fseeko(stream, 0, SEEK_SET) != 0) return false;
    *size = end;
    return true;
}

}  // namespace vlt

// SPDX-License-Identifier: MIT
#include "platform/disk_stream.h"

#include <io.h>
#include <cstring>

std::FILE* disk_open(const char* path, DiskMode mode) {
    return std::fopen(path, mode == DiskMode::read ? "rb" : "wb");
}

bool disk_size(std::FILE* stream, std::int64_t* size) {
    *size = 0;
    if (std::fseek(stream, 0, SEEK_END) != 0) return false;
    const long end = std::ftell(stream);
    if (end < 0 || std::fseek(stream, 0, SEEK_SET) != 0) return false;
    *size = end;
    return true;
}

void disk_remove(const char* path) {
    std::remove(path);
}

PathKind disk_path_kind(const char* path) {
    if (std::strpbrk(path, "*?")) return PathKind::missing;  // no file name holds these letters
    _finddata_t found;
    const intptr_t search = ::_findfirst(path, &found);
    if (search == -1) return PathKind::missing;
    ::_findclose(search);
    return found.attrib & _A_SUBDIR ? PathKind::directory : PathKind::file;
}

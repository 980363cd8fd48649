// SPDX-License-Identifier: MIT
#include "platform/disk_stream.h"

namespace vlt {

std::FILE* disk_open(const char* path, DiskMode mode) {
    return std::fopen(path, mode == DiskMode::read ? "rb" : "wb");
}

bool disk_size(std::FILE* stream, std::int64_t* size) {
    *size = 0;
    if (::_fseeki64(stream, 0, SEEK_END) != 0) return false;  // `long` has 32 bits here
    const std::int64_t end = ::_ftelli64(stream);
    if (end < 0 || ::_fseeki64(stream, 0, SEEK_SET) != 0) return false;
    *size = end;
    return true;
}

}  // namespace vlt

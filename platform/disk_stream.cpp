// SPDX-License-Identifier: MIT
// What is the same with every runtime library.
#include "platform/disk_stream.h"

namespace vlt {

std::size_t disk_read(std::FILE* stream, void* buffer, std::size_t length) {
    return std::fread(buffer, 1, length, stream);
}

bool disk_write(std::FILE* stream, const void* data, std::size_t length) {
    return std::fwrite(data, 1, length, stream) == length;
}

bool disk_flush(std::FILE* stream) {
    return std::fflush(stream) == 0;
}

bool disk_close(std::FILE* stream) {
    return std::fclose(stream) == 0;
}

}  // namespace vlt

// SPDX-License-Identifier: MIT
// The part of disk streams that every runtime library does alike.
#include "platform/disk_stream.h"

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

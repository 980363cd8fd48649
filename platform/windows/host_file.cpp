// SPDX-License-Identifier: MIT
#include "platform/host_file.h"

#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <algorithm>

namespace vlt {

namespace {

/// Moves all of the bytes, in as many calls as it takes.
template <typename Call, typename Byte>
bool transfer(Call call, int fd, std::int64_t offset, Byte* at, std::size_t length) {
    if (::_lseeki64(fd, offset, SEEK_SET) != offset) return false;
    while (length > 0) {
        const int n = call(fd, at, static_cast<unsigned>(std::min<std::size_t>(length, 1u << 30)));
        if (n <= 0) return false;
        at += n;
        length -= static_cast<std::size_t>(n);
    }
    return true;
}

}  // namespace

int host_open(const char* path, bool writable) {
    return ::_open(path, _O_BINARY | _O_NOINHERIT | (writable ? _O_RDWR : _O_RDONLY));
}

void host_close(int fd) {
    ::_close(fd);
}

bool host_size(int fd, std::int64_t* size) {
    *size = -1;
    if (::_lseeki64(fd, 0, SEEK_END) < 0) return false;
    *size = ::_telli64(fd);
    return *size >= 0;
}

bool host_read(int fd, std::int64_t offset, void* buffer, std::size_t length) {
    return transfer(::_read, fd, offset, static_cast<char*>(buffer), length);
}

bool host_write(int fd, std::int64_t offset, const void* data, std::size_t length) {
    return transfer(::_write, fd, offset, static_cast<const char*>(data), length);
}

}  // namespace vlt

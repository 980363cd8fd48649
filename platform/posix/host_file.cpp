// SPDX-License-Identifier: MIT
#include "platform/host_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

#include "platform/posix/posix_path.h"

namespace vlt {

namespace {

/// Moves all of the bytes, in as many calls as it takes.
template <typename Call, typename Byte>
bool transfer(Call call, int fd, std::int64_t offset, Byte* at, std::size_t length) {
    while (length > 0) {
        const ssize_t n = call(fd, at, length, offset);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        at += n;
        offset += n;
        length -= static_cast<std::size_t>(n);
    }
    return true;
}

}  // namespace

int host_open(const char* path, bool writable) {
    const PosixPath native(path);
    if (!native.get()) return -1;
    int fd;
    do {
        fd = ::open(native.get(), (writable ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NONBLOCK);  // a pipe must not wait
    } while (fd < 0 && errno == EINTR);
    struct stat info;
    if (fd >= 0 && (::fstat(fd, &info) != 0 || !(S_ISREG(info.st_mode) || S_ISBLK(info.st_mode)))) {
        ::close(fd);
        return -1;
    }
    return fd;
}

void host_close(int fd) {
    ::close(fd);
}

bool host_size(int fd, std::int64_t* size) {
    const off_t end = ::lseek(fd, 0, SEEK_END);
    *size = end;
    return end >= 0;
}

bool host_read(int fd, std::int64_t offset, void* buffer, std::size_t length) {
    return transfer(::pread, fd, offset, static_cast<char*>(buffer), length);
}

bool host_write(int fd, std::int64_t offset, const void* data, std::size_t length) {
    return transfer(::pwrite, fd, offset, static_cast<const char*>(data), length);
}

}  // namespace vlt

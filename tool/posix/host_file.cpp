// SPDX-License-Identifier: MIT
// Files and locks on POSIX systems.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "tool/failure.h"
#include "tool/system.h"

namespace tool {

namespace {

// A pipe must not make an opening wait.
constexpr int kToRead = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
constexpr int kToCreate = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;

[[noreturn]] void fail(const fs::path& path) {
    throw Failure(text_of(path), std::strerror(errno));
}

FileStatus status_of(const struct stat& found) {
    using Kind = FileStatus::Kind;
    const auto type = found.st_mode & S_IFMT;
    const Kind kind = type == S_IFREG   ? Kind::file
                      : type == S_IFDIR ? Kind::folder
                      : type == S_IFLNK ? Kind::link
                                        : Kind::other;
    return {kind, found.st_size, found.st_mtime};
}

/// The process that holds a lock on a file, as the kernel lists it: "... FLOCK ADVISORY WRITE PID MAJOR:MINOR:INODE
/// ...".
std::string holder_of(int file) {
    struct stat found {};
    if (fstat(file, &found) != 0) return "another process";
    char wanted[64];
    std::snprintf(wanted, sizeof wanted, "%02x:%02x:%llu", major(found.st_dev), minor(found.st_dev),
                  static_cast<unsigned long long>(found.st_ino));
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        std::istringstream words(line);
        std::string number, type, advisory, access, process, place;
        words >> number >> type >> advisory >> access >> process >> place;
        if (type != "FLOCK" || place != wanted) continue;
        std::string name;
        std::getline(std::ifstream("/proc/" + process + "/comm"), name);
        return (name.empty() ? "process" : name + ", process") + (" " + process);
    }
    return "another process";
}

/// Moves a file from one name to another in `folder`; errno tells the failure.
bool move_in(int folder, const char* from, const char* to, bool replace) {
    if (replace) return renameat(folder, from, folder, to) == 0;
    if (renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0) return true;
    // Not every file system can rename so, nor knows links.
    if (linkat(folder, from, folder, to, 0) == 0) return unlinkat(folder, from, 0), true;
    struct stat found {};
    if (fstatat(folder, to, &found, AT_SYMLINK_NOFOLLOW) != 0) return renameat(folder, from, folder, to) == 0;
    errno = EEXIST;
    return false;
}

}  // namespace

FileStatus file_status(const fs::path& path) {
    struct stat found {};
    return lstat(path.c_str(), &found) == 0 ? status_of(found) : FileStatus{};
}

HostFile HostFile::open(const fs::path& path) {
    const int file = ::open(path.c_str(), kToRead);
    if (file < 0) fail(path);
    return {path, file};
}

HostFile HostFile::create_new(const fs::path& path) {
    const int file = ::open(path.c_str(), kToCreate, 0666);
    if (file < 0) fail(path);
    return {path, file};
}

HostFile HostFile::standard_input() {
    return {"standard input", dup(STDIN_FILENO)};
}

HostFile::HostFile(HostFile&& other) noexcept : path_(std::move(other.path_)), handle_(other.handle_) {
    other.handle_ = -1;
}

HostFile::~HostFile() {
    close_quietly();
}

void HostFile::close_quietly() noexcept {
    if (handle_ >= 0) ::close(static_cast<int>(handle_));
    handle_ = -1;
}

FileStatus HostFile::status() const {
    struct stat found {};
    if (fstat(static_cast<int>(handle_), &found) != 0) fail(path_);
    return status_of(found);
}

std::size_t HostFile::read(void* buffer, std::size_t length) {
    for (;;) {
        const ssize_t got = ::read(static_cast<int>(handle_), buffer, length);
        if (got >= 0) return static_cast<std::size_t>(got);
        if (errno != EINTR) fail(path_);
        check_interrupt();
    }
}

void HostFile::write(const void* data, std::size_t length) {
    for (const char* at = static_cast<const char*>(data); length > 0;) {
        const ssize_t put = ::write(static_cast<int>(handle_), at, length);
        if (put < 0 && errno != EINTR) fail(path_);
        if (put <= 0) continue;
        at += put;
        length -= static_cast<std::size_t>(put);
    }
}

void HostFile::set_written(std::int64_t seconds) {
    const timespec time{static_cast<std::time_t>(seconds), 0};
    const timespec times[] = {time, time};
    futimens(static_cast<int>(handle_), times);
}

void HostFile::close() {
    if (handle_ < 0) return;
    const int file = static_cast<int>(handle_);
    handle_ = -1;
    if (::close(file) != 0) fail(path_);
}

void move_file(const fs::path& from, const fs::path& to, bool replace) {
    if (!move_in(AT_FDCWD, from.c_str(), to.c_str(), replace)) fail(to);
}

HostFolder::HostFolder(const fs::path& path)
    : path_(path.native()), handle_(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
    if (handle_ < 0) fail(path);
}

HostFolder::HostFolder(HostFolder&& other) noexcept : path_(std::move(other.path_)), handle_(other.handle_) {
    other.handle_ = -1;
}

HostFolder::~HostFolder() {
    if (handle_ >= 0) ::close(static_cast<int>(handle_));
}

PathText HostFolder::path_of(const PathText& name) const {
    return path_ == "." ? name : path_ + '/' + name;
}

FileStatus HostFolder::status(const PathText& name) const {
    struct stat found {};
    const int result = fstatat(static_cast<int>(handle_), name.c_str(), &found, AT_SYMLINK_NOFOLLOW);
    return result == 0 ? status_of(found) : FileStatus{};
}

HostFile HostFolder::open(const PathText& name) const {
    const int file = openat(static_cast<int>(handle_), name.c_str(), kToRead);
    if (file < 0) fail(path_of(name));
    return {path_of(name), file};
}

HostFile HostFolder::create_new(const PathText& name) const {
    const int file = openat(static_cast<int>(handle_), name.c_str(), kToCreate, 0666);
    if (file < 0) fail(path_of(name));
    return {path_of(name), file};
}

void HostFolder::move(const PathText& from, const PathText& to, bool replace) const {
    if (!move_in(static_cast<int>(handle_), from.c_str(), to.c_str(), replace)) fail(path_of(to));
}

void HostFolder::remove(const PathText& name) const noexcept {
    unlinkat(static_cast<int>(handle_), name.c_str(), 0);
}

void copy_access(const fs::path& from, const fs::path& to) {
    struct stat found {};
    if (stat(from.c_str(), &found) != 0) return;
    if (chown(to.c_str(), found.st_uid, found.st_gid) != 0) errno = 0;  // only the owner may, or root
    chmod(to.c_str(), found.st_mode & 07777);
}

void sync_file(const fs::path& path) {
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    for (const fs::path& each : {path, folder}) {
        const int file = ::open(each.c_str(), O_RDONLY | O_CLOEXEC);
        if (file < 0) fail(each);
        const int result = fsync(file);
        ::close(file);
        if (result != 0 && errno != EINVAL) fail(each);
    }
}

HostLock::HostLock(const fs::path& path, Mode mode)
    : handle_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    if (handle_ < 0) fail(path);
    const int file = static_cast<int>(handle_);
    if (flock(file, (mode == Mode::shared ? LOCK_SH : LOCK_EX) | LOCK_NB) == 0) return;
    if (errno != EWOULDBLOCK) return;  // a file system without locks
    const std::string holder = holder_of(file);
    ::close(file);
    throw Failure(text_of(path), "in use by " + holder + "; wait until it ends, or give --no-lock");
}

HostLock::~HostLock() {
    ::close(static_cast<int>(handle_));
}

}  // namespace tool

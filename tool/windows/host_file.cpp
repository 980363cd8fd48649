// SPDX-License-Identifier: MIT
// Files and locks on Windows.
#include <windows.h>

#include <tlhelp32.h>  // after windows.h

#include <system_error>

#include "tool/failure.h"
#include "tool/system.h"
#include "tool/windows/utf16.h"

namespace tool {

namespace {

HANDLE handle_of(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

constexpr std::intptr_t kNone = -1;  // INVALID_HANDLE_VALUE

[[noreturn]] void fail(const fs::path& path, DWORD error = GetLastError()) {
    std::string text = std::system_category().message(static_cast<int>(error));
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == '.')) text.pop_back();
    throw Failure(text_of(path), text);
}

// File times count tenths of a microsecond since 1601.
constexpr std::int64_t kTicks = 10'000'000, kTo1970 = 11'644'473'600;

std::int64_t seconds_of_file_time(FILETIME time) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime) /
               kTicks -
           kTo1970;
}

FILETIME file_time_of(std::int64_t seconds) {
    const std::int64_t ticks = (seconds + kTo1970) * kTicks;
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

FileStatus status_of(DWORD attributes, DWORD size_high, DWORD size_low, FILETIME written) {
    using Kind = FileStatus::Kind;
    const Kind kind = attributes & FILE_ATTRIBUTE_REPARSE_POINT ? Kind::link
                      : attributes & FILE_ATTRIBUTE_DIRECTORY   ? Kind::folder
                      : attributes & FILE_ATTRIBUTE_DEVICE      ? Kind::other
                                                                : Kind::file;
    const auto size = static_cast<std::int64_t>(static_cast<std::uint64_t>(size_high) << 32 | size_low);
    return {kind, size, seconds_of_file_time(written)};
}

}  // namespace

FileStatus file_status(const fs::path& path) {
    WIN32_FILE_ATTRIBUTE_DATA found{};
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &found)) return {};
    return status_of(found.dwFileAttributes, found.nFileSizeHigh, found.nFileSizeLow, found.ftLastWriteTime);
}

HostFile HostFile::open(const fs::path& path) {
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (file == INVALID_HANDLE_VALUE) fail(path);
    return {path, reinterpret_cast<std::intptr_t>(file)};
}

HostFile HostFile::create_new(const fs::path& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) fail(path);
    return {path, reinterpret_cast<std::intptr_t>(file)};
}

HostFile HostFile::standard_input() {
    HANDLE copy = INVALID_HANDLE_VALUE;
    DuplicateHandle(GetCurrentProcess(), GetStdHandle(STD_INPUT_HANDLE), GetCurrentProcess(), &copy, 0, FALSE,
                    DUPLICATE_SAME_ACCESS);
    return {path_of("standard input"), reinterpret_cast<std::intptr_t>(copy)};
}

HostFile::HostFile(HostFile&& other) noexcept : path_(std::move(other.path_)), handle_(other.handle_) {
    other.handle_ = kNone;
}

HostFile::~HostFile() {
    close_quietly();
}

void HostFile::close_quietly() noexcept {
    if (handle_ != kNone) CloseHandle(handle_of(handle_));
    handle_ = kNone;
}

FileStatus HostFile::status() const {
    BY_HANDLE_FILE_INFORMATION found{};
    if (!GetFileInformationByHandle(handle_of(handle_), &found)) fail(path_);
    return status_of(found.dwFileAttributes, found.nFileSizeHigh, found.nFileSizeLow, found.ftLastWriteTime);
}

std::size_t HostFile::read(void* buffer, std::size_t length) {
    DWORD got = 0;
    if (!ReadFile(handle_of(handle_), buffer, static_cast<DWORD>(length), &got, nullptr)) {
        if (GetLastError() == ERROR_BROKEN_PIPE) return 0;
        fail(path_);
    }
    return got;
}

void HostFile::write(const void* data, std::size_t length) {
    DWORD put = 0;
    if (!WriteFile(handle_of(handle_), data, static_cast<DWORD>(length), &put, nullptr)) fail(path_);
    if (put != length) fail(path_, ERROR_DISK_FULL);
}

void HostFile::set_written(std::int64_t seconds) {
    const FILETIME time = file_time_of(seconds);
    SetFileTime(handle_of(handle_), nullptr, &time, &time);
}

void HostFile::close() {
    if (handle_ == kNone) return;
    const HANDLE file = handle_of(handle_);
    handle_ = kNone;
    if (!CloseHandle(file)) fail(path_);
}

void move_file(const fs::path& from, const fs::path& to, bool replace) {
    if (!MoveFileExW(from.c_str(), to.c_str(), replace ? MOVEFILE_REPLACE_EXISTING : 0)) fail(to);
}

void copy_access(const fs::path&, const fs::path&) {}  // a new file has those of its folder

// Windows opens files by whole paths.

HostFolder::HostFolder(const fs::path& path) : path_(path.native()), handle_(kNone) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) fail(path);
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) fail(path, ERROR_DIRECTORY);
}

HostFolder::HostFolder(HostFolder&& other) noexcept = default;

HostFolder::~HostFolder() = default;

PathText HostFolder::path_of(const PathText& name) const {
    return (fs::path(path_) / name).native();  // L"C:" and what begins with L"\\\\?\\" have rules of their own
}

FileStatus HostFolder::status(const PathText& name) const {
    return file_status(path_of(name));
}

HostFile HostFolder::open(const PathText& name) const {
    return HostFile::open(path_of(name));
}

HostFile HostFolder::create_new(const PathText& name) const {
    return HostFile::create_new(path_of(name));
}

void HostFolder::move(const PathText& from, const PathText& to, bool replace) const {
    move_file(path_of(from), path_of(to), replace);
}

void HostFolder::remove(const PathText& name) const noexcept {
    DeleteFileW(path_of(name).c_str());
}

void sync_file(const fs::path& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) fail(path);
    const bool synced = FlushFileBuffers(file) != 0;
    const DWORD error = GetLastError();
    CloseHandle(file);
    if (!synced) fail(path, error);
}

// ---- Locks -------------------------------------------------------------------------------------------------------
//
// Windows does not tell who holds a lock. So the holder locks a second byte as well, at a place that tells the number
// of its process; whoever is refused tries the places of all processes. All places lie beyond the end of any package,
// because these locks would keep others from reading and writing there.

namespace {

constexpr std::uint64_t kLockPlace = std::uint64_t{1} << 62;

bool lock_byte(HANDLE file, std::uint64_t place, DWORD flags) {
    OVERLAPPED at{};
    at.Offset = static_cast<DWORD>(place);
    at.OffsetHigh = static_cast<DWORD>(place >> 32);
    return LockFileEx(file, flags | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &at) != 0;
}

void unlock_byte(HANDLE file, std::uint64_t place) {
    UnlockFile(file, static_cast<DWORD>(place), static_cast<DWORD>(place >> 32), 1, 0);
}

std::uint64_t place_of_process(DWORD process) {
    return kLockPlace + 1 + process;
}

std::string holder_of(HANDLE file) {
    std::string holder = "another process";
    const HANDLE processes = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W each{};
    each.dwSize = sizeof each;
    for (BOOL more = Process32FirstW(processes, &each); more; more = Process32NextW(processes, &each)) {
        const std::uint64_t place = place_of_process(each.th32ProcessID);
        if (lock_byte(file, place, LOCKFILE_EXCLUSIVE_LOCK)) {
            unlock_byte(file, place);
            continue;
        }
        holder = to_utf8(each.szExeFile) + ", process " + std::to_string(each.th32ProcessID);
        break;
    }
    CloseHandle(processes);
    return holder;
}

}  // namespace

HostLock::HostLock(const fs::path& path, Mode mode) {
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) fail(path);
    handle_ = reinterpret_cast<std::intptr_t>(file);
    if (lock_byte(file, kLockPlace, mode == Mode::exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0)) {
        lock_byte(file, place_of_process(GetCurrentProcessId()), LOCKFILE_EXCLUSIVE_LOCK);
        return;
    }
    const std::string holder = holder_of(file);
    CloseHandle(file);
    throw Failure(text_of(path), "in use by " + holder + "; wait until it ends, or give --no-lock");
}

HostLock::~HostLock() {
    CloseHandle(handle_of(handle_));
}

}  // namespace tool

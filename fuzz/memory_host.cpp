// SPDX-License-Identifier: MIT
// Host files and disk streams in memory, a clock that is set, and a character set that is chosen.
#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "fuzz/support.h"
#include "platform/clock.h"
#include "platform/disk_stream.h"
#include "platform/host_file.h"
#include "platform/multibyte.h"

namespace {

using File = std::shared_ptr<Bytes>;

constexpr std::size_t kHostLimit = 8 << 20;
constexpr std::int64_t kFirstSecond = 1'100'000'000;

struct Opened {
    File file;
    bool writable;
};

struct Stream {
    File file;
    std::size_t at;
};

std::map<std::string, File> files;
std::vector<Opened> descriptors;
std::size_t limit = kHostLimit;
bool was_full = false;
std::int64_t seconds_now = kFirstSecond;
bool double_bytes = false;

std::string Key(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

File Find(const std::string& path) {
    const auto found = files.find(Key(path));
    return found == files.end() ? nullptr : found->second;
}

/// Copies bytes into a file, which grows as needed; as many as there is room for.
bool Put(Bytes& file, std::size_t at, const void* data, std::size_t length) {
    const std::size_t room = at < limit ? limit - at : 0;
    const std::size_t taken = std::min(length, room);
    if (taken && file.size() < at + taken) file.resize(at + taken);
    if (taken) std::memcpy(file.data() + at, data, taken);
    was_full = was_full || taken < length;
    return taken == length;
}

Stream* Of(std::FILE* stream) {
    return reinterpret_cast<Stream*>(stream);
}

}  // namespace

void ResetHost() {
    for (const Opened& opened : descriptors) Require(!opened.file);
    files.clear();
    descriptors.clear();
    limit = kHostLimit;
    was_full = double_bytes = false;
    seconds_now = kFirstSecond;
}

Bytes& HostFile(const std::string& path) {
    File& file = files[Key(path)];
    if (!file) file = std::make_shared<Bytes>();
    return *file;
}

bool HostFileExists(const std::string& path) {
    return Find(path) != nullptr;
}

void LimitHost(std::size_t bytes) {
    limit = std::min(bytes, kHostLimit);
}

bool HostWasFull() {
    return was_full;
}

void TickClock(int seconds) {
    seconds_now += seconds;
}

void UseDoubleBytes(bool on) {
    double_bytes = on;
}

extern "C" {

/// Freed blocks are kept from reuse for a while, but not for so long that every input pays for fresh memory.
const char* __asan_default_options() {
    return "quarantine_size_mb=8";
}

const char* __real_multibyte_next(const char* text);
bool __real_multibyte_ascii_is_whole();

std::int64_t __wrap_clock_seconds() {
    return seconds_now;
}

const char* __wrap_multibyte_next(const char* text) {
    if (!double_bytes || static_cast<unsigned char>(*text) < 0x81) return __real_multibyte_next(text);
    return text + (text[1] ? 2 : 1);
}

bool __wrap_multibyte_ascii_is_whole() {
    return !double_bytes && __real_multibyte_ascii_is_whole();
}

int __wrap_host_open(const char* path, bool writable) {
    File file = Find(path);
    if (!file) return -1;
    descriptors.push_back({file, writable});
    return static_cast<int>(descriptors.size()) - 1;
}

void __wrap_host_close(int fd) {
    descriptors.at(static_cast<std::size_t>(fd)).file.reset();
}

bool __wrap_host_size(int fd, std::int64_t* size) {
    *size = static_cast<std::int64_t>(descriptors.at(static_cast<std::size_t>(fd)).file->size());
    return true;
}

bool __wrap_host_read(int fd, std::int64_t offset, void* buffer, std::size_t length) {
    const Bytes& file = *descriptors.at(static_cast<std::size_t>(fd)).file;
    Require(offset >= 0);
    const auto at = static_cast<std::size_t>(offset);
    if (at > file.size() || length > file.size() - at) return false;
    if (length) std::memcpy(buffer, file.data() + at, length);
    return true;
}

bool __wrap_host_write(int fd, std::int64_t offset, const void* data, std::size_t length) {
    const Opened& opened = descriptors.at(static_cast<std::size_t>(fd));
    Require(offset >= 0);
    was_full = was_full || !opened.writable;
    return opened.writable && Put(*opened.file, static_cast<std::size_t>(offset), data, length);
}

bool __wrap_host_extend(int fd, std::int64_t offset, std::int64_t length) {
    Require(offset >= 0 && length >= 0);
    const Opened& opened = descriptors.at(static_cast<std::size_t>(fd));
    const Bytes zeros(std::min(static_cast<std::size_t>(length), kHostLimit + 1));
    was_full = was_full || !opened.writable;
    return opened.writable && Put(*opened.file, static_cast<std::size_t>(offset), zeros.data(), zeros.size());
}

std::FILE* __wrap_disk_open(const char* path, DiskMode mode) {
    File file = Find(path);
    if (mode == DiskMode::write) HostFile(path).clear();
    if (mode == DiskMode::write) file = Find(path);
    return file ? reinterpret_cast<std::FILE*>(new Stream{file, 0}) : nullptr;
}

std::size_t __wrap_disk_read(std::FILE* stream, void* buffer, std::size_t length) {
    Stream& from = *Of(stream);
    const std::size_t taken = std::min(length, from.file->size() - std::min(from.at, from.file->size()));
    if (taken) std::memcpy(buffer, from.file->data() + from.at, taken);
    from.at += taken;
    return taken;
}

bool __wrap_disk_write(std::FILE* stream, const void* data, std::size_t length) {
    Stream& to = *Of(stream);
    const bool whole = Put(*to.file, to.at, data, length);
    to.at += length;
    return whole;
}

bool __wrap_disk_flush(std::FILE*) {
    return true;
}

bool __wrap_disk_size(std::FILE* stream, std::int64_t* size) {
    Of(stream)->at = 0;
    *size = static_cast<std::int64_t>(Of(stream)->file->size());
    return true;
}

bool __wrap_disk_close(std::FILE* stream) {
    delete Of(stream);
    return true;
}

void __wrap_disk_remove(const char* path) {
    files.erase(Key(path));
}

/// A directory is what files lie in.
PathKind __wrap_disk_path_kind(const char* path) {
    const std::string key = Key(path);
    if (files.count(key)) return PathKind::file;
    const auto inside = files.lower_bound(key + "/");
    const bool directory = inside != files.end() && inside->first.compare(0, key.size() + 1, key + "/") == 0;
    return directory ? PathKind::directory : PathKind::missing;
}

}  // extern "C"

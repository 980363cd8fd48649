// SPDX-License-Identifier: MIT
#include "tests/support/host_faults.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

#include "base/heap.h"
#include "platform/disk_stream.h"
#include "platform/host_file.h"
#include "platform/mutex.h"

using namespace vlt;

namespace {

// Faults belong to tests of one thread; the counters are also kept while many run.
std::atomic<bool> armed{false};
unsigned armed_calls = 0;
int calls_left = 0;
FaultManner armed_manner = FaultManner::cleanly;
bool armed_from_then_on = false;
bool fault_hit = false;

std::int64_t longest_file = INT64_MAX;
std::atomic<bool> limit_reached{false};

std::atomic<long> blocks{0}, files{0}, streams{0}, mutexes{0}, locks{0};

/// Whether this call is one that fails.
bool Fails(FaultCall call) {
    if (!armed || !(armed_calls & call)) return false;
    if (calls_left > 0) --calls_left;
    if (calls_left > 0 || (fault_hit && !armed_from_then_on)) return false;
    fault_hit = true;
    return true;
}

/// A call that makes what has to be given back, or fails.
template <typename Make, typename... With>
auto Made(FaultCall call, std::atomic<long>& counter, Make make, With... with) {
    auto made = Fails(call) ? nullptr : make(with...);
    if (made) ++counter;
    return made;
}

/// A transfer of `length` bytes that may fail; `move` moves that many.
template <typename Move>
bool Transfer(FaultCall call, std::size_t length, Move move) {
    const bool first = !fault_hit;
    if (!Fails(call)) return move(length);
    const bool stops_here = armed_manner == FaultManner::stops && first;
    if (armed_manner == FaultManner::cut_short || stops_here) move(length / 2);
    if (armed_manner == FaultManner::lost_reply) move(length);
    return false;
}

/// An offset that the library must never come to.
void RequireInside(std::int64_t offset) {
    if (offset < 0) std::abort();
}

}  // namespace

void LimitHostFiles(std::int64_t length) {
    longest_file = length;
    limit_reached = false;
}

bool HostLimitReached() {
    return limit_reached;
}

Fault::Fault(unsigned calls, int nth, FaultManner manner, bool from_then_on) {
    armed_calls = calls;
    calls_left = nth;
    armed_manner = manner;
    armed_from_then_on = from_then_on || manner == FaultManner::stops;
    fault_hit = false;
    armed = true;
}

Fault::~Fault() {
    armed = false;
}

bool Fault::hit() const {
    return fault_hit;
}

HeldResources HeldNow() {
    return {blocks, files, streams, mutexes, locks};
}

extern "C" {

decltype(heap_alloc) __real_heap_alloc, __real_heap_alloc_zeroed;
decltype(heap_resize) __real_heap_resize;
decltype(heap_free) __real_heap_free;
decltype(mutex_create) __real_mutex_create;
decltype(mutex_destroy) __real_mutex_destroy, __real_mutex_lock, __real_mutex_unlock;
decltype(host_open) __real_host_open;
decltype(host_close) __real_host_close;
decltype(host_size) __real_host_size;
decltype(host_read) __real_host_read;
decltype(host_write) __real_host_write;
decltype(host_extend) __real_host_extend;
decltype(disk_open) __real_disk_open;
decltype(disk_read) __real_disk_read;
decltype(disk_write) __real_disk_write;
decltype(disk_flush) __real_disk_flush, __real_disk_close;
decltype(disk_size) __real_disk_size;

void* __wrap_heap_alloc(std::size_t size) {
    return Made(kFaultMemory, blocks, __real_heap_alloc, size);
}

void* __wrap_heap_alloc_zeroed(std::size_t size) {
    return Made(kFaultMemory, blocks, __real_heap_alloc_zeroed, size);
}

void* __wrap_heap_resize(void* block, std::size_t size) {
    if (!block) return Made(kFaultMemory, blocks, __real_heap_resize, block, size);
    return Fails(kFaultMemory) ? nullptr : __real_heap_resize(block, size);
}

void __wrap_heap_free(void* block) {
    if (block) --blocks;
    __real_heap_free(block);
}

HostMutex* __wrap_mutex_create() {
    return Made(kFaultMutex, mutexes, __real_mutex_create);
}

void __wrap_mutex_destroy(HostMutex* mutex) {
    --mutexes;
    __real_mutex_destroy(mutex);
}

void __wrap_mutex_lock(HostMutex* mutex) {
    __real_mutex_lock(mutex);
    ++locks;
}

void __wrap_mutex_unlock(HostMutex* mutex) {
    --locks;
    __real_mutex_unlock(mutex);
}

int __wrap_host_open(const char* path, bool writable) {
    if (Fails(kFaultOpen)) return -1;
    const int fd = __real_host_open(path, writable);
    if (fd >= 0) ++files;
    return fd;
}

void __wrap_host_close(int fd) {
    --files;
    __real_host_close(fd);
}

bool __wrap_host_size(int fd, std::int64_t* size) {
    return !Fails(kFaultSize) && __real_host_size(fd, size);
}

bool __wrap_host_read(int fd, std::int64_t offset, void* buffer, std::size_t length) {
    RequireInside(offset);
    return Transfer(kFaultRead, length, [&](std::size_t n) { return __real_host_read(fd, offset, buffer, n); });
}

bool __wrap_host_write(int fd, std::int64_t offset, const void* data, std::size_t length) {
    RequireInside(offset);
    return Transfer(kFaultWrite, length, [&](std::size_t n) {
        const std::int64_t room = std::max<std::int64_t>(longest_file - offset, 0);
        const auto fitting = static_cast<std::size_t>(std::min(room, static_cast<std::int64_t>(n)));
        if (fitting < n) limit_reached = true;
        return (fitting == 0 || __real_host_write(fd, offset, data, fitting)) && fitting == n;
    });
}

bool __wrap_host_extend(int fd, std::int64_t offset, std::int64_t length) {
    RequireInside(offset);
    return Transfer(kFaultExtend, static_cast<std::size_t>(length),
                    [&](std::size_t n) { return __real_host_extend(fd, offset, static_cast<std::int64_t>(n)); });
}

std::FILE* __wrap_disk_open(const char* path, DiskMode mode) {
    return Made(kFaultDisk, streams, __real_disk_open, path, mode);
}

std::size_t __wrap_disk_read(std::FILE* stream, void* buffer, std::size_t length) {
    if (!Fails(kFaultDisk)) return __real_disk_read(stream, buffer, length);
    return armed_manner == FaultManner::cut_short ? __real_disk_read(stream, buffer, length / 2) : 0;
}

bool __wrap_disk_write(std::FILE* stream, const void* data, std::size_t length) {
    return Transfer(kFaultDisk, length, [&](std::size_t n) { return __real_disk_write(stream, data, n); });
}

bool __wrap_disk_flush(std::FILE* stream) {
    return !Fails(kFaultDisk) && __real_disk_flush(stream);
}

bool __wrap_disk_size(std::FILE* stream, std::int64_t* size) {
    return !Fails(kFaultDisk) && __real_disk_size(stream, size);
}

bool __wrap_disk_close(std::FILE* stream) {
    --streams;
    const bool closed = __real_disk_close(stream);
    return !Fails(kFaultDisk) && closed;
}

}  // extern "C"

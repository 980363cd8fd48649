// SPDX-License-Identifier: MIT
#include "tests/support/host_faults.h"

#include <algorithm>
#include <atomic>

#include "base/heap.h"
#include "platform/disk_stream.h"
#include "platform/host_file.h"
#include "platform/mutex.h"

namespace {

// Faults and recordings belong to tests of one thread; the counters are also kept while many run.
std::atomic<bool> armed{false};
unsigned armed_calls = 0;
int calls_left = 0;
FaultManner armed_manner = FaultManner::cleanly;
bool armed_from_then_on = false;
bool fault_hit = false;

std::atomic<HostRecording*> recording{nullptr};

std::atomic<long> blocks{0}, files{0}, streams{0}, mutexes{0}, locks{0};

/// Whether this call is one that fails.
bool Fails(FaultCall call) {
    if (!armed || !(armed_calls & call)) return false;
    if (calls_left > 0) --calls_left;
    if (calls_left > 0 || (fault_hit && !armed_from_then_on)) return false;
    return fault_hit = true;
}

template <typename T>
T* Counted(T* made, std::atomic<long>& counter) {
    if (made) ++counter;
    return made;
}

/// A transfer of `length` bytes that may fail; `move` moves that many.
template <typename Move>
bool Transfer(FaultCall call, std::size_t length, Move move) {
    if (!Fails(call)) return move(length);
    if (armed_manner == FaultManner::cut_short) move(length / 2);
    if (armed_manner == FaultManner::lost_reply) move(length);
    return false;
}

}  // namespace

void RecordChange(HostChange change) {
    if (HostRecording* to = recording) to->changes_.push_back(std::move(change));
}

Fault::Fault(unsigned calls, int nth, FaultManner manner, bool from_then_on) {
    armed_calls = calls;
    calls_left = nth;
    armed_manner = manner;
    armed_from_then_on = from_then_on;
    fault_hit = false;
    armed = true;
}

Fault::~Fault() {
    armed = false;
}

bool Fault::hit() const {
    return fault_hit;
}

HostRecording::HostRecording() {
    recording = this;
}

HostRecording::~HostRecording() {
    recording = nullptr;
}

void ApplyChange(Bytes& host, const HostChange& change, bool torn) {
    if (change.length >= 0) {
        const auto grown = static_cast<std::size_t>(change.length);
        return host.resize(torn ? host.size() + (grown - std::min(grown, host.size())) / 2 : grown);
    }
    const auto at = static_cast<std::size_t>(change.offset);
    const std::size_t length = torn ? change.bytes.size() / 2 : change.bytes.size();
    if (host.size() < at + length) host.resize(at + length);
    std::copy_n(change.bytes.begin(), length, host.begin() + static_cast<std::ptrdiff_t>(at));
}

HeldResources HeldNow() {
    return {blocks, files, streams, mutexes, locks};
}

extern "C" {

void* __real_heap_alloc(std::size_t);
void* __real_heap_alloc_zeroed(std::size_t);
void* __real_heap_resize(void*, std::size_t);
void __real_heap_free(void*);
HostMutex* __real_mutex_create();
void __real_mutex_destroy(HostMutex*);
void __real_mutex_lock(HostMutex*);
void __real_mutex_unlock(HostMutex*);
int __real_host_open(const char*, bool);
void __real_host_close(int);
bool __real_host_size(int, std::int64_t*);
bool __real_host_read(int, std::int64_t, void*, std::size_t);
bool __real_host_write(int, std::int64_t, const void*, std::size_t);
bool __real_host_extend(int, std::int64_t, std::int64_t);
std::FILE* __real_disk_open(const char*, DiskMode);
std::size_t __real_disk_read(std::FILE*, void*, std::size_t);
bool __real_disk_write(std::FILE*, const void*, std::size_t);
bool __real_disk_flush(std::FILE*);
bool __real_disk_size(std::FILE*, std::int64_t*);
bool __real_disk_close(std::FILE*);

void* __wrap_heap_alloc(std::size_t size) {
    return Fails(kFaultMemory) ? nullptr : Counted(__real_heap_alloc(size), blocks);
}

void* __wrap_heap_alloc_zeroed(std::size_t size) {
    return Fails(kFaultMemory) ? nullptr : Counted(__real_heap_alloc_zeroed(size), blocks);
}

void* __wrap_heap_resize(void* block, std::size_t size) {
    if (Fails(kFaultMemory)) return nullptr;
    void* resized = __real_heap_resize(block, size);
    return block ? resized : Counted(resized, blocks);
}

void __wrap_heap_free(void* block) {
    if (block) --blocks;
    __real_heap_free(block);
}

HostMutex* __wrap_mutex_create() {
    return Fails(kFaultMutex) ? nullptr : Counted(__real_mutex_create(), mutexes);
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
    return Transfer(kFaultRead, length, [&](std::size_t n) { return __real_host_read(fd, offset, buffer, n); });
}

bool __wrap_host_write(int fd, std::int64_t offset, const void* data, std::size_t length) {
    return Transfer(kFaultWrite, length, [&](std::size_t n) {
        if (recording)
            RecordChange({fd, offset, Bytes(static_cast<const char*>(data), static_cast<const char*>(data) + n), -1});
        return __real_host_write(fd, offset, data, n);
    });
}

bool __wrap_host_extend(int fd, std::int64_t offset, std::int64_t length) {
    return Transfer(kFaultExtend, static_cast<std::size_t>(length), [&](std::size_t n) {
        const auto added = static_cast<std::int64_t>(n);
        if (recording) RecordChange({fd, offset, {}, offset + added});
        return __real_host_extend(fd, offset, added);
    });
}

std::FILE* __wrap_disk_open(const char* path, DiskMode mode) {
    return Fails(kFaultDisk) ? nullptr : Counted(__real_disk_open(path, mode), streams);
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

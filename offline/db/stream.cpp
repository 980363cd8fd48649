// SPDX-License-Identifier: MIT
#include "offline/db/stream.h"

#include <cstring>

#include "offline/db/file_names.h"
#include "platform/disk_stream.h"

namespace vlt {

namespace {

constexpr std::size_t kStoredNameMax = 255;

bool open_stored(std::int32_t package, const char* path, bool for_writing, KOfflineStream* stream) {
    const char* name = last_component(path);
    if (*name == 0 || std::strlen(name) > kStoredNameMax) return false;
    const std::uint32_t mode = for_writing ? VLT_MODE_WRITE : VLT_MODE_READ;
    const std::int32_t handle = vlt_file_open(package, name, mode, 0, for_writing, nullptr);
    if (handle == 0) return false;  // beyond the 32,767th package handle, those of files are negative
    stream->in_package = package;
    stream->file.handle = static_cast<std::uint32_t>(handle);
    return true;
}

bool open_disk(const char* path, bool for_writing, KOfflineStream* stream) {
    stream->in_package = 0;
    stream->file.disk = disk_open(path, for_writing ? DiskMode::write : DiskMode::read);
    return stream->file.disk != nullptr;
}

bool stored_size(std::uint32_t handle, std::int64_t* size) {
    return vlt_file_set_pos_eof(handle) && vlt_file_get_pos(handle, size) && vlt_file_set_pos_bof(handle);
}

Failure read_whole(KOfflineStream* stream, HeapBlock<char>* text) {
    std::int32_t size = 0;
    if (!KOfflineStream_GetSize(stream, &size)) return Failure::file;
    if (size < 1) return Failure::none;
    const auto length = static_cast<std::size_t>(size);
    auto room = HeapBlock<char>::of(length + 1);
    if (!room) return Failure::memory;
    if (KOfflineStream_Read(room.get(), size, stream) < size) return Failure::file;
    room[length] = 0;
    text->reset(room.release());
    return Failure::none;
}

}  // namespace

bool KOfflineStream_Open(KOfflineDb* db, const char* path, std::int32_t for_writing, KOfflineStream* stream) {
    if (!path) return false;
    const bool writing = for_writing != 0;
    const bool in_package = db && db->package >= 1;
    return in_package ? open_stored(db->package, path, writing, stream) : open_disk(path, writing, stream);
}

std::int32_t KOfflineStream_Read(void* buffer, std::int32_t count, KOfflineStream* stream) {
    if (!buffer || count < 1) return 0;
    if (stream->in_package >= 1) return vlt_file_read(stream->file.handle, buffer, count);
    return static_cast<std::int32_t>(disk_read(stream->file.disk, buffer, static_cast<std::size_t>(count)));
}

bool KOfflineStream_Write(const void* buffer, std::int32_t count, KOfflineStream* stream) {
    if (!buffer || count < 1) return true;
    if (stream->in_package >= 1) return vlt_file_write(stream->file.handle, buffer, count) == 1;
    return disk_write(stream->file.disk, buffer, static_cast<std::size_t>(count));
}

bool KOfflineStream_GetSize(KOfflineStream* stream, std::int32_t* size) {
    *size = 0;
    std::int64_t length = 0;
    const bool known =
        stream->in_package >= 1 ? stored_size(stream->file.handle, &length) : disk_size(stream->file.disk, &length);
    if (!known || length > INT32_MAX) return false;
    *size = static_cast<std::int32_t>(length);
    return true;
}

bool KOfflineStream_Flush(KOfflineStream* stream) {
    return stream->in_package >= 1 || disk_flush(stream->file.disk);
}

void KOfflineStream_Close(KOfflineDb*, KOfflineStream* stream) {
    if (stream->in_package >= 1) {
        vlt_file_close(stream->file.handle);
    } else {
        disk_close(stream->file.disk);
    }
}

bool KOfflineDb_FileExists(KOfflineDb* db, const char* path) {
    KOfflineStream stream;
    if (!path || *path == 0 || !KOfflineStream_Open(db, path, 0, &stream)) return false;
    KOfflineStream_Close(db, &stream);
    return true;
}

Failure read_whole_file(KOfflineDb* db, const char* path, HeapBlock<char>* text) {
    KOfflineStream stream;
    if (!KOfflineStream_Open(db, path, 0, &stream)) return Failure::file;
    const Failure failure = read_whole(&stream, text);
    KOfflineStream_Close(db, &stream);
    return failure;
}

}  // namespace vlt

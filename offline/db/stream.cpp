// SPDX-License-Identifier: MIT
#include "offline/db/stream.h"

#include <cstring>

#include "offline/db/file_names.h"
#include "platform/disk_stream.h"

namespace {

constexpr std::size_t kStoredNameMax = 255;

bool open_stored(std::int32_t package, const char* path, bool for_writing, KOfflineStream* stream) {
    const char* name = last_component(path);
    if (*name == 0 || std::strlen(name) > kStoredNameMax) return false;
    const std::uint32_t mode = for_writing ? VLT_MODE_WRITE : VLT_MODE_READ;
    const std::int32_t handle = vlt_file_open(package, name, mode, 0, for_writing, nullptr);
    if (handle < 1) return false;
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

}  // namespace

std::int32_t KOfflineStream_Open(KOfflineDb* db, const char* path, std::int32_t for_writing, KOfflineStream* stream) {
    if (!path) return 0;
    const bool writing = for_writing != 0;
    const bool in_package = db && db->package >= 1;
    return in_package ? open_stored(db->package, path, writing, stream) : open_disk(path, writing, stream);
}

std::int32_t KOfflineStream_Read(void* buffer, std::int32_t count, KOfflineStream* stream) {
    if (!buffer || count < 1) return 0;
    if (stream->in_package >= 1) return vlt_file_read(stream->file.handle, buffer, count);
    return static_cast<std::int32_t>(disk_read(stream->file.disk, buffer, static_cast<std::size_t>(count)));
}

std::int32_t KOfflineStream_Write(const void* buffer, std::int32_t count, KOfflineStream* stream) {
    if (!buffer || count < 1) return 1;
    if (stream->in_package >= 1) return vlt_file_write(stream->file.handle, buffer, count);
    return disk_write(stream->file.disk, buffer, static_cast<std::size_t>(count));
}

std::int32_t KOfflineStream_GetSize(KOfflineStream* stream, std::int32_t* size) {
    *size = 0;
    std::int64_t length = 0;
    const bool known =
        stream->in_package >= 1 ? stored_size(stream->file.handle, &length) : disk_size(stream->file.disk, &length);
    if (!known || length > INT32_MAX) return 0;
    *size = static_cast<std::int32_t>(length);
    return 1;
}

std::int32_t KOfflineStream_Flush(KOfflineStream* stream) {
    return stream->in_package >= 1 || disk_flush(stream->file.disk) ? 1 : 0;
}

void KOfflineStream_Close(KOfflineDb*, KOfflineStream* stream) {
    if (stream->in_package >= 1) {
        vlt_file_close(stream->file.handle);
    } else {
        disk_close(stream->file.disk);
    }
}

// SPDX-License-Identifier: MIT
#include <algorithm>

#include "offline/db/stream.h"
#include "platform/disk_stream.h"

namespace vlt {

namespace {

/// Bytes that a transfer moves at a time.
constexpr std::int32_t KOfflineDb_COPY_CHUNK = 32768;

bool has_package(const KOfflineDb* db) {
    return db && db->package >= 1;
}

// A transfer tells whether it could start; a copy cut short by a full disk is the caller's to notice.

void copy_out(KOfflineStream* from, std::FILE* to) {
    char chunk[KOfflineDb_COPY_CHUNK];
    std::int32_t length;
    while ((length = KOfflineStream_Read(chunk, KOfflineDb_COPY_CHUNK, from)) > 0) {
        (void)disk_write(to, chunk, static_cast<std::size_t>(length));
    }
}

/// Copies no more than the `size` bytes that the disk file holds at first: it may be the package itself, which grows
/// as it is read. A file without any may have some all the same: the system tells no size of those that it makes up.
/// Those may have no end, so the first failed write ends the copy.
void copy_in(std::FILE* from, std::int64_t size, KOfflineStream* to) {
    std::int64_t left = size > 0 ? size : INT64_MAX;
    char chunk[KOfflineDb_COPY_CHUNK];
    std::size_t length;
    while ((length = disk_read(from, chunk, KOfflineDb_COPY_CHUNK)) > 0 && left > 0) {
        length = static_cast<std::size_t>(std::min<std::int64_t>(left, static_cast<std::int64_t>(length)));
        left -= static_cast<std::int64_t>(length);
        if (!KOfflineStream_Write(chunk, static_cast<std::int32_t>(length), to)) return;
    }
}

}  // namespace

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL KOfflineDb_GetPackageFile(KOfflineDb* db, const char* stored_name,
                                                        const char* disk_path) {
    std::FILE* disk = has_package(db) && disk_path ? disk_open(disk_path, DiskMode::write) : nullptr;
    if (!disk) return 0;
    KOfflineStream stored;
    const bool opened = KOfflineStream_Open(db, stored_name, 0, &stored);
    if (opened) copy_out(&stored, disk);
    disk_close(disk);
    if (opened) KOfflineStream_Close(db, &stored);
    return opened;
}

VLT_API std::int32_t VLT_CALL KOfflineDb_SavePackageFile(KOfflineDb* db, const char* disk_path,
                                                         const char* stored_name) {
    std::FILE* disk = has_package(db) && disk_path ? disk_open(disk_path, DiskMode::read) : nullptr;
    if (!disk) return 0;
    KOfflineStream stored;
    std::int64_t size = 0;
    const bool opened = disk_size(disk, &size) && KOfflineStream_Open(db, stored_name, 1, &stored);
    if (opened) copy_in(disk, size, &stored);
    disk_close(disk);
    if (opened) KOfflineStream_Close(db, &stored);
    return opened;
}

VLT_API std::int32_t VLT_CALL KOfflineDb_CheckPackageFileExist(KOfflineDb* db, const char* stored_name) {
    return has_package(db) && KOfflineDb_FileExists(db, stored_name);
}

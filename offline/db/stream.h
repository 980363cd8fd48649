// SPDX-License-Identifier: MIT
// Streams: the only way the database layer touches files. A stream opened through a database is a file inside the
// database's package while it has one open, and a disk file otherwise, so that one code path serves both.
#pragma once

#include <cstdint>
#include <cstdio>

#include "include/offline.h"

/// One file, from open to close. It lives in its user's frame and is closed exactly once.
struct KOfflineStream {
    std::int32_t in_package;  ///< the package's handle, or 0 for a disk file
    union {
        std::uint32_t handle;  ///< the open file of the package
        std::FILE* disk;
    } file;
};

/// Opens the last component of `path` inside the package of `db`, or the disk file `path` when `db` has none. Opening
/// for writing makes the file when it is missing and empties it when it is there. Returns 1, or 0 with nothing open.
std::int32_t KOfflineStream_Open(KOfflineDb* db, const char* path, std::int32_t for_writing, KOfflineStream* stream);

/// Returns how many bytes arrived: fewer than `count` at the end of the file, 0 at the end or on failure.
std::int32_t KOfflineStream_Read(void* buffer, std::int32_t count, KOfflineStream* stream);

/// Returns 1 when all bytes are written, else 0. A null buffer or a count below 1 writes nothing and succeeds.
std::int32_t KOfflineStream_Write(const void* buffer, std::int32_t count, KOfflineStream* stream);

/// Stores the file's length and leaves the stream at its start. Returns 1; 0 with the length 0 on failure, which a
/// file of 2 GiB or more is.
std::int32_t KOfflineStream_GetSize(KOfflineStream* stream, std::int32_t* size);

/// Hands everything written so far to the host. Returns 1, or 0 when it does not take it; what is inside a package is
/// there already.
std::int32_t KOfflineStream_Flush(KOfflineStream* stream);

/// Closes the stream. What is closed depends on the stream alone, not on what `db` has open by now.
void KOfflineStream_Close(KOfflineDb* db, KOfflineStream* stream);

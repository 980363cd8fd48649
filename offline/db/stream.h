// SPDX-License-Identifier: MIT
// Streams: how the database layer reads and writes the files of a database. A stream opened through a database is a
// file inside the database's package while it has one open, and a disk file otherwise, so that one code path serves
// both.
#pragma once

#include <cstdint>
#include <cstdio>

#include "base/heap.h"
#include "include/offline.h"
#include "offline/db/error_state.h"

namespace vlt {

/// One file, from open to close. It lives in its user's frame and is closed exactly once.
struct KOfflineStream {
    std::int32_t in_package;  // the package's handle, or 0 for a disk file
    union {
        std::uint32_t handle;  // the open file of the package
        std::FILE* disk;
    } file;
};

/// Opens the last component of `path` inside the package of `db`, or the disk file `path` when `db` has none. Opening
/// for writing makes the file when it is missing and empties it when it is there. False with nothing open.
bool KOfflineStream_Open(KOfflineDb* db, const char* path, std::int32_t for_writing, KOfflineStream* stream);

/// Returns how many bytes arrived: fewer than `count` at the end of the file, 0 at the end or on failure.
std::int32_t KOfflineStream_Read(void* buffer, std::int32_t count, KOfflineStream* stream);

/// False unless all bytes are written. A null buffer or a count below 1 writes nothing and succeeds.
bool KOfflineStream_Write(const void* buffer, std::int32_t count, KOfflineStream* stream);

/// Stores the file's length and leaves the stream at its start. False with the length 0 on failure, which a file of
/// 2 GiB or more is.
bool KOfflineStream_GetSize(KOfflineStream* stream, std::int32_t* size);

/// Hands everything written so far to the host; false when it does not take it. What is inside a package is there
/// already.
bool KOfflineStream_Flush(KOfflineStream* stream);

/// Closes the stream. What is closed depends on the stream alone, not on what `db` has open by now.
void KOfflineStream_Close(KOfflineDb* db, KOfflineStream* stream);

/// Whether a stream can be opened on `path` for reading.
bool KOfflineDb_FileExists(KOfflineDb* db, const char* path);

/// Reads a whole file into `text` and puts a zero byte behind it; an empty file leaves no text.
Failure read_whole_file(KOfflineDb* db, const char* path, HeapBlock<char>* text);

}  // namespace vlt

// SPDX-License-Identifier: MIT
// Sequential access to ordinary disk files through the runtime library's streams.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace vlt {

enum class DiskMode { read, write };

extern "C" {

/// Opens a file in binary mode; `DiskMode::write` creates it or empties it. Null on failure.
std::FILE* disk_open(const char* path, DiskMode mode);

/// Reads up to `length` bytes; returns how many arrived, 0 at the end or on failure.
std::size_t disk_read(std::FILE* stream, void* buffer, std::size_t length);

/// Writes exactly `length` bytes; a shorter transfer is a failure.
bool disk_write(std::FILE* stream, const void* data, std::size_t length);

/// Flushes the buffer of the stream; false when the host does not take it.
bool disk_flush(std::FILE* stream);

/// Stores the length of the file in bytes, of 64 bits on every system, and leaves the stream at its start.
bool disk_size(std::FILE* stream, std::int64_t* size);

/// Closes the stream; false when what was written could not be stored.
bool disk_close(std::FILE* stream);

}  // extern "C"

}  // namespace vlt

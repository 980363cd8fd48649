// SPDX-License-Identifier: MIT
// Positioned access to host files, the files that packages live in.
// C linkage, here and in the rest of this folder: a test binds its own function in front of one of these at link
// time, to make the n-th call fail or to count what is held.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vlt {

extern "C" {

/// Opens an existing file in binary mode, for reading or for reading and writing; never creates one.
/// Returns a descriptor, or -1.
int host_open(const char* path, bool writable);

/// Closes a descriptor of `host_open`.
void host_close(int fd);

/// Stores the length of the file in bytes.
bool host_size(int fd, std::int64_t* size);

/// Reads exactly `length` bytes at `offset`; a shorter transfer is a failure.
bool host_read(int fd, std::int64_t offset, void* buffer, std::size_t length);

/// Writes exactly `length` bytes at `offset`; a shorter transfer is a failure, and what was written stays.
bool host_write(int fd, std::int64_t offset, const void* data, std::size_t length);

/// Appends `length` zero bytes at `offset`, the end of the file.
bool host_extend(int fd, std::int64_t offset, std::int64_t length);

}  // extern "C"

}  // namespace vlt

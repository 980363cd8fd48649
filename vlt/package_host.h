// SPDX-License-Identifier: MIT
// The host file of an open package, seen as blocks. Nothing else reads or writes it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vlt/format.h"

namespace vlt {

class PackageHost {
public:
    PackageHost() = default;
    PackageHost(const PackageHost&) = delete;
    PackageHost& operator=(const PackageHost&) = delete;
    ~PackageHost();

    /// Opens the host file of a package that begins at an offset in it. False when that cannot be done.
    bool open(const char* path, bool read_only, std::int64_t base_offset);

    /// Asks the host for its length and counts the blocks. False when that fails.
    bool measure();

    /// Transfers bytes from the block at an index on, `inside` bytes into it; whole, or false.
    bool read(std::int32_t block, std::int32_t inside, void* buffer, std::size_t length) const;
    bool write(std::int32_t block, std::int32_t inside, const void* data, std::size_t length) const;

    /// Makes the host file longer by `count` zero blocks, which do not count yet. The first of them begins where the
    /// last whole block ends, over what a host file that ended in a partial block holds there.
    bool extend(std::int32_t count) const;

    /// Fills the last block that counts with zeros from `inside` on.
    bool fill_last_block(std::int32_t inside) const;

    bool read_only() const { return read_only_; }

    /// Blocks that count. Growth adds to them.
    std::int32_t block_count() const { return block_count_; }
    void set_block_count(std::int32_t count) { block_count_ = count; }

private:
    std::int64_t offset_of(std::int32_t block) const { return base_offset_ + std::int64_t{block} * VLT_BLOCK_SIZE; }

    int fd_ = -1;
    std::int64_t base_offset_ = 0;  // where block 0 lies
    bool read_only_ = false;        // opened for reading only
    std::int32_t block_count_ = 0;
};

}  // namespace vlt

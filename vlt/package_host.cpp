// SPDX-License-Identifier: MIT
#include "vlt/package_host.h"

#include <algorithm>

#include "platform/host_file.h"

namespace vlt {

PackageHost::~PackageHost() {
    if (fd_ >= 0) host_close(fd_);
}

bool PackageHost::open(const char* path, bool read_only, std::int64_t base_offset) {
    fd_ = host_open(path, !read_only);
    read_only_ = read_only;
    base_offset_ = base_offset;
    return fd_ >= 0;
}

bool PackageHost::measure() {
    std::int64_t length = 0;
    if (!host_size(fd_, &length)) return false;
    const std::int64_t blocks = std::max<std::int64_t>(length - base_offset_, 0) / VLT_BLOCK_SIZE;
    // Blocks that no number can name are out of reach; the package ends before them.
    block_count_ = static_cast<std::int32_t>(std::min<std::int64_t>(blocks, VLT_BLOCKS_MAX));
    return true;
}

bool PackageHost::read(std::int32_t block, std::int32_t inside, void* buffer, std::size_t length) const {
    return host_read(fd_, offset_of(block) + inside, buffer, length);
}

bool PackageHost::write(std::int32_t block, std::int32_t inside, const void* data, std::size_t length) const {
    return host_write(fd_, offset_of(block) + inside, data, length);
}

bool PackageHost::extend(std::int32_t count) const {
    return host_extend(fd_, offset_of(block_count_), std::int64_t{count} * VLT_BLOCK_SIZE);
}

bool PackageHost::fill_last_block(std::int32_t inside) const {
    return host_extend(fd_, offset_of(block_count_ - 1) + inside, VLT_BLOCK_SIZE - inside);
}

}  // namespace vlt

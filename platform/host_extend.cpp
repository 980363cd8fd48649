// SPDX-License-Identifier: MIT
#include <algorithm>

#include "platform/host_file.h"

bool host_extend(int fd, std::int64_t offset, std::int64_t length) {
    // Written, not left as a hole: a full disk is met here, where nothing depends on the new bytes yet.
    static const char zeros[64 * 1024] = {};
    while (length > 0) {
        const auto piece = static_cast<std::size_t>(std::min<std::int64_t>(length, sizeof zeros));
        if (!host_write(fd, offset, zeros, piece)) return false;
        offset += static_cast<std::int64_t>(piece);
        length -= static_cast<std::int64_t>(piece);
    }
    return true;
}

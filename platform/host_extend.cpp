// SPDX-License-Identifier: MIT
#include <algorithm>

#include "platform/host_file.h"

namespace vlt {

bool host_extend(int fd, std::int64_t offset, std::int64_t length) {
    // Zeros are written instead of leaving a hole, so that a full disk shows before anything depends on the bytes.
    static const char zeros[64 * 1024] = {};
    while (length > 0) {
        const auto piece = static_cast<std::size_t>(std::min<std::int64_t>(length, sizeof zeros));
        if (!host_write(fd, offset, zeros, piece)) return false;
        offset += static_cast<std::int64_t>(piece);
        length -= static_cast<std::int64_t>(piece);
    }
    return true;
}

}  // namespace vlt

// SPDX-License-Identifier: MIT
// Paths on POSIX: a caller may write '\' or '/', the host knows only '/'.
#pragma once

#include <cstring>

#include "base/heap.h"
#include "platform/multibyte.h"

namespace vlt {

/// A path in the host's spelling, for the length of one call.
class PosixPath {
public:
    explicit PosixPath(const char* path) : copy_(HeapBlock<char>::of(std::strlen(path) + 1)) {
        if (!copy_) return;
        std::strcpy(copy_.get(), path);
        // A trail byte may look like a separator.
        for (const char* c = path; *c; c = multibyte_next(c))
            if (*c == '\\') copy_[static_cast<std::size_t>(c - path)] = '/';
    }
    /// Null when memory ran out.
    const char* get() const { return copy_.get(); }

private:
    HeapBlock<char> copy_;
};

}  // namespace vlt

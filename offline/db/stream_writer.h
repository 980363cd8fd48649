// SPDX-License-Identifier: MIT
// Collects what is written to a stream and passes it on in few pieces. The first piece that fails is the last one.
#pragma once

#include <cstddef>
#include <cstring>

#include "offline/db/stream.h"

namespace vlt {

class StreamWriter {
public:
    explicit StreamWriter(KOfflineStream* stream) : stream_(stream) {}

    void put(const char* bytes, std::size_t length) {
        if (length > sizeof buffer_ - used_) return put_in_parts(bytes, length);
        std::memcpy(buffer_ + used_, bytes, length);
        used_ += length;
    }

    /// Passes on what is left, to the host; false when anything has failed.
    bool finish();

    bool failed() const { return failed_; }

private:
    void put_in_parts(const char* bytes, std::size_t length);
    void flush();

    KOfflineStream* stream_;
    bool failed_ = false;
    std::size_t used_ = 0;
    char buffer_[32768];
};

}  // namespace vlt

// SPDX-License-Identifier: MIT
#include "offline/db/stream_writer.h"

namespace vlt {

void StreamWriter::put_in_parts(const char* bytes, std::size_t length) {
    while (length > sizeof buffer_ - used_) {
        const std::size_t fits = sizeof buffer_ - used_;
        std::memcpy(buffer_ + used_, bytes, fits);
        used_ += fits;
        bytes += fits;
        length -= fits;
        flush();
    }
    put(bytes, length);
}

bool StreamWriter::finish() {
    flush();
    if (!failed_) failed_ = !KOfflineStream_Flush(stream_);
    return !failed_;
}

void StreamWriter::flush() {
    if (!failed_) failed_ = !KOfflineStream_Write(buffer_, static_cast<std::int32_t>(used_), stream_);
    used_ = 0;
}

}  // namespace vlt

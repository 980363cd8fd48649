// SPDX-License-Identifier: MIT
// What is known of a chain: its blocks from the first one on, kept as runs of consecutive block indexes, so that a
// byte far into a long file is found without walking there.
#pragma once

#include <algorithm>
#include <cstdint>

#include "base/array.h"

/// A row of consecutive blocks; in the host file one stretch of bytes.
struct vlt_run {
    std::int32_t block;
    std::int32_t count;
};

/// The known beginning of a chain. The block map is the truth; the block store extends this from it on demand, and
/// forgets it when the chain is released.
class vlt_chain {
public:
    /// Blocks known so far.
    std::int32_t length() const { return length_; }
    bool empty() const { return length_ == 0; }

    std::int32_t first_block() const { return parts_[0].block; }
    std::int32_t last_block() const { return parts_.back().block + (length_ - 1 - parts_.back().position); }

    /// Adds the block that follows the last known one; false when memory runs out.
    [[nodiscard]] bool append(std::int32_t block) {
        if (length_ == 0 || block != last_block() + 1)
            if (!parts_.push_back({length_, block})) return false;
        ++length_;
        return true;
    }

    /// The run that holds the block at `position`, from that block on; the position must be known.
    vlt_run run_at(std::int32_t position) const {
        const Part* after = std::upper_bound(parts_.begin(), parts_.end(), position,
                                             [](std::int32_t p, const Part& part) { return p < part.position; });
        const Part& part = after[-1];
        const std::int32_t end = after == parts_.end() ? length_ : after->position;
        return {part.block + (position - part.position), end - position};
    }

    /// Forgets the blocks from `length` on.
    void shorten(std::int32_t length) {
        while (!parts_.empty() && parts_.back().position >= length) parts_.shrink(parts_.size() - 1);
        length_ = std::min(length_, length);
    }

    /// Forgets everything.
    void clear() {
        parts_.clear();
        length_ = 0;
    }

private:
    struct Part {
        std::int32_t position;  // in the chain, counted in blocks
        std::int32_t block;
    };
    Array<Part> parts_;
    std::int32_t length_ = 0;
};

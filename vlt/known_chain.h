// SPDX-License-Identifier: MIT
// What is known of a chain: its blocks from the first one on, kept as runs of consecutive block indexes, so that a
// byte far into a long file is found without walking there.
#pragma once

#include <algorithm>
#include <cstdint>

#include "base/array.h"

namespace vlt {

/// Consecutive blocks; in the host file one stretch of bytes.
struct Run {
    std::int32_t block;
    std::int32_t count;
};

/// The known beginning of a chain. The block map is the truth; it is followed on demand, and what is known is
/// forgotten when the chain is released.
class KnownChain {
public:
    /// Blocks known so far.
    std::int32_t length() const { return length_; }
    bool empty() const { return length_ == 0; }

    std::int32_t first_block() const { return start_; }
    std::int32_t last_block() const { return last_; }

    /// Adds the block that follows the last known one; false when memory runs out.
    [[nodiscard]] bool append(std::int32_t block) {
        if (length_ == 0) {
            start_ = block;
        } else if (block != last_ + 1) {
            if (!breaks_.push_back({length_, block})) return false;
        }
        last_ = block;
        ++length_;
        return true;
    }

    /// The run that holds the block at `position`, from that block on; the position must be known.
    Run run_at(std::int32_t position) const {
        const Break* after = std::upper_bound(breaks_.begin(), breaks_.end(), position,
                                              [](std::int32_t p, const Break& b) { return p < b.position; });
        const Break run = after == breaks_.begin() ? Break{0, start_} : after[-1];
        const std::int32_t end = after == breaks_.end() ? length_ : after->position;
        return {run.block + (position - run.position), end - position};
    }
    std::int32_t block_at(std::int32_t position) const { return run_at(position).block; }

    /// Forgets the blocks from `length` on.
    void shorten(std::int32_t length) {
        if (length >= length_) return;
        if (length > 0) last_ = block_at(length - 1);
        while (!breaks_.empty() && breaks_.back().position >= length) breaks_.shrink(breaks_.size() - 1);
        length_ = length;
    }

    /// Forgets everything.
    void clear() {
        breaks_.clear();
        length_ = 0;
    }

private:
    /// A block that does not lie right after the one before it.
    struct Break {
        std::int32_t position;  // in the chain, counted in blocks
        std::int32_t block;
    };
    Array<Break> breaks_;  // none in a chain that is one run, as most are
    std::int32_t start_ = 0;
    std::int32_t last_ = 0;
    std::int32_t length_ = 0;
};

}  // namespace vlt

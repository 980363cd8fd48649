// SPDX-License-Identifier: MIT
#include "inspect/block_map.h"

namespace inspect {

std::int32_t BlockMap::word_count() const {
    return run_.size() < kMap ? 0 : static_cast<std::int32_t>((run_.size() - kMap) / 4);
}

std::uint32_t BlockMap::Word(std::int32_t block) const {
    if (block < 0 || block >= word_count()) return 0;
    return Load<std::uint32_t>(run_.data() + kMap + 4 * static_cast<std::size_t>(block));
}

std::vector<std::int32_t> BlockMap::Chain(std::int32_t start) const {
    std::vector<std::int32_t> chain;
    BlockSet seen(block_count_);
    for (std::int32_t block = start; Inside(block) && !seen.Has(block); block = Next(block)) {
        seen.Add(block);
        chain.push_back(block);
    }
    return chain;
}

bool ChainRuns::Next(Run& run, std::int32_t most) {
    if (left_ <= 0 || !map_.Inside(at_)) return false;
    run = {at_, 0};
    do {
        at_ = map_.Next(at_);
        --left_;
        ++run.count;
    } while (left_ > 0 && run.count < most && at_ == run.block + run.count && map_.Inside(at_));
    return true;
}

}  // namespace inspect

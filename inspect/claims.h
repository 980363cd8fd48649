// SPDX-License-Identifier: MIT
// Who holds which block: the header, the directory, each file. A block belongs to the first chain that comes to it;
// where another comes to it too, that one's walk ends, and both are known to share it. So all walks together take as
// many steps as there are blocks, however the map is damaged.
#pragma once

#include <functional>
#include <optional>

#include "inspect/package.h"

namespace inspect {

// Owners are entries by index, and these.
inline constexpr int kHeaderOwner = -2, kDirectoryOwner = -1;

/// The walk of one chain.
struct Claim {
    int owner = 0;
    std::int64_t needed = 0;  // blocks that its bytes take
    std::int64_t length = 0;  // blocks that it holds
    ChainEnd end = ChainEnd::last;
    std::int32_t end_block = -1;   // the block that it leads to in the end, where it should not
    std::int32_t looks_free = -1;  // a needed block that the map calls free
    bool torn = false;             // it was left at a block beyond its bytes that looks free
};

/// A block to which two chains lead, or one of them twice, and how far each of them is then. What follows the block
/// they share as well.
struct Share {
    std::int32_t block = 0;
    int owner = 0, other = 0;  // who held it, who came to it
    std::int64_t position = 0, other_position = 0;
    // Blocks that the other's chain has in all; kEndless when it loops. The header and the directory are no file's.
    std::int64_t other_length = 0;
};
inline constexpr std::int64_t kEndless = std::int64_t{1} << 40;

class Claims {
public:
    using Visit = std::function<void(const Claim&, const Entry&)>;

    /// Walks all chains; `visit` may see each walk, with an empty entry for the header and the directory.
    explicit Claims(const Package& package, const Visit& visit = {});

    bool Held(std::int32_t block) const { return held_.Has(block); }
    /// The blocks that are shared: one for each chain that ran into another or into itself, in the order of `other`.
    const std::vector<Share>& shares() const { return shares_; }
    /// The one of them where a chain ran into another; null when it did not.
    const Share* ShareOf(int other) const;

private:
    using Step = std::function<void(int owner, std::int32_t block, std::int64_t position)>;

    void WalkAll(const Visit& visit, const Step& step);
    Claim WalkOwn(int owner, const OwnChain& chain, const Step& step);
    Claim WalkFile(const Entry& entry, const Step& step);
    bool Take(Claim& claim, std::int32_t block);
    void FindOwners();

    const Package& package_;
    BlockSet held_;
    std::vector<Share> shares_;
};

/// How much of a stored file is there.
struct FileState {
    Entry entry;
    std::int64_t bytes = 0;   // that its chain gives, at most its size
    bool looks_free = false;  // the map calls some of its blocks free
    bool wrong_end = false;   // its chain ends at a bad link, or is longer than the size asks for
    bool shared = false;      // others lead to some of its blocks
    int shared_with = 0;      // one of them

    bool whole() const { return entry.size >= 0 && bytes == entry.size; }
};

/// Visits every used entry with what there is of its file.
void ForEachFile(const Package& package, const std::function<void(const FileState&)>& visit);

}  // namespace inspect

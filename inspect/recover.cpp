// SPDX-License-Identifier: MIT
#include "inspect/recover.h"

#include <algorithm>
#include <deque>
#include <map>

#include "inspect/claims.h"

namespace inspect {

namespace {

/// What the distances between entries tell of the width of names; where they do not tell, `otherwise`.
bool GuessWide(const Scan& scan, bool otherwise) {
    std::int64_t narrow = 0, wide = 0;
    for (const DirectoryBlock& found : scan.directory) {
        narrow += found.narrow_hits;
        wide += found.wide_hits;
    }
    return narrow == wide ? otherwise : wide > narrow;
}

class HeaderRecovery {
public:
    HeaderRecovery(const Package& package, const Scan& scan) : package_(package), taken_(package.block_count()) {
        for (const HeaderBlock& found : scan.header)
            found.position < 0 ? unplaced_.push_back(found.block)
                               : (void)placed_.emplace(found.position, found.block);
    }

    /// The header chain as far as its links can be believed, and then what the scan found for each further place.
    std::vector<std::int32_t> Run() {
        const auto wanted = static_cast<std::size_t>(HeaderBlocksFor(package_.block_count()));
        for (const std::int32_t block : package_.header().blocks) {
            if (!chain_.empty() && !Believable(block)) break;
            Append(block);
        }
        while (chain_.size() < wanted) Append(Find(static_cast<std::int32_t>(chain_.size())));
        while (chain_.back() < 0) chain_.pop_back();
        return std::move(chain_);
    }

private:
    void Append(std::int32_t block) {
        chain_.push_back(block);
        if (block >= 0) taken_.Add(block);
    }

    /// A block without any words is one: they are of free blocks.
    bool Believable(std::int32_t block) const {
        std::uint8_t bytes[kBlock];
        std::int32_t position;
        package_.ReadBlock(block, bytes);
        const bool empty = std::all_of(bytes, bytes + kBlock, [](std::uint8_t byte) { return byte == 0; });
        if (!empty && !LooksLikeHeader(bytes, &position)) return false;
        return empty || position < 0 || position == static_cast<std::int32_t>(chain_.size());
    }

    /// The block whose words say that it is at a position; or else the first of those whose words do not say.
    std::int32_t Find(std::int32_t position) {
        const auto found = placed_.find(position);
        if (found != placed_.end() && !taken_.Has(found->second)) return found->second;
        while (next_unplaced_ < unplaced_.size() && taken_.Has(unplaced_[next_unplaced_])) ++next_unplaced_;
        return next_unplaced_ < unplaced_.size() ? unplaced_[next_unplaced_] : -1;
    }

    const Package& package_;
    BlockSet taken_;
    std::map<std::int32_t, std::int32_t> placed_;  // the first block for each position
    std::vector<std::int32_t> unplaced_;
    std::size_t next_unplaced_ = 0;
    std::vector<std::int32_t> chain_;
};

class DirectoryRecovery {
public:
    DirectoryRecovery(Package& package, const Scan& scan)
        : package_(package), scan_(scan), size_(package.entry_size()), taken_(package.block_count()) {}

    /// The directory chain as far as its links can be believed; then, again and again, the block that the scan found
    /// for the next place that there is one for, and what its links lead to.
    std::vector<std::int32_t> Run() {
        Follow(1);
        const bool ends_well = chain_.size() == package_.directory().blocks.size() &&
                               package_.directory().end == ChainEnd::last && package_.map().Used(chain_.back());
        Collect(ends_well);
        ReplaceEmpty();
        for (std::int32_t block; (block = NextFound()) >= 0;) Follow(block);
        if (EndsInsideEntry() && std::ssize(chain_) < package_.block_count()) chain_.push_back(-1);
        return std::move(chain_);
    }

private:
    /// Appends a block and those that its links lead to, as long as they look like a directory there.
    void Follow(std::int32_t block) {
        do {
            chain_.push_back(block);
            taken_.Add(block);
            block = package_.map().Next(block);
        } while (package_.map().Inside(block) && !taken_.Has(block) && Believable(block));
    }

    bool Believable(std::int32_t block) const {
        const Looks looks = LooksOf(block, std::ssize(chain_));
        return 2 * looks.possible >= looks.places;
    }

    /// Of the places for entries that begin in a block, how many may hold one, and how many do.
    struct Looks {
        int places = 0, possible = 0, used = 0;
    };
    Looks LooksOf(std::int32_t block, std::int64_t position) const {
        std::uint8_t bytes[kBlock];
        package_.ReadBlock(block, bytes);
        Looks looks;
        for (int at = PhaseOf(position, size_); at + kName <= kBlock; at += size_, ++looks.places) {
            looks.possible += MayBeEntry(bytes + at);
            looks.used += LooksLikeEntry(bytes + at);
        }
        return looks;
    }

    /// Puts blocks with entries in the place of linked ones without: zeros look like a directory, too.
    void ReplaceEmpty() {
        for (std::int64_t i = 1; i < std::ssize(chain_); ++i) {
            std::int32_t& block = chain_[static_cast<std::size_t>(i)];
            if (!HasFound(i) || LooksOf(block, i).used > 0) continue;
            block = FoundFor(i).front();
            taken_.Add(block);
        }
    }

    /// Whether a file's entry goes on where the run ends. Where the rest is the end of its name only, nothing in the
    /// block that held it looks like a directory.
    bool EndsInsideEntry() const {
        const std::int64_t length = std::ssize(chain_) * kBlock, begin = length - length % size_;
        if (length - begin <= kName) return false;
        std::uint8_t bytes[kName];
        package_.ReadRun({chain_}, static_cast<std::uint64_t>(begin), bytes, sizeof bytes);
        return LooksLikeEntry(bytes);
    }

    /// What may belong to the directory: no block that a file holds. Where the directory ends as it should, only a
    /// block that is in use and nobody's.
    void Collect(bool ends_well) {
        package_.TakeDirectory(chain_);
        const Claims claims(package_);
        found_.resize(static_cast<std::size_t>(size_));
        for (const DirectoryBlock& found : scan_.directory)
            if (!claims.Held(found.block) && (!ends_well || package_.map().Used(found.block)))
                found_[static_cast<std::size_t>(package_.wide() ? found.wide_phase : found.narrow_phase)].push_back(
                    found.block);
    }

    /// What the scan found for a place in the chain.
    std::deque<std::int32_t>& FoundFor(std::int64_t position) {
        return found_[static_cast<std::size_t>(PhaseOf(position, size_))];
    }
    /// Whether any of it is not taken yet: the first is not, then.
    bool HasFound(std::int64_t position) {
        auto& blocks = FoundFor(position);
        while (!blocks.empty() && taken_.Has(blocks.front())) blocks.pop_front();
        return !blocks.empty();
    }

    /// The first block found for the next place that there is one for; places before it are left open.
    std::int32_t NextFound() {
        const std::int64_t room = package_.block_count() - std::ssize(chain_);  // for a chain of the blocks there are
        for (std::int64_t gap = 0; gap < std::min<std::int64_t>(size_, room); ++gap) {
            if (!HasFound(std::ssize(chain_) + gap)) continue;
            chain_.insert(chain_.end(), static_cast<std::size_t>(gap), -1);
            return FoundFor(std::ssize(chain_)).front();
        }
        return -1;
    }

    Package& package_;
    const Scan& scan_;
    const int size_;
    BlockSet taken_;
    std::vector<std::int32_t> chain_;
    std::vector<std::deque<std::int32_t>> found_;  // in the order of the package, by phase
};

}  // namespace

Recovered Recover(Package& package, const Scan& scan) {
    Recovered recovered;
    if (package.block_count() < 2) return recovered;
    const bool wide = GuessWide(scan, package.wide());
    recovered.width = !package.is_package() || wide != package.wide();
    package.TakeWide(wide);
    std::vector<std::int32_t> header = HeaderRecovery(package, scan).Run();
    if (header != package.header().blocks) {
        recovered.header = true;
        package.TakeHeader(std::move(header));
        package.FollowDirectory();
    }
    const std::vector<std::int32_t> linked = package.directory().blocks;
    std::vector<std::int32_t> directory = DirectoryRecovery(package, scan).Run();
    recovered.directory = directory != linked;
    package.TakeDirectory(std::move(directory));
    for (const OwnChain* chain : {&package.header(), &package.directory()})
        recovered.missing += static_cast<int>(std::count(chain->blocks.begin(), chain->blocks.end(), -1));
    return recovered;
}

}  // namespace inspect

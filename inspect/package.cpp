// SPDX-License-Identifier: MIT
#include "inspect/package.h"

#include <algorithm>

namespace inspect {

Package::Package(const Source& source, std::uint64_t base) : source_(source), base_(base) {
    const std::uint64_t length = source.size() > base ? source.size() - base : 0;
    block_count_ = static_cast<std::int32_t>(std::min<std::uint64_t>(length / kBlock, kMaxBlocks));
    if (block_count_ < 2) return;
    std::uint8_t magic[4] = {};
    source.Read(base, magic, sizeof magic);
    wide_ = std::memcmp(magic, "wvlt", 4) == 0;
    known_magic_ = wide_ || std::memcmp(magic, "vlt", 3) == 0;
    FollowHeader();
    FollowDirectory();
}

void Package::AppendBlock(Bytes& run, std::int32_t block) const {
    run.resize(run.size() + kBlock);
    ReadBlock(block, run.data() + run.size() - kBlock);
}

/// Every link of the header chain lies in the part of it that has been read before. The chain ends where it has as
/// many blocks as the package asks for: a damaged link could make all of the package one header.
void Package::FollowHeader() {
    const auto wanted = static_cast<std::size_t>(HeaderBlocksFor(block_count_));
    BlockSet seen(block_count_);
    Bytes run;
    std::uint32_t number = 1;
    while (number != 0 && header_.blocks.size() < wanted) {
        const auto block = static_cast<std::int32_t>(number) - 1;
        if (block >= block_count_ || seen.Has(block)) {
            header_.end = block >= block_count_ ? ChainEnd::outside : ChainEnd::again;
            break;
        }
        seen.Add(block);
        header_.blocks.push_back(block);
        AppendBlock(run, block);
        const std::size_t word = kMap + 4 * static_cast<std::size_t>(block);
        number = word + 4 <= run.size() ? Load<std::uint32_t>(run.data() + word) & kNext : 0;
        if (number != 0 && header_.blocks.size() == wanted) header_.end = ChainEnd::longer;
    }
    map_ = BlockMap(std::move(run), block_count_);
}

void Package::FollowDirectory() {
    directory_ = {map_.Chain(1), ChainEnd::last};
    const std::int32_t next = directory_.blocks.empty() ? -1 : map_.Next(directory_.blocks.back());
    if (next >= 0) directory_.end = map_.Inside(next) ? ChainEnd::again : ChainEnd::outside;
}

void Package::TakeHeader(std::vector<std::int32_t> blocks) {
    Bytes run;
    for (const std::int32_t block : blocks) AppendBlock(run, block);
    header_ = {std::move(blocks), ChainEnd::last};
    map_ = BlockMap(std::move(run), block_count_);
}

bool Package::ReadBlock(std::int32_t block, std::uint8_t* to) const {
    const bool inside = block >= 0 && block < block_count_;
    const std::size_t there = inside ? source_.Read(OffsetOf(block), to, kBlock) : 0;
    std::fill(to + there, to + kBlock, std::uint8_t{0});
    return there == kBlock;
}

void Package::ReadRun(const OwnChain& chain, std::uint64_t position, std::uint8_t* to, std::size_t count) const {
    std::uint8_t block[kBlock];
    while (count > 0) {
        const auto at = static_cast<std::size_t>(position / kBlock),
                   inside = static_cast<std::size_t>(position % kBlock);
        ReadBlock(at < chain.blocks.size() ? chain.blocks[at] : -1, block);
        const std::size_t piece = std::min(count, kBlock - inside);
        std::copy_n(block + inside, piece, to);
        to += piece, position += piece, count -= piece;
    }
}

int Package::entry_count() const {
    return static_cast<int>(std::int64_t{kBlock} * static_cast<std::int64_t>(directory_.blocks.size()) /
                            entry_size());
}

Entry Package::Decode(const std::uint8_t* bytes, int index) const {
    Entry entry = DecodeEntry(bytes, wide_, index);
    if (odd_kinds_ && entry.kind > kOtherEntry && MayBeEntry(bytes)) entry.kind = kStoredFile;
    return entry;
}

Entry Package::EntryAt(int index) const {
    std::uint8_t bytes[kWideEntry];
    const auto size = static_cast<std::size_t>(entry_size());
    ReadRun(directory_, static_cast<std::uint64_t>(index) * size, bytes, size);
    return Decode(bytes, index);
}

void Package::ForEachEntry(const std::function<void(const Entry&)>& visit) const {
    const auto size = static_cast<std::size_t>(entry_size());
    Bytes bytes;  // of the run, from the entry that is visited next to the end of a block
    int index = 0;
    for (const std::int32_t block : directory_.blocks) {
        AppendBlock(bytes, block);
        std::size_t at = 0;
        for (; at + size <= bytes.size(); at += size) visit(Decode(bytes.data() + at, index++));
        bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
    }
}

}  // namespace inspect

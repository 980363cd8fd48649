// SPDX-License-Identifier: MIT
// A package in its host file, read byte by byte by docs/package-format.md and without the library. Nothing in it is
// believed: any bytes can be looked at, in time and memory that the length of the host file bounds. In memory stand
// the header run and one number for each block of the directory.
#pragma once

#include <functional>

#include "inspect/block_map.h"
#include "inspect/entry.h"

namespace inspect {

/// How a chain ends.
enum class ChainEnd {
    last,     // at a block that leads nowhere, as it should
    outside,  // at a link out of the package
    again,    // at a block that a chain holds already
    longer,   // it goes on, but no more of it can belong to the header
};

/// The blocks of the header or of the directory. -1 stands for one that could not be found and reads as zeros.
struct OwnChain {
    std::vector<std::int32_t> blocks;
    ChainEnd end = ChainEnd::last;
};

class Package {
public:
    explicit Package(const Source& source, std::uint64_t base = 0);

    /// Whether it has the length and the magic of a package.
    bool is_package() const { return block_count_ >= 2 && known_magic_; }
    bool wide() const { return wide_; }
    std::uint64_t base() const { return base_; }
    std::int32_t block_count() const { return block_count_; }
    const Source& source() const { return source_; }
    const BlockMap& map() const { return map_; }
    const OwnChain& header() const { return header_; }
    const OwnChain& directory() const { return directory_; }

    int entry_size() const { return EntrySize(wide_); }
    /// Places for entries in the directory run.
    int entry_count() const;
    /// Visits every place of the directory, used or not, in order.
    void ForEachEntry(const std::function<void(const Entry&)>& visit) const;
    Entry EntryAt(int index) const;

    std::uint64_t OffsetOf(std::int32_t block) const {
        return base_ + static_cast<std::uint64_t>(block) * static_cast<std::uint64_t>(kBlock);
    }
    /// Reads a block; what cannot be read is zeros. False when that is any of it.
    bool ReadBlock(std::int32_t block, std::uint8_t* to) const;
    /// Reads bytes of the run of the header or the directory in the same way.
    void ReadRun(const OwnChain& chain, std::uint64_t position, std::uint8_t* to, std::size_t count) const;

    // For recovery: what the package is taken for, whatever its own bytes say.
    void TakeWide(bool wide) { wide_ = wide, known_magic_ = true; }
    void TakeHeader(std::vector<std::int32_t> blocks);
    void TakeDirectory(std::vector<std::int32_t> blocks) { directory_ = {std::move(blocks), ChainEnd::last}; }
    /// Takes an entry whose kind means nothing, but whose times are dates, for a stored file.
    void TakeOddKinds() { odd_kinds_ = true; }
    /// Reads the directory chain anew, as the map has it.
    void FollowDirectory();

private:
    void FollowHeader();
    void AppendBlock(Bytes& run, std::int32_t block) const;
    Entry Decode(const std::uint8_t* bytes, int index) const;

    const Source& source_;
    std::uint64_t base_;
    std::int32_t block_count_ = 0;
    bool wide_ = false, known_magic_ = false, odd_kinds_ = false;
    BlockMap map_;
    OwnChain header_, directory_;
};

}  // namespace inspect

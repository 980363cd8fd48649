// SPDX-License-Identifier: MIT
#include "inspect/scan.h"

#include <algorithm>
#include <array>

namespace inspect {

namespace {

constexpr std::int32_t kPiece = 256;  // blocks that are read at once

// The high byte of every time that is a date, and where the first time of an entry has it.
constexpr std::uint8_t kStampEndByte = 0x41;
constexpr int kStampEnd = kCreated + 7;

/// The most frequent of some small numbers, with how often it comes.
template <std::size_t N>
std::pair<std::int16_t, std::int16_t> MostFrequent(const std::array<int, N>& values, std::size_t count) {
    std::pair<std::int16_t, std::int16_t> best{0, 0};
    for (std::size_t i = 0; i < count; ++i) {
        const auto times = std::count(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(count), values[i]);
        if (times > best.second) best = {static_cast<std::int16_t>(values[i]), static_cast<std::int16_t>(times)};
    }
    return best;
}

bool LooksLikeDirectory(const std::uint8_t* bytes, std::int32_t block, DirectoryBlock* found) {
    std::array<int, 16> narrow{}, wide{};
    std::size_t hits = 0;
    for (int at = 0; at + kName <= kBlock && hits < narrow.size(); ++at) {
        // From one byte that may end the first time of an entry to the next.
        const auto left = static_cast<std::size_t>(kBlock - at - kStampEnd);
        const void* end = std::memchr(bytes + at + kStampEnd, kStampEndByte, left);
        if (!end) break;
        at = static_cast<int>(static_cast<const std::uint8_t*>(end) - bytes) - kStampEnd;
        if (at + kName > kBlock || !LooksLikeEntry(bytes + at)) continue;
        narrow[hits] = at % kNarrowEntry;
        wide[hits++] = at % kWideEntry;
    }
    if (hits == 0) return false;
    const auto [narrow_phase, narrow_hits] = MostFrequent(narrow, hits);
    const auto [wide_phase, wide_hits] = MostFrequent(wide, hits);
    *found = {block, narrow_phase, wide_phase, narrow_hits, wide_hits};
    return true;
}

}  // namespace

/// A map word of a chain in a row of blocks leads to the next block, so that it tells its own place in the map.
bool LooksLikeHeader(const std::uint8_t* block, std::int32_t* position) {
    constexpr int kWords = (kBlock - 1) / 4;  // whole ones; the first byte belongs to a word that began before
    std::int32_t used = 0, odd = 0, votes = 0, favourite = -1;
    for (int i = 0; i < kWords; ++i) {
        const auto word = Load<std::uint32_t>(block + 1 + 4 * i);
        if (word == 0) continue;
        if ((word & ~kNext) != kUsed) {
            if (++odd > kWords / 4) return false;
            continue;
        }
        ++used;
        const std::int32_t index = static_cast<std::int32_t>(word & kNext) - 2;  // whose word this is, in such a row
        const std::int32_t before = index - i + (kMap - 1) / 4;
        if (before < 1024 || before % 1024 != 0) continue;
        if (votes == 0) favourite = before / 1024;
        votes += favourite == before / 1024 ? 1 : -1;
    }
    *position = 4 * votes > used ? favourite : -1;
    return used > 4 * odd;
}

void ReadAllBlocks(const Package& package, const SeeBlocks& see) {
    Bytes bytes(std::size_t{kPiece} * kBlock);
    for (std::int32_t block = 0; block < package.block_count(); block += kPiece) {
        const std::int32_t count = std::min(kPiece, package.block_count() - block);
        const std::size_t wanted = static_cast<std::size_t>(count) * kBlock;
        if (package.source().Read(package.OffsetOf(block), bytes.data(), wanted) != wanted)
            for (std::int32_t i = 0; i < count; ++i) package.ReadBlock(block + i, bytes.data() + i * kBlock);
        see(block, bytes.data(), count);
    }
}

Scan ScanBlocks(const Package& package, const SeeBlocks& see) {
    Scan scan;
    ReadAllBlocks(package, [&](std::int32_t first, const std::uint8_t* bytes, std::int32_t count) {
        if (see) see(first, bytes, count);
        for (std::int32_t i = 0; i < count; ++i, bytes += kBlock) {
            DirectoryBlock directory;
            if (LooksLikeDirectory(bytes, first + i, &directory)) scan.directory.push_back(directory);
            std::int32_t position;
            if (first + i >= 2 && LooksLikeHeader(bytes, &position)) scan.header.push_back({first + i, position});
        }
    });
    return scan;
}

}  // namespace inspect

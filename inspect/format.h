// SPDX-License-Identifier: MIT
// The numbers of the package format, written down from docs/package-format.md: the library has a table of its own, so
// that a fault in either shows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace inspect {

inline constexpr int kBlock = 4096;
inline constexpr std::int32_t kMaxBlocks = 0x0FFFFFFF;

// The header run.
inline constexpr int kReadCredential = 5, kWriteCredential = 21, kCredentialSize = 16;
inline constexpr int kMap = 101;  // and four bytes a block from there

// The map word.
inline constexpr std::uint32_t kUsed = 0x80000000, kNext = 0x0FFFFFFF, kUnused = 0x70000000;

// The directory run.
inline constexpr int kNarrowEntry = 550, kWideEntry = 1063;
inline constexpr int kFirstBlock = 1, kSize = 5, kCreated = 13, kAccessed = 21, kWritten = 29, kName = 37;
inline constexpr int kStoredFile = 1, kOtherEntry = 2;
inline constexpr std::size_t kNameMax = 512;

/// A little-endian number, on any machine.
template <typename T>
T Load(const std::uint8_t* at) {
    std::uint64_t value = 0;
    for (std::size_t i = sizeof(T); i-- > 0;) value = value << 8 | at[i];
    return static_cast<T>(value);
}

inline double LoadStamp(const std::uint8_t* at) {
    const auto bits = Load<std::uint64_t>(at);
    double stamp;
    std::memcpy(&stamp, &bits, sizeof stamp);
    return stamp;
}

/// Blocks that so many bytes of a file take; a damaged size below 0 takes none.
constexpr std::int64_t BlocksFor(std::int64_t bytes) {
    return bytes > 0 ? (bytes - 1) / kBlock + 1 : 0;
}

/// Header blocks that a package of so many blocks has.
constexpr std::int32_t HeaderBlocksFor(std::int64_t blocks) {
    return static_cast<std::int32_t>((kMap + 4 * blocks + kBlock - 1) / kBlock);
}

}  // namespace inspect

// SPDX-License-Identifier: MIT
// Every byte of the package format. All numbers are little-endian.
//
// A package is a row of 4096-byte blocks from the base offset to the end of its host file; a trailing part of a block
// does not count. Inside the format a block is named by its number, its index plus 1; 0 names none. Blocks form
// chains: the header chain from block index 0, the directory chain from index 1, and a data chain a stored file.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "include/vlt.h"

namespace vlt {

// The header run, the bytes of the header chain:
//   offset  size          field
//   0       4             magic: "vlt" and a zero byte (narrow names), or "wvlt" (wide names)
//   4       1             format byte, 1, never checked
//   5       16            read credential, encoded
//   21      16            write credential, encoded
//   37      64            reserved, zero
//   101     4 a block     the block map: one word for each block index
inline constexpr int VLT_FORMAT_BYTE_OFFSET = 4;
inline constexpr int VLT_READ_CREDENTIAL_OFFSET = 5;
inline constexpr int VLT_WRITE_CREDENTIAL_OFFSET = 21;
inline constexpr int VLT_MAP_OFFSET = 101;

// A map word: the number of the next block of the chain (0: this is its last), and whether the block is in use. The
// word of a free block is 0. Words are not aligned, and may straddle two blocks of the header chain.
inline constexpr std::uint32_t VLT_NEXT_MASK = 0x0FFFFFFF;
inline constexpr std::uint32_t VLT_BLOCK_USED = 0x80000000;
inline constexpr std::int32_t VLT_BLOCKS_MAX = 0x0FFFFFFF;

// The block indexes where the two chains of the package itself start.
inline constexpr std::int32_t VLT_HEADER_START = 0;
inline constexpr std::int32_t VLT_DIRECTORY_START = 1;

// A directory entry; entries lie back to back in the directory run and may straddle its blocks:
//   offset  size         field
//   0       1            kind: 1 stored file, 2 another maker's entry, else free
//   1       4            number of the first block of the data chain, 0 for none
//   5       8            length in bytes, signed
//   13      8            created stamp
//   21      8            accessed stamp
//   29      8            written stamp
//   37      513 or 1026  name and its terminator, narrow or wide
inline constexpr int VLT_ENTRY_FREE = 0;
inline constexpr int VLT_ENTRY_NAME_OFFSET = 37;
inline constexpr int VLT_ENTRY_SIZE_NARROW = VLT_ENTRY_NAME_OFFSET + (VLT_NAME_MAX + 1);
inline constexpr int VLT_ENTRY_SIZE_WIDE = VLT_ENTRY_NAME_OFFSET + 2 * (VLT_NAME_MAX + 1);

static_assert(std::endian::native == std::endian::little, "the format is read and written in place");

template <typename T>
T load_at(const std::uint8_t* at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

template <typename T>
void store_at(std::uint8_t* at, T value) {
    std::memcpy(at, &value, sizeof value);
}

// Blocks and entries have an index, from 0, in memory, and a number, one higher, in the format; number 0 names none.

constexpr std::uint32_t number_of(std::int32_t index) {
    return static_cast<std::uint32_t>(index) + 1;
}

/// The index of a number; -1 for 0, and for a number that no block can have.
constexpr std::int32_t index_of(std::uint32_t number) {
    return number <= static_cast<std::uint32_t>(VLT_BLOCKS_MAX) ? static_cast<std::int32_t>(number) - 1 : -1;
}

/// The index of the block that a map word links to, -1 for none.
constexpr std::int32_t next_of(std::uint32_t word) {
    return index_of(word & VLT_NEXT_MASK);
}

/// A map word with its link led to a block.
constexpr std::uint32_t linked(std::uint32_t word, std::int32_t next_block) {
    return (word & ~VLT_NEXT_MASK) | number_of(next_block);
}

constexpr bool is_used(std::uint32_t word) {
    return (word & VLT_BLOCK_USED) != 0;
}

/// Number of blocks that so many bytes of a file take; a damaged length below 0 takes none.
constexpr std::int64_t blocks_for(std::int64_t bytes) {
    return bytes > 0 ? bytes / VLT_BLOCK_SIZE + (bytes % VLT_BLOCK_SIZE > 0 ? 1 : 0) : 0;
}

/// Number of header blocks that a package of `blocks` blocks has.
constexpr std::int32_t header_blocks_for(std::int64_t blocks) {
    return static_cast<std::int32_t>((VLT_MAP_OFFSET + 4 * blocks + VLT_BLOCK_SIZE - 1) / VLT_BLOCK_SIZE);
}

/// Number of whole map words in a header run of that many blocks.
constexpr std::int32_t map_capacity(std::int64_t header_blocks) {
    return static_cast<std::int32_t>((header_blocks * VLT_BLOCK_SIZE - VLT_MAP_OFFSET) / 4);
}

/// A credential field: the text padded with zeros to 16 bytes, reversed, and every bit inverted. Encoding and
/// decoding are the same transformation.
inline void swap_credential(const std::uint8_t (&from)[VLT_CREDENTIAL_MAX], std::uint8_t* to) {
    for (int i = 0; i < VLT_CREDENTIAL_MAX; ++i) to[i] = static_cast<std::uint8_t>(~from[VLT_CREDENTIAL_MAX - 1 - i]);
}

/// One directory entry in the directory image, read and changed in place.
class vlt_dir_entry {
public:
    explicit vlt_dir_entry(std::uint8_t* at) : at_(at) {}

    int kind() const { return at_[0]; }
    bool in_use() const { return kind() == VLT_ENTRY_FILE || kind() == VLT_ENTRY_OTHER; }
    std::uint32_t first_block() const { return load_at<std::uint32_t>(at_ + 1); }  // a number
    std::int32_t first_index() const { return index_of(first_block()); }
    std::int64_t size() const { return load_at<std::int64_t>(at_ + 5); }
    double created() const { return load_at<double>(at_ + 13); }
    double accessed() const { return load_at<double>(at_ + 21); }
    double written() const { return load_at<double>(at_ + 29); }
    std::uint8_t* name() const { return at_ + VLT_ENTRY_NAME_OFFSET; }

    void set_kind(int kind) { at_[0] = static_cast<std::uint8_t>(kind); }
    void set_first_block(std::uint32_t number) { store_at(at_ + 1, number); }
    void set_size(std::int64_t size) { store_at(at_ + 5, size); }
    void set_created(double stamp) { store_at(at_ + 13, stamp); }
    void set_accessed(double stamp) { store_at(at_ + 21, stamp); }
    void set_written(double stamp) { store_at(at_ + 29, stamp); }

private:
    std::uint8_t* at_;
};

}  // namespace vlt

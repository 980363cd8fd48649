// SPDX-License-Identifier: MIT
// A directory entry, and what makes bytes look like one.
#pragma once

#include <string>

#include "inspect/format.h"

namespace inspect {

struct Entry {
    int index = 0;
    int kind = 0;
    std::uint32_t first_block = 0;  // block number
    std::int64_t size = 0;
    double created = 0, accessed = 0, written = 0;
    std::u16string name;  // narrow names: one unit a byte

    bool used() const { return kind == kStoredFile || kind == kOtherEntry; }
    /// Index of the first block; -1 for none, or a number that can be none's.
    std::int32_t start() const { return first_block <= kNext ? static_cast<std::int32_t>(first_block) - 1 : -1; }
    /// Blocks that its bytes take.
    std::int64_t blocks() const { return BlocksFor(size); }
};

constexpr int EntrySize(bool wide) {
    return wide ? kWideEntry : kNarrowEntry;
}

/// Takes the bytes of an entry apart. Any bytes will do; a name without a terminator has one unit too many.
Entry DecodeEntry(const std::uint8_t* bytes, bool wide, int index);

/// Whether a stamp is 0 or one that the calendar and the clock have, exactly as it is computed from them.
bool IsStamp(double stamp);

/// Whether a used entry begins here, by its kind and three times that are dates: other bytes do not look like that by
/// chance.
bool LooksLikeEntry(const std::uint8_t* bytes);
/// Whether an entry, used or not, may stand here: most of its times are none or are dates.
bool MayBeEntry(const std::uint8_t* bytes);

/// The letters A to Z made small, as names are compared.
std::u16string FoldedName(std::u16string name);

}  // namespace inspect

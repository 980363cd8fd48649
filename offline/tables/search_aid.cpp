// SPDX-License-Identifier: MIT
#include "offline/tables/search_aid.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

#include "base/ascii_case.h"
#include "base/heap.h"
#include "offline/tables/folded_key.h"

// Slots lead from a value to an entry plus 1, 0 for none. An entry is the position of the first of equal values in
// the index, or, where no two values are equal, the record itself.
//
// Where every value is a plain decimal number and the numbers lie close enough together, as node identifiers do, the
// number is the slot. Else the slots are a hash table: the low bits of a slot hold the entry plus 1, those above them
// a part of the hash, which spares nearly every look at a record that does not match.
struct SearchAid {
    std::uint32_t* slots;
    std::uint64_t* repeats;   ///< a bit an entry, and a clear one behind the last; null where no two values are equal
    std::uint32_t numbers;    ///< slots by number; 0 for a hash table
    std::uint32_t least;      ///< the number of the first of them
    std::uint32_t slot_mask;  ///< slots of the hash table, a power of two, less one
    std::uint32_t entry_mask;  ///< the bits of a slot that hold the entry
};

namespace {

constexpr std::uint32_t kNoNumber = 0xffffffff;

/// What a text of one to nine digits without leading zeros says; such texts are equal where their numbers are.
std::uint32_t plain_number(const char* text) {
    if (*text == '0') return text[1] ? kNoNumber : 0;
    std::uint32_t number = 0;
    for (int digits = 0; digits <= 9; ++digits, ++text) {
        const auto digit = static_cast<std::uint32_t>(static_cast<unsigned char>(*text)) - '0';
        if (digit > 9) return *text == 0 && digits ? number : kNoNumber;
        number = number * 10 + digit;
    }
    return kNoNumber;
}

struct NumberRange {
    std::uint32_t least;
    std::uint32_t count;  ///< from the least to the largest; 0 when they cannot be slots
};

NumberRange find_numbers(const IndexContext& context, const IndexHead& head) {
    std::uint32_t least = kNoNumber;
    std::uint32_t largest = 0;
    for (std::int32_t record = 0; record < head.held; ++record) {
        const std::uint32_t number = plain_number(context.value(record));
        if (number == kNoNumber) return {0, 0};
        least = std::min(least, number);
        largest = std::max(largest, number);
    }
    const bool close = largest - least < 4 * static_cast<std::uint64_t>(head.distinct);
    return {least, close ? largest - least + 1 : 0};
}

/// Spreads every bit over all others: short texts differ in a few high bits only.
std::uint64_t mix(std::uint64_t hash) {
    hash = (hash ^ hash >> 32) * 0x9e3779b97f4a7c15;
    hash = (hash ^ hash >> 29) * 0xbf58476d1ce4e5b9;
    return hash ^ hash >> 32;
}

std::uint64_t hash_value(const char* value) {
    std::uint64_t part = folded_key(value);
    std::uint64_t hash = mix(part);
    while (key_goes_on(part)) {
        part = folded_key(value += 8);
        hash = mix(hash ^ part);
    }
    return hash;
}

std::uint64_t hash_key(const SearchKey& key) {
    std::uint64_t part = key.first();
    std::uint64_t hash = mix(part);
    for (std::size_t depth = 8; key_goes_on(part); depth += 8) {
        part = key.key(depth);
        hash = mix(hash ^ part);
    }
    return hash;
}

/// The part of a hash that a slot has room for.
std::uint32_t tag_of(const SearchAid& aid, std::uint64_t hash) {
    return static_cast<std::uint32_t>(hash >> 32) & ~aid.entry_mask;
}

std::uint32_t slot_of(const SearchAid& aid, std::uint64_t hash) {
    return static_cast<std::uint32_t>(hash) & aid.slot_mask;
}

/// The empty slot where a value belongs.
std::uint32_t free_slot(const SearchAid& aid, std::uint64_t hash) {
    std::uint32_t slot = slot_of(aid, hash);
    while (aid.slots[slot]) slot = (slot + 1) & aid.slot_mask;
    return slot;
}

void insert(SearchAid* aid, const char* value, std::uint32_t entry) {
    if (aid->numbers) {
        aid->slots[plain_number(value) - aid->least] = entry + 1;
    } else {
        const std::uint64_t hash = hash_value(value);
        aid->slots[free_slot(*aid, hash)] = tag_of(*aid, hash) | (entry + 1);
    }
}

void fill_unique(SearchAid* aid, const IndexContext& context, std::int32_t count) {
    for (std::int32_t record = 0; record < count; ++record) {
        insert(aid, context.value(record), static_cast<std::uint32_t>(record));
    }
}

void fill_repeated(SearchAid* aid, const IndexContext& context, const std::int32_t* index, std::size_t count) {
    const char* previous = nullptr;
    for (std::size_t i = 0; i < count; ++i) {
        const char* value = context.value(index[i]);
        if (previous && equals_fold(previous, value)) {
            aid->repeats[i / 64] |= std::uint64_t{1} << i % 64;
        } else {
            insert(aid, value, static_cast<std::uint32_t>(i));
        }
        previous = value;
    }
}

/// The entry of a key plus 1, 0 when there is none.
std::uint32_t find_number(const SearchAid& aid, const char* key) {
    const std::uint32_t number = plain_number(key);
    return number != kNoNumber && number - aid.least < aid.numbers ? aid.slots[number - aid.least] : 0;
}

std::uint32_t find_hashed(const SearchAid& aid, const IndexContext& context, const std::int32_t* index,
                          const SearchKey& key) {
    const std::uint64_t hash = hash_key(key);
    const std::uint32_t tag = tag_of(aid, hash);
    for (std::uint32_t slot = slot_of(aid, hash); aid.slots[slot]; slot = (slot + 1) & aid.slot_mask) {
        if ((aid.slots[slot] & ~aid.entry_mask) != tag) continue;
        const std::uint32_t entry = aid.slots[slot] & aid.entry_mask;
        const std::int32_t record = aid.repeats ? index[entry - 1] : static_cast<std::int32_t>(entry - 1);
        if (key.equals(context.value(record))) return entry;
    }
    return 0;
}

/// How many entries from `first` on have one value. A clear bit stands behind the last entry.
std::int32_t run_length(const SearchAid& aid, std::size_t first) {
    std::size_t end = first + 1;
    while (true) {
        const int run = std::countr_one(aid.repeats[end / 64] >> end % 64);
        end += static_cast<std::size_t>(run);
        if (run == 0 || end % 64 != 0) return static_cast<std::int32_t>(end - first);
    }
}

}  // namespace

SearchAid* search_aid_make(const IndexContext& context, const std::int32_t* index, const IndexHead& head) {
    const auto count = static_cast<std::size_t>(head.held);
    const NumberRange numbers = find_numbers(context, head);
    const std::size_t hashed = std::bit_ceil(static_cast<std::size_t>(head.distinct) * 2);
    const std::size_t slots = numbers.count ? numbers.count : hashed;
    const std::size_t words = head.has_ties ? count / 64 + 1 : 0;
    const std::size_t size = sizeof(SearchAid) + words * sizeof(std::uint64_t) + slots * sizeof(std::uint32_t);
    auto* aid = static_cast<SearchAid*>(heap_alloc_zeroed(size));
    if (!aid) return nullptr;
    auto* bits = reinterpret_cast<std::uint64_t*>(aid + 1);
    *aid = {.slots = reinterpret_cast<std::uint32_t*>(bits + words),
            .repeats = words ? bits : nullptr,
            .numbers = numbers.count,
            .least = numbers.least,
            .slot_mask = static_cast<std::uint32_t>(hashed - 1),
            .entry_mask = static_cast<std::uint32_t>(std::bit_ceil(count + 1) - 1)};
    if (head.has_ties) {
        fill_repeated(aid, context, index, count);
    } else {
        fill_unique(aid, context, head.held);
    }
    return aid;
}

void search_aid_free(SearchAid* aid) {
    heap_free(aid);
}

IndexMatches search_aid_find(const SearchAid* aid, const IndexContext& context, const std::int32_t* index,
                             const char* key, std::int32_t* single) {
    const std::uint32_t entry =
        aid->numbers ? find_number(*aid, key) : find_hashed(*aid, context, index, SearchKey(key));
    if (entry == 0) return {nullptr, 0};
    if (aid->repeats) return {index + (entry - 1), run_length(*aid, entry - 1)};
    *single = static_cast<std::int32_t>(entry - 1);
    return {single, 1};
}

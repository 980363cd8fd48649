// SPDX-License-Identifier: MIT
#include "offline/tables/search_aid.h"

#include <bit>
#include <cstddef>
#include <cstring>

#include "base/ascii_case.h"
#include "base/heap.h"
#include "offline/tables/folded_key.h"

// A slot is 0 while it is empty; else its low bits hold an entry plus 1 and the bits above them a part of the hash,
// which spares nearly every look at a record that does not match. An entry is a position in the index, or, where no
// two values are equal, the record itself.
struct SearchAid {
    std::uint32_t slot_mask;   ///< slots - 1, a power of two less one
    std::uint32_t entry_mask;  ///< the bits of a slot that hold the entry
    std::uint32_t* slots;
    std::uint64_t*
        repeats;  ///< one bit an entry, and a clear one behind the last; null where no two values are equal
};

namespace {

std::uint64_t mix(std::uint64_t hash) {
    hash *= 0x9e3779b97f4a7c15;
    return hash ^ hash >> 32;
}

std::uint64_t hash_text(const char* text) {
    std::uint64_t key = folded_key(text);
    std::uint64_t hash = mix(key);
    while (key_goes_on(key)) {
        key = folded_key(text += 8);
        hash = mix(hash ^ key);
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

bool repeats(const SearchAid& aid, std::size_t position) {
    return aid.repeats && (aid.repeats[position / 64] >> position % 64 & 1) != 0;
}

void insert(SearchAid* aid, const char* value, std::uint32_t entry) {
    const std::uint64_t hash = hash_text(value);
    std::uint32_t slot = slot_of(*aid, hash);
    while (aid->slots[slot]) slot = (slot + 1) & aid->slot_mask;
    aid->slots[slot] = tag_of(*aid, hash) | (entry + 1);
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

/// How many entries from `first` on have one value.
std::int32_t run_length(const SearchAid& aid, std::size_t first) {
    std::size_t end = first + 1;
    while (repeats(aid, end)) ++end;
    return static_cast<std::int32_t>(end - first);
}

}  // namespace

SearchAid* search_aid_make(const IndexContext& context, const std::int32_t* index, const IndexHead& head) {
    const auto count = static_cast<std::size_t>(head.held);
    const std::size_t slots = std::bit_ceil(static_cast<std::size_t>(head.distinct) * 2);
    const std::size_t words = head.has_ties ? count / 64 + 1 : 0;
    const std::size_t size = sizeof(SearchAid) + words * sizeof(std::uint64_t) + slots * sizeof(std::uint32_t);
    auto* aid = static_cast<SearchAid*>(heap_alloc_zeroed(size));
    if (!aid) return nullptr;
    auto* bits = reinterpret_cast<std::uint64_t*>(aid + 1);
    *aid = {static_cast<std::uint32_t>(slots - 1), static_cast<std::uint32_t>(std::bit_ceil(count + 1) - 1),
            reinterpret_cast<std::uint32_t*>(bits + words), words ? bits : nullptr};
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
    const std::uint64_t hash = hash_text(key);
    const std::uint32_t tag = tag_of(*aid, hash);
    for (std::uint32_t slot = slot_of(*aid, hash); aid->slots[slot]; slot = (slot + 1) & aid->slot_mask) {
        if ((aid->slots[slot] & ~aid->entry_mask) != tag) continue;
        const std::uint32_t entry = (aid->slots[slot] & aid->entry_mask) - 1;
        const std::int32_t record = aid->repeats ? index[entry] : static_cast<std::int32_t>(entry);
        if (!equals_fold(context.value(record), key)) continue;
        *single = record;
        return aid->repeats ? IndexMatches{index + entry, run_length(*aid, entry)} : IndexMatches{single, 1};
    }
    return {nullptr, 0};
}

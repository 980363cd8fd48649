// SPDX-License-Identifier: MIT
#include "offline/tables/search_aid.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstddef>
#include <cstring>

#include "base/ascii_case.h"
#include "base/heap.h"
#include "offline/tables/folded_key.h"

namespace vlt {

// Slots lead from a value to an entry plus 1, 0 for none. An entry is the number of a run of equal values in the
// index or, where no two values are equal, the record itself.
//
// Where every value is a plain decimal number and the numbers lie close enough together, as node identifiers do, the
// number is the slot. Else the slots are a hash table with linear probing: the low bits of a slot hold the entry plus
// 1, those above them a part of the hash, the tag, which spares nearly every look at a record that does not match.
//
// Values may be made to collide by somebody who knows the hash, so what a value may cost is bounded: it passes few
// slots, and few of those with its own tag. Where a value would need more, the table is built once more with a hash
// that nobody foresees, and if that does not serve either, the index goes without.
struct SearchAid {
    std::uint32_t* slots;
    std::uint32_t* run_starts;  // the first position of each run, and behind them the end; null without equal values
    std::uint64_t seed;         // of the hash
    std::uint32_t numbers;      // slots by number; 0 for a hash table
    std::uint32_t least;        // the number of the first of them
    std::uint32_t slot_mask;    // slots of the hash table, a power of two, less one
    std::uint32_t entry_mask;   // the bits of a slot that hold the entry
    std::uint32_t most_alike;   // slots with one tag that a value may pass on its way
};

namespace {

constexpr std::uint32_t kNoNumber = 0xffffffff;

// Slots that a value may lie behind the one it hashes to. In a table that is half full, of a million values that
// nobody has chosen none lies farther than about 70.
constexpr std::uint32_t kMostProbes = 128;

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
    std::uint32_t count;  // from the least to the largest; 0 when they cannot be slots
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

std::uint64_t hash_value(const char* value, std::uint64_t seed) {
    std::uint64_t part = folded_key(value);
    std::uint64_t hash = mix(part ^ seed);
    while (key_goes_on(part)) {
        part = folded_key(value += 8);
        hash = mix(hash ^ part);
    }
    return hash;
}

std::uint64_t hash_key(const SearchKey& key, std::uint64_t seed) {
    std::uint64_t part = key.first();
    std::uint64_t hash = mix(part ^ seed);
    for (std::size_t depth = 8; key_goes_on(part); depth += 8) {
        part = key.key(depth);
        hash = mix(hash ^ part);
    }
    return hash;
}

/// A seed that whoever wrote a data file could not know.
std::uint64_t unforeseen_seed(const void* block) {
    const auto now = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    return mix(mix(now) ^ reinterpret_cast<std::uintptr_t>(block));
}

/// The part of a hash that a slot has room for.
std::uint32_t tag_of(const SearchAid& aid, std::uint64_t hash) {
    return static_cast<std::uint32_t>(hash >> 32) & ~aid.entry_mask;
}

std::uint32_t slot_of(const SearchAid& aid, std::uint64_t hash) {
    return static_cast<std::uint32_t>(hash) & aid.slot_mask;
}

bool insert_hashed(SearchAid* aid, const char* value, std::uint32_t entry) {
    const std::uint64_t hash = hash_value(value, aid->seed);
    const std::uint32_t tag = tag_of(*aid, hash);
    std::uint32_t alike = 0;
    for (std::uint32_t probe = 0; probe < kMostProbes; ++probe) {
        std::uint32_t& slot = aid->slots[(slot_of(*aid, hash) + probe) & aid->slot_mask];
        if (slot == 0) {
            slot = tag | (entry + 1);
            return true;
        }
        if ((slot & ~aid->entry_mask) == tag && ++alike > aid->most_alike) return false;
    }
    return false;
}

/// False when a value would cost too much to find.
bool insert(SearchAid* aid, const char* value, std::uint32_t entry) {
    if (!aid->numbers) return insert_hashed(aid, value, entry);
    const std::uint32_t slot = plain_number(value) - aid->least;
    if (slot >= aid->numbers) return false;
    aid->slots[slot] = entry + 1;
    return true;
}

bool fill_unique(SearchAid* aid, const IndexContext& context, std::int32_t count) {
    for (std::int32_t record = 0; record < count; ++record) {
        if (!insert(aid, context.value(record), static_cast<std::uint32_t>(record))) return false;
    }
    return true;
}

/// False also when there are more runs than different values: a caller has written into the index.
bool fill_runs(SearchAid* aid, const IndexContext& context, const std::int32_t* index, const IndexHead& head) {
    const auto most = static_cast<std::uint32_t>(head.distinct);
    std::uint32_t runs = 0;
    const char* previous = nullptr;
    for (std::int32_t i = 0; i < head.held; ++i) {
        const char* value = context.value(index[i]);
        if (!previous || !equals_fold(previous, value)) {
            if (runs == most || !insert(aid, value, runs)) return false;
            aid->run_starts[runs++] = static_cast<std::uint32_t>(i);
        }
        previous = value;
    }
    aid->run_starts[runs] = static_cast<std::uint32_t>(head.held);
    return true;
}

/// The entry of a key plus 1, 0 when there is none.
std::uint32_t find_number(const SearchAid& aid, const char* key) {
    const std::uint32_t number = plain_number(key);
    return number != kNoNumber && number - aid.least < aid.numbers ? aid.slots[number - aid.least] : 0;
}

std::uint32_t find_hashed(const SearchAid& aid, const IndexContext& context, const std::int32_t* index,
                          const SearchKey& key) {
    const std::uint64_t hash = hash_key(key, aid.seed);
    const std::uint32_t tag = tag_of(aid, hash);
    std::uint32_t alike = 0;
    for (std::uint32_t probe = 0; probe < kMostProbes && alike <= aid.most_alike; ++probe) {
        const std::uint32_t slot = aid.slots[(slot_of(aid, hash) + probe) & aid.slot_mask];
        if (slot == 0) return 0;
        if ((slot & ~aid.entry_mask) != tag) continue;
        const std::uint32_t entry = slot & aid.entry_mask;
        const std::int32_t record =
            aid.run_starts ? index[aid.run_starts[entry - 1]] : static_cast<std::int32_t>(entry - 1);
        if (key.equals(context.value(record))) return entry;
        ++alike;
    }
    return 0;
}

/// How large an aid is, and where its parts begin.
struct Layout {
    Layout(const IndexContext& context, const IndexHead& head)
        : numbers(find_numbers(context, head)),
          hashed(std::bit_ceil(static_cast<std::size_t>(head.distinct) * 2)),
          slots(numbers.count ? numbers.count : hashed),
          starts(head.has_ties ? static_cast<std::size_t>(head.distinct) + 1 : 0) {}

    std::size_t size() const { return sizeof(SearchAid) + (starts + slots) * sizeof(std::uint32_t); }

    NumberRange numbers;
    std::size_t hashed;
    std::size_t slots;
    std::size_t starts;
};

/// Sets up an aid in room that is all zero.
void lay_out(SearchAid* aid, const Layout& layout, std::uint32_t distinct, std::uint64_t seed) {
    auto* parts = reinterpret_cast<std::uint32_t*>(aid + 1);
    const auto entry_mask = static_cast<std::uint32_t>(std::bit_ceil(std::size_t{distinct} + 1) - 1);
    // So many that a hash by chance exceeds them for one value in 2^32 at most.
    const int tag_bits = std::max(std::countl_zero(entry_mask), 1);
    *aid = {.slots = parts + layout.starts,
            .run_starts = layout.starts ? parts : nullptr,
            .seed = seed,
            .numbers = layout.numbers.count,
            .least = layout.numbers.least,
            .slot_mask = static_cast<std::uint32_t>(layout.hashed - 1),
            .entry_mask = entry_mask,
            .most_alike = static_cast<std::uint32_t>(32 / tag_bits)};
}

bool fill(SearchAid* aid, const IndexContext& context, const std::int32_t* index, const IndexHead& head) {
    return head.has_ties ? fill_runs(aid, context, index, head) : fill_unique(aid, context, head.held);
}

}  // namespace

SearchAid* search_aid_make(const IndexContext& context, const std::int32_t* index, const IndexHead& head,
                           bool* refused) {
    const Layout layout(context, head);
    auto* aid = static_cast<SearchAid*>(heap_alloc_zeroed(layout.size()));
    *refused = false;
    if (!aid) return nullptr;
    for (const std::uint64_t seed : {std::uint64_t{0}, unforeseen_seed(aid)}) {
        lay_out(aid, layout, static_cast<std::uint32_t>(head.distinct), seed);
        if (fill(aid, context, index, head)) return aid;
        std::memset(static_cast<void*>(aid), 0, layout.size());
    }
    *refused = true;
    heap_free(aid);
    return nullptr;
}

void search_aid_free(SearchAid* aid) {
    heap_free(aid);
}

IndexMatches search_aid_find(const SearchAid& aid, const IndexContext& context, const std::int32_t* index,
                             const char* key) {
    const std::uint32_t entry =
        aid.numbers ? find_number(aid, key) : find_hashed(aid, context, index, SearchKey(key));
    if (entry == 0) return {};
    if (!aid.run_starts) return IndexMatches(static_cast<std::int32_t>(entry - 1));
    const std::uint32_t* start = aid.run_starts + (entry - 1);
    return {index + start[0], static_cast<std::int32_t>(start[1] - start[0])};
}

}  // namespace vlt

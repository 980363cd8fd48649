// SPDX-License-Identifier: MIT
#include "offline/tables/key_sort.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "base/ascii_case.h"
#include "offline/tables/folded_key.h"

namespace vlt {

namespace {

constexpr std::size_t kRadixFrom = 512;  // fewer entries are sorted by comparing keys
constexpr int kKeyBytes = 8;

using Counts = std::array<std::array<std::uint32_t, 256>, kKeyBytes>;

unsigned byte_of(std::uint64_t key, int byte) {
    return static_cast<unsigned>(key >> (8 * byte)) & 0xff;
}

void count_bytes(const KeyEntry* entries, std::size_t count, Counts* counts) {
    for (std::size_t i = 0; i < count; ++i) {
        for (int byte = 0; byte < kKeyBytes; ++byte) {
            ++(*counts)[static_cast<std::size_t>(byte)][byte_of(entries[i].key, byte)];
        }
    }
}

void distribute(const KeyEntry* from, KeyEntry* to, std::size_t count, int byte,
                std::array<std::uint32_t, 256>* counts) {
    std::uint32_t begin = 0;
    for (std::uint32_t& slot : *counts) begin += std::exchange(slot, begin);
    for (std::size_t i = 0; i < count; ++i) to[(*counts)[byte_of(from[i].key, byte)]++] = from[i];
}

/// Sorts by the whole key, lowest byte first; a byte that all keys share costs nothing.
void radix_sort(KeyEntry* entries, KeyEntry* scratch, std::size_t count) {
    Counts counts{};
    count_bytes(entries, count, &counts);
    KeyEntry* from = entries;
    KeyEntry* to = scratch;
    for (int byte = 0; byte < kKeyBytes; ++byte) {
        auto& slots = counts[static_cast<std::size_t>(byte)];
        if (slots[byte_of(from[0].key, byte)] == count) continue;
        distribute(from, to, count, byte, &slots);
        std::swap(from, to);
    }
    if (from != entries) std::copy_n(from, count, entries);
}

bool key_less(const KeyEntry& a, const KeyEntry& b) {
    return a.key < b.key;
}

/// Bytes that all values have in common at their front, letter case aside: they need not be sorted by.
std::size_t common_prefix(const IndexContext& context, std::size_t count) {
    const char* first = context.value(0);
    std::size_t common = std::strlen(first);
    for (std::size_t i = 1; i < count && common; ++i) {
        const char* value = context.value(static_cast<std::int32_t>(i));
        std::size_t same = 0;
        while (same < common && fold_case(value[same]) == fold_case(first[same])) ++same;
        common = same;
    }
    return common;
}

class KeySorter {
public:
    KeySorter(const IndexContext& context, KeyEntry* entries, KeyEntry* scratch)
        : context_(context), entries_(entries), scratch_(scratch) {}

    /// Sorts entries whose values are alike before the byte `depth`. Looks at each byte of a value once, however long
    /// the values are alike, and calls itself for no more than half of its entries.
    void sort(std::size_t begin, std::size_t end, std::size_t depth) {
        while (end - begin > 1) {
            load_keys(begin, end, depth);
            order(begin, end);
            depth += kKeyBytes;
            const Run largest = sort_runs(begin, end, depth);
            begin = largest.begin;
            end = largest.end;
        }
    }

private:
    /// Entries with equal keys.
    struct Run {
        std::size_t begin;
        std::size_t end;

        std::size_t size() const { return end - begin; }
    };

    void load_keys(std::size_t begin, std::size_t end, std::size_t depth) {
        for (std::size_t i = begin; i < end; ++i) {
            entries_[i].key = folded_key(context_.value(entries_[i].record) + depth);
        }
    }

    void order(std::size_t begin, std::size_t end) {
        if (std::is_sorted(entries_ + begin, entries_ + end, key_less)) return;
        if (end - begin < kRadixFrom) {
            std::sort(entries_ + begin, entries_ + end, key_less);
        } else {
            radix_sort(entries_ + begin, scratch_ + begin, end - begin);
        }
    }

    /// Sorts all runs of sorted entries by what follows, but the largest, which is left to the caller.
    Run sort_runs(std::size_t begin, std::size_t end, std::size_t depth) {
        Run largest{begin, begin};
        for (Run run{begin, begin}; run.begin < end; run.begin = run.end) {
            run.end = run_end(run.begin, end);
            if (run.size() == 1) continue;
            if (!key_goes_on(entries_[run.begin].key)) {
                for (std::size_t i = run.begin + 1; i < run.end; ++i) entries_[i].is_repeated = 1;
                continue;
            }
            Run smaller = run;
            if (run.size() > largest.size()) std::swap(smaller, largest);
            sort(smaller.begin, smaller.end, depth);
        }
        return largest;
    }

    std::size_t run_end(std::size_t begin, std::size_t end) const {
        const std::uint64_t key = entries_[begin].key;
        while (begin < end && entries_[begin].key == key) ++begin;
        return begin;
    }

    const IndexContext& context_;
    KeyEntry* entries_;
    KeyEntry* scratch_;
};

}  // namespace

void key_sort(const IndexContext& context, KeyEntry* entries, KeyEntry* scratch, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) entries[i] = {0, static_cast<std::int32_t>(i), 0};
    KeySorter(context, entries, scratch).sort(0, count, common_prefix(context, count));
}

}  // namespace vlt

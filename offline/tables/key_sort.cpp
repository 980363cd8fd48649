// SPDX-License-Identifier: MIT
#include "offline/tables/key_sort.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "base/ascii_case.h"
#include "offline/tables/folded_key.h"

namespace {

constexpr std::size_t kRadixFrom = 512;  // fewer entries are sorted by comparing keys
constexpr std::size_t kDeepest = 256;    // texts alike for so many bytes more are compared as texts
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
    KeySorter(const IndexContext& context, KeyEntry* entries, KeyEntry* scratch, std::size_t depth)
        : context_(context), entries_(entries), scratch_(scratch), deepest_(depth + kDeepest) {}

    /// Sorts entries whose values are alike before the byte `depth`, where the keys begin.
    void sort(std::size_t begin, std::size_t end, std::size_t depth) {
        if (end - begin < kRadixFrom) {
            std::sort(entries_ + begin, entries_ + end, key_less);
        } else if (!std::is_sorted(entries_ + begin, entries_ + end, key_less)) {
            radix_sort(entries_ + begin, scratch_ + begin, end - begin);
        }
        for (std::size_t run = begin; run < end;) {
            const std::uint64_t key = entries_[run].key;
            std::size_t run_end = run + 1;
            while (run_end < end && entries_[run_end].key == key) ++run_end;
            if (run_end - run > 1) sort_run(run, run_end, depth, key);
            run = run_end;
        }
    }

private:
    /// Settles entries with equal keys.
    void sort_run(std::size_t begin, std::size_t end, std::size_t depth, std::uint64_t key) {
        if (!key_goes_on(key)) {
            for (std::size_t i = begin + 1; i < end; ++i) entries_[i].is_repeated = 1;
        } else if (depth >= deepest_) {
            sort_by_text(begin, end, depth);
        } else {
            for (std::size_t i = begin; i < end; ++i)
                entries_[i].key = folded_key(rest(entries_[i], depth + kKeyBytes));
            sort(begin, end, depth + kKeyBytes);
        }
    }

    void sort_by_text(std::size_t begin, std::size_t end, std::size_t depth) {
        std::sort(entries_ + begin, entries_ + end, [&](const KeyEntry& a, const KeyEntry& b) {
            return compare_fold(rest(a, depth), rest(b, depth)) < 0;
        });
        for (std::size_t i = begin + 1; i < end; ++i) {
            entries_[i].is_repeated = equals_fold(rest(entries_[i - 1], depth), rest(entries_[i], depth));
        }
    }

    const char* rest(const KeyEntry& entry, std::size_t depth) const { return context_.value(entry.record) + depth; }

    const IndexContext& context_;
    KeyEntry* entries_;
    KeyEntry* scratch_;
    std::size_t deepest_;
};

}  // namespace

void key_sort(const IndexContext& context, KeyEntry* entries, KeyEntry* scratch, std::size_t count) {
    const std::size_t depth = common_prefix(context, count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto record = static_cast<std::int32_t>(i);
        entries[i] = {folded_key(context.value(record) + depth), record, 0};
    }
    KeySorter(context, entries, scratch, depth).sort(0, count, depth);
}

// SPDX-License-Identifier: MIT
// Sorting and halving search over arrays of fixed-size elements, with a context handed to the comparator.
#pragma once

#include <cstdint>

namespace vlt {

/// Negative, 0 or positive, as `strcmp`. A search passes its key as the first argument.
using KArrayCompare = int (*)(const void* left, const void* right, void* context);

/// Exchanges two elements of `width` bytes.
using KArrayExchange = void (*)(void* left, void* right, std::int32_t width, void* context);

inline constexpr std::int32_t KARRAY_SORT_STACK = 30;
inline constexpr std::int32_t KARRAY_SORT_CUTOFF = 8;

/// Sorts in place, without memory of its own and without recursion. It is not stable, and the order that it leaves
/// among equal elements is a promise: callers see it as the order of equal keys in an index, on every target and in
/// every release. Null for `exchange` exchanges byte by byte.
void KArray_Sort(void* base, std::int32_t count, std::int32_t width, KArrayCompare compare, KArrayExchange exchange,
                 void* context);

/// Some element equal to the key in an array sorted by the same comparator; null when there is none.
void* KArray_Search(const void* key, void* base, std::int32_t count, std::int32_t width, KArrayCompare compare,
                    void* context);

/// Stores the first and the last element equal to the key, both null when there is none; returns 1 or 0.
std::int32_t KArray_SearchRange(const void* key, void* base, std::int32_t count, std::int32_t width, void** first,
                                void** last, KArrayCompare compare, void* context);

}  // namespace vlt

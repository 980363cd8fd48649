// SPDX-License-Identifier: MIT
// Arrays with a head in front. The records of the public interface hold plain pointers to arrays and have no room
// for what else must be known about one, so that stands in the same heap block, right before the first element.
#pragma once

#include <cstddef>
#include <cstring>

#include "base/heap.h"

namespace vlt {

template <typename Head, typename T>
struct Headed {
    static_assert(sizeof(Head) % alignof(T) == 0);

    static Head* head(T* elements) { return reinterpret_cast<Head*>(elements) - 1; }

    /// Room for `count` elements, keeping the head and the elements of the old array, which may be null: its head is
    /// all zero then. What is new is uninitialised. Null when memory runs out, and the old array stays.
    static T* resize(T* elements, std::size_t count) {
        if (count > (static_cast<std::size_t>(-1) / 2 - sizeof(Head)) / sizeof(T)) return nullptr;
        void* block = heap_resize(elements ? head(elements) : nullptr, sizeof(Head) + count * sizeof(T));
        if (!block) return nullptr;
        if (!elements) std::memset(block, 0, sizeof(Head));
        return reinterpret_cast<T*>(static_cast<Head*>(block) + 1);
    }

    static void free(T* elements) {
        if (elements) heap_free(head(elements));
    }
};

}  // namespace vlt

// SPDX-License-Identifier: MIT
// Objects on the library's heap, made and destroyed by one owner.
#pragma once

#include <memory>
#include <new>

#include "base/heap.h"

namespace vlt {

struct HeapDelete {
    template <typename T>
    void operator()(T* object) const {
        object->~T();
        heap_free(object);
    }
};

template <typename T>
using Owned = std::unique_ptr<T, HeapDelete>;

/// A new object, or null when memory runs out.
template <typename T>
Owned<T> make_owned() {
    void* room = heap_alloc(sizeof(T));
    return Owned<T>(room ? ::new (room) T() : nullptr);
}

/// Destroys an object that its owner let go of; null is ignored.
template <typename T>
void destroy(T* object) {
    if (object) HeapDelete{}(object);
}

}  // namespace vlt

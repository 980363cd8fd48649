// SPDX-License-Identifier: MIT
#include "base/heap.h"

#include <cstdlib>

namespace vlt {

void* heap_alloc(std::size_t size) {
    return std::malloc(size ? size : 1);
}

void* heap_alloc_zeroed(std::size_t size) {
    return std::calloc(size ? size : 1, 1);
}

void* heap_resize(void* block, std::size_t size) {
    return std::realloc(block, size ? size : 1);
}

void heap_free(void* block) {
    std::free(block);
}

}  // namespace vlt

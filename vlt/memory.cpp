// SPDX-License-Identifier: MIT
#include "base/heap.h"
#include "vlt.h"

void* vlt_alloc_mem(std::size_t size) {
    return heap_alloc(size);
}

void vlt_free_mem(void* pointer) {
    heap_free(pointer);
}

// SPDX-License-Identifier: MIT
#include "base/heap.h"
#include "include/vlt.h"

VLT_API void* VLT_CALL vlt_alloc_mem(std::size_t size) {
    return vlt::heap_alloc(size);
}

VLT_API void VLT_CALL vlt_free_mem(void* pointer) {
    vlt::heap_free(pointer);
}

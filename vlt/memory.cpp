// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "vlt.h"

void* vlt_alloc_mem(std::size_t size) {
    return std::malloc(size);
}

void vlt_free_mem(void* pointer) {
    std::free(pointer);
}

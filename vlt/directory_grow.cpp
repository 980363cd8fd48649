// SPDX-License-Identifier: MIT
#include "vlt/directory_grow.h"

#include "vlt/own_chain_grow.h"
#include "vlt/package_grow.h"

namespace vlt {

bool vlt_dir_extend(Store& store) {
    if (!search_blocks(store)) return false;
    const std::int32_t old_count = store.host.block_count();
    if (store.blocks.free.count() == 0 && !vlt_package_grow(store, 1)) return false;
    const std::int32_t block = store.blocks.free.lowest();
    const bool is_zero = block >= old_count;  // just grown
    static const char zeros[VLT_BLOCK_SIZE] = {};
    if (!is_zero && !store.host.write(block, 0, zeros, sizeof zeros)) return false;
    return append_own_block(store, store.images.directory, block);
}

}  // namespace vlt

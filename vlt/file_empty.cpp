// SPDX-License-Identifier: MIT
#include "vlt/file_empty.h"

#include "vlt/data_chain.h"
#include "vlt/directory.h"

namespace vlt {

bool vlt_file_empty(Store& store, std::int32_t index) {
    vlt_dir_entry entry = store.images.entry(index);
    const std::uint32_t first_block = entry.first_block();
    // What needs memory comes first: once the entry is written, nothing else could find the blocks.
    if (first_block != 0 && !search_blocks(store)) return false;
    const double now = store.clock.stamp_now();
    const bool changed = entry.size() != 0 || first_block != 0 || entry.accessed() != now || entry.written() != now;
    entry.set_size(0);
    entry.set_first_block(0);
    entry.set_accessed(now);
    entry.set_written(now);
    if (OpenFile* open = store.open_files.find(index)) open->chain.clear();
    return vlt_dir_put_if(store, index, changed) && release_chain(store, first_block);
}

}  // namespace vlt

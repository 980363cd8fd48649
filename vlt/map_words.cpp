// SPDX-License-Identifier: MIT
#include "vlt/map_words.h"

#include "vlt/chain_io.h"

namespace vlt {

bool write_map_words(Store& store, std::int32_t block, std::int32_t count) {
    return vlt_chain_write(store, store.images.header.chain, VLT_MAP_OFFSET + 4 * std::int64_t{block},
                           store.images.word_at(block), 4 * count);
}

}  // namespace vlt

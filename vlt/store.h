// SPDX-License-Identifier: MIT
// What all handles of one package share. The base slot of the package owns it.
//
// Everybody may look at each group; the files named beside it change it, and others ask them to. Callers hold the
// package's mutex, or own the package alone.
#pragma once

#include <algorithm>
#include <cstdint>

#include "platform/mutex.h"
#include "vlt/block_use.h"
#include "vlt/images.h"
#include "vlt/known_entries.h"
#include "vlt/open_files.h"
#include "vlt/package_host.h"
#include "vlt/time_stamp.h"

namespace vlt {

struct Store {
    Store() = default;
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
    ~Store() {
        if (mutex) mutex_destroy(mutex);
    }

    HostMutex* mutex = nullptr;
    PackageHost host;              // opened by package_open; blocks counted by header_load, package_grow, data_chain
    Images images;                 // see images.h
    Blocks blocks;                 // block_use; data_chain takes names from contested blocks
    KnownEntries entries{images};  // directory
    OpenFiles open_files;          // file_table, file_open; the chains in it: chain_io, data_chain, file_empty
    StampClock clock;              // itself

    /// Blocks that exist and have a map word. A header chain shorter than the host file asks for, as a growth that
    /// was cut off leaves it, hides the blocks beyond its words until the next growth lengthens it.
    std::int32_t mapped_blocks() const { return std::min(host.block_count(), images.map_capacity()); }

    /// Whether a block can belong to a stored file: it has a map word, and the package's own chains do not hold it.
    bool may_hold_data(std::int32_t block) const {
        return block >= 0 && block < mapped_blocks() && !images.own_blocks.contains(block);
    }
};

}  // namespace vlt

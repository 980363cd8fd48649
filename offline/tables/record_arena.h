// SPDX-License-Identifier: MIT
// Room for the many records of a data file: carved out of large chunks that go all at once, instead of a heap block
// for each, which would cost a third more memory and much of the time of a load.
//
// A carved record begins at an address that is 2 more than a multiple of 4. A heap block never does, so the address
// alone tells whether a record has a block of its own.
#pragma once

#include <cstddef>
#include <cstdint>

#include "include/offline.h"

namespace vlt {

struct RecordChunk {
    RecordChunk* next;
};

class RecordArena {
public:
    RecordArena() = default;
    RecordArena(const RecordArena&) = delete;
    RecordArena& operator=(const RecordArena&) = delete;
    ~RecordArena() { free_chunks(chunks_); }

    /// Reserves room for a record of up to `most` bytes; null when memory runs out. Unless it is committed the next
    /// call reserves the same room again.
    KOfflineRecord* reserve(std::size_t most);

    /// Commits the first `used` bytes of the room that was reserved last.
    void commit(std::size_t used);

    /// Hands the chunks over: they go in front of the list.
    void release_to(RecordChunk** list);

    static void free_chunks(RecordChunk* list);

    static bool holds(const KOfflineRecord* record) { return (reinterpret_cast<std::uintptr_t>(record) & 2) != 0; }

private:
    bool add_chunk(std::size_t size);

    RecordChunk* chunks_ = nullptr;
    char* free_ = nullptr;  // where the next record begins
    char* end_ = nullptr;
    std::size_t chunk_size_ = 0;
};

}  // namespace vlt

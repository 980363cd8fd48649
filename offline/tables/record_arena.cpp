// SPDX-License-Identifier: MIT
#include "offline/tables/record_arena.h"

#include <algorithm>

#include "base/heap.h"
#include "offline/tables/record_bytes.h"

namespace vlt {

namespace {

// Small tables take small chunks; each further chunk is twice as large up to the limit.
constexpr std::size_t kFirstChunk = std::size_t{16} << 10;
constexpr std::size_t kLargestChunk = std::size_t{1} << 20;

/// The first address from `at` on where a carved record may begin.
char* align(char* at) {
    const auto address = reinterpret_cast<std::uintptr_t>(at);
    return at + ((2 - address) & 3);
}

}  // namespace

KOfflineRecord* RecordArena::reserve(std::size_t most) {
    if (static_cast<std::size_t>(end_ - free_) < most && !add_chunk(most)) return nullptr;
    return reinterpret_cast<KOfflineRecord*>(free_);
}

void RecordArena::commit(std::size_t used) {
    free_ = align(free_ + std::max<std::size_t>(used, 1));
    if (free_ > end_) free_ = end_ = nullptr;
}

bool RecordArena::add_chunk(std::size_t size) {
    constexpr std::size_t overhead = sizeof(RecordChunk) + 4 + kRecordMargin;
    if (size > static_cast<std::size_t>(-1) / 2) return false;
    const std::size_t usual = chunks_ ? std::min(chunk_size_ * 2, kLargestChunk) : kFirstChunk;
    const std::size_t total = std::max(usual, size + overhead);
    auto* chunk = static_cast<RecordChunk*>(heap_alloc(total));
    if (!chunk) return false;
    chunk->next = chunks_;
    chunks_ = chunk;
    chunk_size_ = usual;
    free_ = align(reinterpret_cast<char*>(chunk + 1));
    end_ = reinterpret_cast<char*>(chunk) + total - kRecordMargin;
    return true;
}

void RecordArena::release_to(RecordChunk** list) {
    if (!chunks_) return;
    RecordChunk* last = chunks_;
    while (last->next) last = last->next;
    last->next = *list;
    *list = chunks_;
    chunks_ = nullptr;
    free_ = end_ = nullptr;
}

void RecordArena::free_chunks(RecordChunk* list) {
    while (list) {
        RecordChunk* next = list->next;
        heap_free(list);
        list = next;
    }
}

}  // namespace vlt

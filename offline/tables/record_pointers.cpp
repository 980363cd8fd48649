// SPDX-License-Identifier: MIT
#include "offline/tables/record_pointers.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "base/heap.h"
#include "offline/tables/record_arena.h"
#include "offline/tables/record_bytes.h"

namespace vlt {

namespace {

std::size_t as_size(std::int32_t count) {
    return static_cast<std::size_t>(std::max(count, 0));
}

/// Makes room for `wanted` pointers, by half more than there is when memory allows.
bool reserve_slots(KOfflineTable* table, std::size_t wanted) {
    const std::size_t have = table->records ? Records::head(table->records)->slots : 0;
    if (wanted <= have) return true;
    std::size_t slots = std::max(wanted, have + have / 2);
    KOfflineRecord** grown = Records::resize(table->records, slots);
    if (!grown) grown = Records::resize(table->records, slots = wanted);
    if (!grown) return false;
    Records::head(grown)->slots = slots;
    table->records = grown;
    return true;
}

bool grow(KOfflineTable* table) {
    if (table->record_count > std::numeric_limits<std::int32_t>::max() - KOFFLINE_RECORD_STEP) return false;
    const std::int32_t capacity = table->record_count + KOFFLINE_RECORD_STEP;
    if (!reserve_slots(table, as_size(capacity))) return false;
    std::fill(table->records + table->record_count, table->records + capacity, nullptr);
    table->record_capacity = Records::head(table->records)->capacity = capacity;
    return true;
}

void set_count(KOfflineTable* table, std::int32_t count) {
    table->record_count = Records::head(table->records)->count = count;
}

void free_blocks(KOfflineTable* table) {
    for (std::int32_t i = 0; i < table->record_count; ++i) record_free(table->records[i]);
    RecordArena::free_chunks(Records::head(table->records)->chunks);
    Records::head(table->records)->chunks = nullptr;
}

}  // namespace

bool store_append(KOfflineTable* table, KOfflineRecord* record) {
    if (!table->records || table->record_count >= table->record_capacity) {
        if (!grow(table)) return false;
    }
    table->records[table->record_count] = record;
    set_count(table, table->record_count + 1);
    return true;
}

void store_remove(KOfflineTable* table, std::int32_t record) {
    KOfflineRecord** at = table->records + record;
    record_free(*at);
    std::memmove(at, at + 1, as_size(table->record_count - record - 1) * sizeof *at);
    set_count(table, table->record_count - 1);
    table->records[table->record_count] = nullptr;
}

void store_adopt(KOfflineTable* table, RecordArena* arena) {
    if (table->records) arena->release_to(&Records::head(table->records)->chunks);
}

bool store_widen(KOfflineTable* table, std::int32_t old_count, std::int32_t added) {
    if (table->record_count < 1 || added < 1) return true;
    const std::size_t count = as_size(table->record_count);
    auto widened = HeapBlock<KOfflineRecord*>::of(count);
    if (!widened) return false;
    RecordArena arena;
    for (std::size_t i = 0; i < count; ++i) {
        widened[i] = record_widen(table->records[i], old_count, added, &arena);
        if (!widened[i]) return false;
    }
    free_blocks(table);
    std::copy_n(widened.get(), count, table->records);
    store_adopt(table, &arena);
    return true;
}

void store_truncate(KOfflineTable* table, std::int32_t count) {
    for (std::int32_t i = count; i < Records::head(table->records)->count; ++i) {
        record_free(table->records[i]);
        table->records[i] = nullptr;
    }
    set_count(table, count);
}

void store_narrow(KOfflineTable* table, std::int32_t old_count, std::int32_t field_count) {
    for (std::int32_t i = 0; i < table->record_count; ++i) record_narrow(table->records[i], old_count, field_count);
}

void store_clear(KOfflineTable* table) {
    if (table->records) free_blocks(table);
    Records::free(table->records);
    table->records = nullptr;
    table->record_count = 0;
    table->record_capacity = 0;
}

}  // namespace vlt

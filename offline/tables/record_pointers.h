// SPDX-License-Identifier: MIT
// The record pointers of a table, in record order, and the blocks behind them.
//
// A table's `record_capacity` grows by a fixed step, which is what its callers see; the array behind it grows by
// half, so that adding records one after another does not copy the pointers over and over.
#pragma once

#include <cstddef>
#include <cstdint>

#include "include/offline.h"
#include "offline/tables/headed.h"

namespace vlt {

class RecordArena;
struct RecordChunk;

struct RecordsHead {
    RecordChunk* chunks;    // what the records of data files are carved out of
    std::size_t slots;      // pointers the array really has room for
    std::int32_t count;     // records there are, whatever a caller writes into `record_count`
    std::int32_t capacity;  // `record_capacity` likewise
};

using Records = Headed<RecordsHead, KOfflineRecord*>;

inline constexpr std::int32_t KOFFLINE_RECORD_STEP = 512;

inline bool store_has(const KOfflineTable* table, std::int32_t record) {
    return table && record >= 0 && record < table->record_count;
}

/// Appends a record, which the table owns from then on; false when memory runs out, and nothing has changed.
bool store_append(KOfflineTable* table, KOfflineRecord* record);

/// Gives a record back and moves the ones after it down.
void store_remove(KOfflineTable* table, std::int32_t record);

/// Makes the table own the chunks that records carved out of the arena lie in.
void store_adopt(KOfflineTable* table, RecordArena* arena);

/// Lays every record, which has `old_count` fields now, out anew with `added` more, which have no value. False when
/// memory runs out, and nothing has changed.
bool store_widen(KOfflineTable* table, std::int32_t old_count, std::int32_t added);

/// Gives the records from `count` on back.
void store_truncate(KOfflineTable* table, std::int32_t count);

/// Takes the fields from `field_count` on out of every record, which has `old_count` fields now.
void store_narrow(KOfflineTable* table, std::int32_t old_count, std::int32_t field_count);

/// Gives every record and the array back.
void store_clear(KOfflineTable* table);

}  // namespace vlt

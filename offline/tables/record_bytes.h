// SPDX-License-Identifier: MIT
// One record: a block of one 16-bit offset per field, then the values, each a terminated text.
//
//     offset k >= 1    the value begins at byte k - 1 of the text
//     offset k <= 0    the record has no value for the field, which is not the same as an empty one
//
// The value with the largest offset is the last one of the block. Bytes that no value covers are dead; they stay
// behind where a value was overwritten by a shorter one and go when the record is rebuilt.
#pragma once

#include <cstddef>
#include <cstdint>

#include "include/offline.h"
#include "offline/db/error_state.h"

namespace vlt {

class RecordArena;

/// Bytes behind every record that can be read, so that a value can be compared by eight bytes at a time.
inline constexpr std::size_t kRecordMargin = 7;

/// The empty text, with the same margin.
inline constexpr char kNoText[1 + kRecordMargin] = {};

/// The largest offset: the last value begins within the first 32767 bytes of the text.
inline constexpr std::size_t kLargestOffset = 32767;

inline std::int16_t* record_offsets(KOfflineRecord* record) {
    return reinterpret_cast<std::int16_t*>(record);
}

inline const std::int16_t* record_offsets(const KOfflineRecord* record) {
    return reinterpret_cast<const std::int16_t*>(record);
}

/// The value of a field, null when there is none.
inline const char* record_value(const KOfflineRecord* record, std::int32_t field_count, std::int32_t field) {
    const std::int16_t* offsets = record_offsets(record);
    if (offsets[field] <= 0) return nullptr;
    return reinterpret_cast<const char*>(offsets + field_count) + (offsets[field] - 1);
}

/// The value of a field, the empty text when there is none.
inline const char* record_text_or_empty(const KOfflineRecord* record, std::int32_t field_count, std::int32_t field) {
    const char* value = record_value(record, field_count, field);
    return value ? value : kNoText;
}

/// How the lines of one file or one call are split. The character set is asked once, not for every line.
struct LineFormat {
    explicit LineFormat(const char* separator_text);

    const char* separator;
    std::size_t separator_length;  // 0: a line is one piece
    bool ascii_is_whole;           // an ASCII byte is never part of a longer character
    bool bytewise;                 // the separator can be looked for byte by byte
};

/// A record that is not yet part of a table; what it takes of an arena is reserved only.
struct NewRecord {
    KOfflineRecord* record;
    std::size_t size;
};

/// Makes a record of a line, in the arena or, without one, in a block of its own. The record is stored unless it
/// fails.
Failure record_from_line(const char* line, std::size_t length, std::int32_t field_count, const LineFormat& format,
                         RecordArena* arena, NewRecord* made);

/// Commits a record to the arena, into which it moves if it has got a block of its own meanwhile. False when memory
/// runs out.
bool record_commit(NewRecord* made, std::int32_t field_count, RecordArena* arena);

/// Sets a value: in place where it fits into the old one, else by a new block of its own, and `*record` changes.
/// After a failure nothing has changed.
Failure record_set_value(KOfflineRecord** record, std::int32_t field_count, std::int32_t field, const char* value);

/// A copy in a block of its own, null when memory runs out.
KOfflineRecord* record_copy(const KOfflineRecord* record, std::int32_t field_count);

/// A copy in the arena with `added` more fields, which have no value; null when memory runs out.
KOfflineRecord* record_widen(const KOfflineRecord* record, std::int32_t field_count, std::int32_t added,
                             RecordArena* arena);

/// Takes the fields from `field_count` on out of a record that has `old_count`.
void record_narrow(KOfflineRecord* record, std::int32_t old_count, std::int32_t field_count);

/// Gives a block of its own back; what lies in an arena goes with the arena.
void record_free(KOfflineRecord* record);

}  // namespace vlt

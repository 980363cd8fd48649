// SPDX-License-Identifier: MIT
#include "offline/tables/record_bytes.h"

#include <cstring>

#include "base/heap.h"
#include "offline/tables/escape.h"
#include "offline/tables/record_arena.h"
#include "offline/tables/text.h"
#include "platform/multibyte.h"

namespace vlt {

namespace {

std::size_t offsets_size(std::int32_t field_count) {
    return sizeof(std::int16_t) * static_cast<std::size_t>(field_count);
}

KOfflineRecord* allocate(std::size_t size) {
    return static_cast<KOfflineRecord*>(heap_alloc(size + kRecordMargin));
}

char* text_of(KOfflineRecord* record, std::int32_t field_count) {
    return reinterpret_cast<char*>(record_offsets(record) + field_count);
}

/// Offsets and text, up to the end of the value that reaches farthest.
std::size_t used_size(const KOfflineRecord* record, std::int32_t field_count) {
    const std::int16_t* offsets = record_offsets(record);
    std::int16_t last = 0;
    for (std::int32_t i = 0; i < field_count; ++i) last = offsets[i] > last ? offsets[i] : last;
    if (last == 0) return offsets_size(field_count);
    const auto begin = offsets_size(field_count) + static_cast<std::size_t>(last - 1);
    return begin + std::strlen(reinterpret_cast<const char*>(record) + begin) + 1;
}

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

/// Where the piece ends that begins at `at`; tells whether it may hold an escape sequence.
char* find_piece_end(char* at, char* end, const LineFormat& format, bool* has_escape) {
    if (format.bytewise && format.separator_length == 1) {
        const char separator = *format.separator;
        bool seen = false;
        for (; at < end && *at != separator; ++at) seen |= *at == KOFFLINE_ESCAPE_CHAR;
        *has_escape = seen;
        return at;
    }
    *has_escape = true;
    const char* found = nullptr;
    if (format.separator_length) {
        found = format.bytewise ? std::strstr(at, format.separator) : KText_Find(at, format.separator);
    }
    return found ? at + (found - at) : end;
}

/// Trims and decodes the piece between two places; returns where its text ends.
char* trim_and_decode(char* begin, char* end, bool has_escape, const LineFormat& format) {
    char* from = begin;
    while (from < end && is_blank(*from)) ++from;
    while (end > from && is_blank(end[-1])) --end;
    auto length = static_cast<std::size_t>(end - from);
    if (from != begin) std::memmove(begin, from, length);
    begin[length] = 0;
    if (has_escape) length = escape_decode(begin, length, format.ascii_is_whole);
    return begin + length;
}

/// Splits the text of a record, a terminated line, into its values. Returns the bytes of the text that are used, or
/// -1 when a value would begin too far behind.
std::ptrdiff_t split_values(KOfflineRecord* record, std::int32_t field_count, std::size_t length,
                            const LineFormat& format) {
    std::int16_t* offsets = record_offsets(record);
    char* const text = text_of(record, field_count);
    char* const end = text + length;
    char* used_end = text;
    char* at = text;
    for (std::int32_t field = 0; field < field_count; ++field) {
        const auto offset = static_cast<std::size_t>(at - text) + 1;
        if (offset > kLargestOffset) return -1;
        offsets[field] = static_cast<std::int16_t>(offset);
        bool has_escape;
        char* piece_end = find_piece_end(at, end, format, &has_escape);
        const bool is_last = piece_end == end;
        used_end = trim_and_decode(at, piece_end, has_escape, format) + 1;
        if (is_last) break;
        at = piece_end + format.separator_length;
    }
    return used_end - text;
}

/// The values of a record after one of them is set.
struct Values {
    const KOfflineRecord* record;
    std::int32_t field_count;
    std::int32_t changed;
    const char* value;

    const char* operator[](std::int32_t field) const {
        return field == changed ? value : record_value(record, field_count, field);
    }
};

/// The size of a text of packed values; false when the last of them would begin too far behind.
bool packed_size(const Values& values, std::size_t* size) {
    std::size_t at = 0;
    for (std::int32_t field = 0; field < values.field_count; ++field) {
        const char* value = values[field];
        if (!value) continue;
        if (at + 1 > kLargestOffset) return false;
        at += std::strlen(value) + 1;
    }
    *size = at;
    return true;
}

void pack(const Values& values, KOfflineRecord* record) {
    std::int16_t* offsets = record_offsets(record);
    char* const text = text_of(record, values.field_count);
    char* at = text;
    for (std::int32_t field = 0; field < values.field_count; ++field) {
        const char* value = values[field];
        offsets[field] = value ? static_cast<std::int16_t>(at - text + 1) : std::int16_t{0};
        if (!value) continue;
        const std::size_t size = std::strlen(value) + 1;
        std::memcpy(at, value, size);
        at += size;
    }
}

}  // namespace

LineFormat::LineFormat(const char* separator_text)
    : separator(separator_text ? separator_text : ""),
      separator_length(std::strlen(separator)),
      ascii_is_whole(multibyte_ascii_is_whole()),
      bytewise(ascii_is_whole && static_cast<unsigned char>(*separator) < 0x80) {}

Failure record_from_line(const char* line, std::size_t length, std::int32_t field_count, const LineFormat& format,
                         RecordArena* arena, NewRecord* made) {
    const std::size_t size = offsets_size(field_count) + length + 1;
    KOfflineRecord* record = arena ? arena->reserve(size) : allocate(size);
    if (!record) return Failure::memory;
    std::memset(record_offsets(record), 0, offsets_size(field_count));
    char* text = text_of(record, field_count);
    std::memcpy(text, line, length);
    text[length] = 0;
    const std::ptrdiff_t used = split_values(record, field_count, length, format);
    if (used < 0) {
        record_free(record);
        return Failure::record;
    }
    *made = {record, offsets_size(field_count) + static_cast<std::size_t>(used)};
    return Failure::none;
}

bool record_commit(NewRecord* made, std::int32_t field_count, RecordArena* arena) {
    if (!RecordArena::holds(made->record)) {
        const std::size_t size = used_size(made->record, field_count);
        KOfflineRecord* moved = arena->reserve(size);
        if (!moved) return false;
        std::memcpy(record_offsets(moved), record_offsets(made->record), size);
        record_free(made->record);
        *made = {moved, size};
    }
    arena->commit(made->size);
    return true;
}

Failure record_set_value(KOfflineRecord** record, std::int32_t field_count, std::int32_t field, const char* value) {
    const std::size_t length = std::strlen(value);
    const char* old = record_value(*record, field_count, field);
    if (!old && length == 0) return Failure::none;
    if (old && std::strlen(old) >= length) {
        std::memmove(const_cast<char*>(old), value, length + 1);
        return Failure::none;
    }
    const Values values{*record, field_count, field, value};
    std::size_t text_size;
    if (!packed_size(values, &text_size)) return Failure::record;
    KOfflineRecord* made = allocate(offsets_size(field_count) + text_size);
    if (!made) return Failure::memory;
    pack(values, made);
    record_free(*record);
    *record = made;
    return Failure::none;
}

KOfflineRecord* record_copy(const KOfflineRecord* record, std::int32_t field_count) {
    const std::size_t size = used_size(record, field_count);
    KOfflineRecord* made = allocate(size);
    if (made) std::memcpy(record_offsets(made), record_offsets(record), size);
    return made;
}

KOfflineRecord* record_widen(const KOfflineRecord* record, std::int32_t field_count, std::int32_t added,
                             RecordArena* arena) {
    const std::size_t old_offsets = offsets_size(field_count);
    const std::size_t text_size = used_size(record, field_count) - old_offsets;
    const std::size_t new_offsets = offsets_size(field_count + added);
    const std::size_t size = new_offsets + text_size;
    KOfflineRecord* made = arena->reserve(size);
    if (!made) return nullptr;
    arena->commit(size);
    std::memcpy(record_offsets(made), record_offsets(record), old_offsets);
    std::memset(record_offsets(made) + field_count, 0, new_offsets - old_offsets);
    std::memcpy(record_offsets(made) + field_count + added, record_offsets(record) + field_count, text_size);
    return made;
}

void record_narrow(KOfflineRecord* record, std::int32_t old_count, std::int32_t field_count) {
    const std::size_t text_size = used_size(record, old_count) - offsets_size(old_count);
    std::memmove(text_of(record, field_count), text_of(record, old_count), text_size);
}

void record_free(KOfflineRecord* record) {
    if (!RecordArena::holds(record)) heap_free(record);
}

}  // namespace vlt

// SPDX-License-Identifier: MIT
#include "offline/tables/data_file.h"

#include <algorithm>
#include <cstring>

#include "base/heap.h"
#include "offline/db/stream_writer.h"
#include "offline/tables/caller_changes.h"
#include "offline/tables/escape.h"
#include "offline/tables/record_arena.h"
#include "offline/tables/record_pointers.h"
#include "offline/tables/table.h"
#include "platform/multibyte.h"

namespace vlt {

namespace {

/// Finds the next of one character in a text that is walked from front to back, looking at every byte once.
class NextChar {
public:
    NextChar(char c, const char* begin, const char* end) : c_(c), end_(end), next_(find(begin)) {}

    const char* from(const char* at) {
        if (next_ < at) next_ = find(at);
        return next_;
    }

private:
    const char* find(const char* at) const {
        const void* found = std::memchr(at, c_, static_cast<std::size_t>(end_ - at));
        return found ? static_cast<const char*>(found) : end_;
    }

    char c_;
    const char* end_;
    const char* next_;
};

/// Where the line's comment begins, or its end: pairs of slashes may overlap, and the last one counts.
const char* find_comment(const char* begin, const char* end) {
    const void* slash = std::memchr(begin, '/', static_cast<std::size_t>(end - begin));
    if (!slash) return end;
    for (const char* at = end - 1; at > slash; --at) {
        if (at[0] == '/' && at[-1] == '/') return at - 1;
    }
    return end;
}

bool add_line(const LineReader& reader, const char* begin, const char* end) {
    end = find_comment(begin, end);
    while (begin < end && *begin == ' ') ++begin;
    while (end > begin && (end[-1] == ' ' || end[-1] == '\t')) --end;
    return begin == end || !failed(table_add_line(reader, begin, static_cast<std::size_t>(end - begin)));
}

bool add_lines(const LineReader& reader, const char* text) {
    const char* const end = text + std::strlen(text);
    NextChar cr('\r', text, end);
    NextChar lf('\n', text, end);
    while (text < end) {
        const char* line_end = std::min(cr.from(text), lf.from(text));
        if (!add_line(reader, text, line_end)) return false;
        text = std::min(line_end + 1, end);
        if (text < end && *line_end == '\r' && *text == '\n') ++text;
    }
    return true;
}

/// Writes values escaped, however long they get.
class ValueWriter {
public:
    explicit ValueWriter(StreamWriter* writer) : writer_(writer) {}

    StreamWriter* writer() const { return writer_; }

    void put(const char* value) const {
        while (true) {
            const char* end = plain_end(value);
            writer_->put(value, static_cast<std::size_t>(end - value));
            if (*end == 0) return;
            const char escaped[] = {KOFFLINE_ESCAPE_CHAR, escape_code(*end)};
            writer_->put(escaped, sizeof escaped);
            value = end + 1;
        }
    }

private:
    /// The next character to be escaped, or the end. A character of several bytes is passed whole: its trail bytes
    /// may look like such a character.
    const char* plain_end(const char* at) const {
        while (*at && !escape_code(*at)) at = ascii_is_whole_ ? at + 1 : multibyte_next(at);
        return at;
    }

    StreamWriter* writer_;
    const bool ascii_is_whole_ = multibyte_ascii_is_whole();
};

void write_record(const KOfflineTable* table, const KOfflineRecord* record, const char* separator, std::size_t length,
                  const ValueWriter& values) {
    for (std::int32_t field = 0; field < table->field_count; ++field) {
        if (field) values.writer()->put(separator, length);
        if (const char* value = record_value(record, table->field_count, field)) values.put(value);
    }
    values.writer()->put("\r\n", 2);
}

bool write_records(const KOfflineTable* table, const char* separator, KOfflineStream* stream) {
    StreamWriter writer(stream);
    const ValueWriter values(&writer);
    const std::size_t length = std::strlen(separator);
    for (std::int32_t i = 0; i < table->record_count && !writer.failed(); ++i) {
        if (table->records[i]) write_record(table, table->records[i], separator, length, values);
    }
    return writer.finish();
}

}  // namespace

bool KOfflineTable_ReadFile(KOfflineTable* table, const char* path, const char* separator) {
    KOfflineTable_Clear(table);
    HeapBlock<char> text;
    const Failure failure = read_whole_file(table->db, path, &text);
    if (failure == Failure::file) KOfflineDb_SetError(table->db, failure, path);
    if (failure == Failure::memory) KOfflineDb_SetError(table->db, failure);
    if (failed(failure)) return false;
    return !text || KOfflineTable_ParseLines(table, text.get(), separator);
}

bool KOfflineTable_ParseLines(KOfflineTable* table, const char* text, const char* separator) {
    RecordArena arena;
    const bool whole = add_lines(LineReader(table, separator, &arena), text);
    store_adopt(table, &arena);
    return whole;
}

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL KOfflineTable_WriteFile(KOfflineTable* table, const char* path, const char* separator) {
    if (!table) return 0;
    take_over_changes(table);
    KOfflineStream stream;
    bool written = false;
    if (KOfflineStream_Open(table->db, path, 1, &stream)) {
        written = write_records(table, separator ? separator : "", &stream);
        KOfflineStream_Close(table->db, &stream);
    }
    if (!written) KOfflineDb_SetError(table->db, Failure::file, path);
    return written;
}

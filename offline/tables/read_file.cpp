// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstring>

#include "base/heap.h"
#include "offline/db/stream.h"
#include "offline/tables/data_file.h"
#include "offline/tables/error_state.h"
#include "offline/tables/record_arena.h"
#include "offline/tables/record_store.h"
#include "offline/tables/table.h"

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
    return begin == end || table_add_line(reader, begin, static_cast<std::size_t>(end - begin)) == KOFFLINE_ERR_NONE;
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

/// Reads a whole file into `text` and puts a zero byte behind it; an empty file leaves no text.
std::int32_t read_stream(KOfflineStream* stream, HeapBlock<char>* text) {
    std::int32_t size = 0;
    if (!KOfflineStream_GetSize(stream, &size)) return KOFFLINE_ERR_FILE;
    if (size < 1) return KOFFLINE_ERR_NONE;
    const auto length = static_cast<std::size_t>(size);
    *text = HeapBlock<char>::of(length + 1);
    if (!*text) return KOFFLINE_ERR_MEMORY;
    if (KOfflineStream_Read(text->get(), size, stream) < size) return KOFFLINE_ERR_FILE;
    (*text)[length] = 0;
    return KOFFLINE_ERR_NONE;
}

std::int32_t read_text(KOfflineDb* db, const char* path, HeapBlock<char>* text) {
    KOfflineStream stream;
    if (!KOfflineStream_Open(db, path, 0, &stream)) return KOFFLINE_ERR_FILE;
    const std::int32_t failure = read_stream(&stream, text);
    KOfflineStream_Close(db, &stream);
    return failure;
}

}  // namespace

std::int32_t KOfflineTable_ReadFile(KOfflineTable* table, const char* path, const char* separator) {
    KOfflineTable_Clear(table);
    HeapBlock<char> text;
    const std::int32_t failure = read_text(table->db, path, &text);
    if (failure == KOFFLINE_ERR_FILE) KOfflineDb_SetErrorText(table->db, failure, path);
    if (failure == KOFFLINE_ERR_MEMORY) KOfflineDb_SetError(table->db, failure);
    if (failure) return 0;
    return text ? KOfflineTable_ParseLines(table, text.get(), separator) : 1;
}

std::int32_t KOfflineTable_ParseLines(KOfflineTable* table, const char* text, const char* separator) {
    RecordArena arena;
    const bool whole = add_lines(LineReader(table, separator, &arena), text);
    store_adopt(table, &arena);
    return whole;
}

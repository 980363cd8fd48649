// SPDX-License-Identifier: MIT
#include <cstring>

#include "offline/db/stream.h"
#include "offline/tables/data_file.h"
#include "offline/tables/error_state.h"
#include "offline/tables/escape.h"
#include "offline/tables/record.h"
#include "platform/multibyte.h"

namespace {

/// Collects what is written and passes it on in few pieces. The first failure is the last write.
class LineWriter {
public:
    explicit LineWriter(KOfflineStream* stream) : stream_(stream) {}

    /// Writes bytes as they are.
    void put(const char* bytes, std::size_t length) {
        if (length > sizeof buffer_ - used_) flush();
        if (length > sizeof buffer_) {
            write(bytes, length);
        } else {
            std::memcpy(buffer_ + used_, bytes, length);
            used_ += length;
        }
    }

    /// Writes a value escaped, however long it gets.
    void put_value(const char* value) {
        while (*value) {
            if (sizeof buffer_ - used_ < kLongestChar) flush();
            if (const char code = escape_code(*value)) {
                buffer_[used_++] = KOFFLINE_ESCAPE_CHAR;
                buffer_[used_++] = code;
                ++value;
            } else {
                put_char(&value);
            }
        }
    }

    bool finish() {
        flush();
        if (!failed_) failed_ = !KOfflineStream_Flush(stream_);
        return !failed_;
    }

    bool failed() const { return failed_; }

private:
    static constexpr std::size_t kLongestChar = 16;

    /// A character of several bytes is written whole: its trail bytes may look like characters to be escaped.
    void put_char(const char** value) {
        if (ascii_is_whole_) {
            buffer_[used_++] = *(*value)++;
            return;
        }
        const char* next = multibyte_next(*value);
        while (*value < next) buffer_[used_++] = *(*value)++;
    }

    void flush() {
        write(buffer_, used_);
        used_ = 0;
    }

    void write(const char* bytes, std::size_t length) {
        if (!failed_) failed_ = !KOfflineStream_Write(bytes, static_cast<std::int32_t>(length), stream_);
    }

    KOfflineStream* stream_;
    const bool ascii_is_whole_ = multibyte_ascii_is_whole();
    bool failed_ = false;
    std::size_t used_ = 0;
    char buffer_[32768];
};

void write_record(const KOfflineTable* table, const KOfflineRecord* record, const char* separator, std::size_t length,
                  LineWriter* writer) {
    for (std::int32_t field = 0; field < table->field_count; ++field) {
        if (field) writer->put(separator, length);
        if (const char* value = record_value(record, table->field_count, field)) writer->put_value(value);
    }
    writer->put("\r\n", 2);
}

bool write_records(const KOfflineTable* table, const char* separator, KOfflineStream* stream) {
    LineWriter writer(stream);
    const std::size_t length = std::strlen(separator);
    for (std::int32_t i = 0; i < table->record_count && !writer.failed(); ++i) {
        if (table->records[i]) write_record(table, table->records[i], separator, length, &writer);
    }
    return writer.finish();
}

}  // namespace

int32_t VLT_CALL KOfflineTable_WriteFile(KOfflineTable* table, const char* path, const char* separator) {
    if (!table) return 0;
    KOfflineStream stream;
    bool written = false;
    if (KOfflineStream_Open(table->db, path, 1, &stream)) {
        written = write_records(table, separator ? separator : "", &stream);
        KOfflineStream_Close(table->db, &stream);
    }
    if (!written) KOfflineDb_SetErrorText(table->db, KOFFLINE_ERR_FILE, path);
    return written;
}

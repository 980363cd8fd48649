// SPDX-License-Identifier: MIT
#include "tool/failure.h"

#include <atomic>
#include <cstdio>

#include "include/offline.h"
#include "include/vlt.h"
#include "tool/system.h"

namespace tool {

namespace {

struct CodeText {
    std::int64_t code;
    const char* text;
};

constexpr CodeText kOpenTexts[] = {
    {VLT_OPEN_NOT_A_PACKAGE,
     "not a package, or too damaged to be opened; `vlt check` tells more, `vlt salvage` saves"},
    {VLT_OPEN_CREDENTIALS, "the word does not match; give it with --read-word or --write-word"},
    {VLT_OPEN_NO_FILE, "cannot be opened; does the file exist, and may you read it?"},
    {VLT_OPEN_ACCESS, "may not be written; check the permissions of the file"},
    {VLT_OPEN_ARGUMENT, "the path or the offset cannot be used"},
};

constexpr CodeText kFileTexts[] = {
    {VLT_FILE_NO_SLOT, "no memory for another open file, or it could not be emptied"},
    {VLT_FILE_REQUEST, "the library refuses the request"},
    {VLT_FILE_ACCESS, "in use, or the package may not be written"},
    {VLT_FILE_NOT_FOUND, "no such stored file, or it cannot be made; is the disk full?"},
};

constexpr CodeText kDatabaseTexts[] = {
    {KOFFLINE_ERR_NONE, "failed without a reason"},
    {KOFFLINE_ERR_MEMORY, "out of memory"},
    {KOFFLINE_ERR_FILE, "a file cannot be read or written"},
    {KOFFLINE_ERR_SEPARATOR, "the schema declares no separator, or one that is too long"},
    {KOFFLINE_ERR_FIELD, "a field that must be declared is missing"},
    {KOFFLINE_ERR_INDEX, "there is no index of that field"},
    {KOFFLINE_ERR_RECORD, "a record cannot be stored"},
    {KOFFLINE_ERR_SCHEMA_WRITE, "the schema cannot be written"},
    {KOFFLINE_ERR_TABLE, "the schema declares no such table; do its lines end with CR LF?"},
};

template <std::size_t count>
std::string text_of_code(const CodeText (&texts)[count], std::int64_t code) {
    for (const CodeText& entry : texts)
        if (entry.code == code) return entry.text;
    return "unknown error " + std::to_string(code);
}

std::atomic<bool> interrupt_wanted{false};

}  // namespace

std::string open_error_text(std::int32_t code) {
    return text_of_code(kOpenTexts, code);
}

std::string file_error_text(std::uint32_t code) {
    return text_of_code(kFileTexts, code);
}

std::string database_error_text(std::int32_t code, const std::string& detail) {
    const std::string text = text_of_code(kDatabaseTexts, code);
    return detail.empty() ? text : text + " (" + detail + ")";
}

void check_interrupt() {
    if (interrupt_wanted.exchange(false)) throw Interrupted();
}

void catch_interrupts() {
    handle_interrupt([] { interrupt_wanted = true; });
}

void warn(const std::string& text) {
    std::fprintf(stderr, "vlt: %s\n", text.c_str());
}

}  // namespace tool

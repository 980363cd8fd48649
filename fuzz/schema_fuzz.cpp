// SPDX-License-Identifier: MIT
// Level-numbered text, with the marks of schemas and with any others: the lines are reported within their bounds, and
// alike whether the text is parsed in place, copied, or read from a file. A schema's text goes through its reader
// too.
#include <array>
#include <cstring>
#include <vector>

#include "fuzz/support.h"
#include "offline/db/level_text.h"
#include "offline/db/schema.h"

namespace {

struct Marks {
    std::string line, level, mark, comment, trim;
};

struct Seen {
    std::int32_t length;
    std::int32_t last_line = -1;
    std::vector<std::string> lines{};
};

std::int32_t Node(KLevelTextNode* node) {
    Seen& seen = *static_cast<Seen*>(node->user);
    Require(node->line_no > seen.last_line && node->line_count >= 1);
    Require(0 <= node->start && node->start <= node->end && node->end <= seen.length);
    Require(node->depth >= 0 && node->depth <= KLEVEL_DEPTH_MAX && node->level >= 0 && node->level <= node->depth);
    Require((node->level == 0) == (node->depth == 0) && node->result == 0);
    Require(((node->flags & KLEVEL_HAS_PARENT) != 0) == (node->depth > 0));
    Require(std::strlen(node->value) < KLEVEL_VALUE_SIZE && std::strlen(node->level_text) < KLEVEL_LEVEL_SIZE);
    Require(node->depth == 0 ? node->inherit == 0 : node->inherit != 0);
    seen.last_line = node->line_no;
    seen.lines.push_back(std::to_string(node->start) + " " + std::to_string(node->end) + " " +
                         std::to_string(node->depth) + " " + std::to_string(node->inherit) + " " + node->level_text +
                         " " + node->value);
    node->inherit = node->line_no + 1;
    if (std::strstr(node->value, "skip")) node->result = KLEVEL_SKIP;
    if (std::strstr(node->value, "stop")) node->result = KLEVEL_STOP;
    std::memset(node->value, '!', std::strlen(node->value));
    return 0;
}

std::int32_t Parse(char* source, std::int32_t kind, const Marks& marks, int count, Seen* seen) {
    return KLevelText_Parse(source, kind, marks.line.c_str(), marks.level.c_str(),
                            marks.mark.empty() ? nullptr : marks.mark.c_str(), marks.comment.c_str(),
                            marks.trim.c_str(), count, Node, seen);
}

void CheckWays(const Marks& marks, const std::string& text, int count) {
    const auto length = static_cast<std::int32_t>(text.size());
    char path[] = "schema.txt";
    HostFile(path).assign(text.begin(), text.end());
    Seen in_place{length}, copied{length}, read{length};
    std::string source = text;
    const std::int32_t result = Parse(source.data(), 0, marks, count, &in_place);
    Require(source == text);
    const std::int32_t other = text.empty() && !marks.line.empty() ? 0 : result;
    Require(Parse(source.data(), KLEVEL_SOURCE_COPY, marks, count, &copied) == other && source == text);
    Require(Parse(path, KLEVEL_SOURCE_FILE, marks, count, &read) == other);
    Require(in_place.lines == copied.lines && in_place.lines == read.lines);
}

/// The schema of a database: its separator can be named and read again, and it can be written once it has one.
void ReadSchema(const std::string& text) {
    HostFile("dir/kdbmain.txt").assign(text.begin(), text.end());
    KOfflineDb db;
    KOfflineDb_SchemaState state;
    KOfflineDb_Constructor(&db);
    const std::int32_t result = read_schema(&db, "dir/kdbmain.txt", &state);
    Require(result == 1 || db.error_code != KOFFLINE_ERR_NONE);
    Require(std::strlen(db.separator) < sizeof db.separator && std::strlen(state.root_code) < sizeof state.root_code);
    const std::int32_t written = KOfflineDb_WriteSchema(&db, "dir/again.txt");
    Require(written == (db.separator[0] != 0));
    KOfflineDb_Destructor(&db);
}

void NameSeparator(const std::string& text) {
    std::array<char, kSeparatorNamesSize> names{};
    std::string pieces = text;
    const bool done = KOfflineDb_ConvertSeparator(pieces.data(), names.data(), 1) == 1;
    Require(done == (names[0] != 0) && std::memchr(names.data(), 0, names.size()));
    std::string characters = text;
    KOfflineDb_ConvertSeparator(characters.data(), names.data(), 0);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ResetHost();
    Input input(data, size);
    const std::uint8_t kind = input.Byte();
    UseDoubleBytes(kind & 2);
    Marks marks{"\r\n", ",", ".", "//", "\t \r\n"};
    if (kind & 1)
        for (std::string* mark : {&marks.line, &marks.level, &marks.mark, &marks.comment, &marks.trim})
            *mark = input.Text();
    const std::string text = input.Text();
    CheckWays(marks, text, kind & 4);
    if (kind & 1) return 0;
    ReadSchema(text);
    NameSeparator(text);
    return 0;
}

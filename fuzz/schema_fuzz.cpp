// SPDX-License-Identifier: MIT
// Level-numbered text, with the marks of schemas and with any others: the lines are reported within their bounds, and
// alike whether the text is parsed in place, copied, or read from a file. A schema's text goes through its reader
// too.
#include <array>
#include <cstring>
#include <tuple>
#include <vector>

#include "fuzz/support.h"
#include "offline/db/schema_read.h"
#include "offline/db/schema_write.h"
#include "offline/db/separator.h"
#include "tests/support/database_files.h"

using namespace vlt;

namespace {

/// What stands between lines, between level and value, and for a level; what begins a comment; what is trimmed.
using Marks = std::array<std::string, 5>;

/// Of a line: number, start, end, depth, what it inherits, level text, value.
using Line =
    std::tuple<std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::intptr_t, std::string, std::string>;

struct Seen {
    std::size_t length;  // of the text
    std::int32_t result = 0;
    std::vector<Line> lines{};
    bool operator==(const Seen&) const = default;
};

std::int32_t Node(KLevelTextNode* node) {
    Seen& seen = *static_cast<Seen*>(node->user);
    Require(node->line_no > (seen.lines.empty() ? -1 : std::get<0>(seen.lines.back())) && node->line_count >= 1);
    Require(0 <= node->start && node->start <= node->end && static_cast<std::size_t>(node->end) <= seen.length);
    Require(node->depth >= 0 && node->depth <= KLEVEL_DEPTH_MAX && node->level >= 0 && node->level <= node->depth);
    Require((node->level == 0) == (node->depth == 0) && node->result == 0);
    Require(((node->flags & KLEVEL_HAS_PARENT) != 0) == (node->depth > 0));
    Require(std::strlen(node->value) < KLEVEL_VALUE_SIZE && std::strlen(node->level_text) < KLEVEL_LEVEL_SIZE);
    Require((node->depth == 0) == (node->inherit == 0));
    seen.lines.emplace_back(node->line_no, node->start, node->end, node->depth, node->inherit, node->level_text,
                            node->value);
    node->inherit = node->line_no + 1;
    if (std::strstr(node->value, "skip")) node->result = KLEVEL_SKIP;
    if (std::strstr(node->value, "stop")) node->result = KLEVEL_STOP;
    std::memset(node->value, '!', std::strlen(node->value));
    return 0;
}

Seen Parse(std::string source, std::int32_t kind, std::size_t length, const Marks& marks, int count) {
    Seen seen{length};
    const std::string before = source;
    seen.result = KLevelText_Parse(source.data(), kind, marks[0].c_str(), marks[1].c_str(), marks[2].c_str(),
                                   marks[3].c_str(), marks[4].c_str(), count, Node, &seen);
    Require(source == before);
    return seen;
}

/// The schema of a database: its separator can be named and read again, and it can be written once it has one.
void ReadSchema(const std::string& path) {
    Database db;
    KOfflineDb_SchemaState state;
    Require(read_schema(db, path.c_str(), &state) == 1 || db->error_code != KOFFLINE_ERR_NONE);
    Require(std::memchr(db->separator, 0, sizeof db->separator) != nullptr);
    Require(std::memchr(state.root_code, 0, sizeof state.root_code) != nullptr);
    Require(KOfflineDb_WriteSchema(db, Scratch("again.txt").c_str()) == (db->separator[0] != 0));
}

void NameSeparator(std::string text) {
    std::array<char, kSeparatorNamesSize> names{};
    std::string pieces = text;
    const bool done = KOfflineDb_ConvertSeparator(pieces.data(), names.data(), 1) == 1;
    Require(done == (names[0] != 0) && std::memchr(names.data(), 0, names.size()));
    KOfflineDb_ConvertSeparator(text.data(), names.data(), 0);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::uint8_t kind = input.Byte();
    UseDoubleBytes(kind & 2);
    Marks marks{"\r\n", ",", ".", "//", "\t \r\n"};
    for (std::string& mark : marks) mark = kind & 1 ? input.Text() : mark;
    const std::string text = input.Text(), path = Scratch("schema.txt");
    WriteText(path, text);
    const Seen in_place = Parse(text, 0, text.size(), marks, kind & 4);
    Require(text.empty() || Parse(text, KLEVEL_SOURCE_COPY, text.size(), marks, kind & 4) == in_place);
    Require(text.empty() || Parse(path, KLEVEL_SOURCE_FILE, text.size(), marks, kind & 4) == in_place);
    if (!(kind & 1)) ReadSchema(path);
    if (!(kind & 1)) NameSeparator(text);
    ResetHost();
    return 0;
}

// SPDX-License-Identifier: MIT
// The reader of level-numbered text: lines such as "1.1, field, NID", whose level text in front of the separator
// tells how deep the line lies. It knows nothing of databases.
//
// A text is cut into lines at the line separator. In each line everything from the comment marker on is ignored;
// what remains is cut at the level separator into level text and value text, both trimmed. Lines whose level text is
// empty are passed over. How much deeper a line lies than the one before it depends on the level mark:
//   a delimiter such as "."  the difference of the numbers of delimiters in the two level texts
//   "LEVELNO"                the difference of the two level texts as numbers; 0 when one is no number of 0 or more
//   "ROOT" + a delimiter     as the delimiter, but all lines lie below the first line of the text
//   none                     nothing lies deeper; level text and value text are both the whole line
#pragma once

#include <cstdint>

namespace vlt {

enum {
    KLEVEL_HAS_CHILDREN = 1,  // flag: the next reported line lies deeper
    KLEVEL_HAS_PARENT = 2     // flag: the depth is above 0
};

enum {
    KLEVEL_SKIP = 1,  // result: the lines below this one are not reported
    KLEVEL_STOP = 2   // result: the parse ends
};

enum {
    KLEVEL_SOURCE_FILE = 1,  // the source is a file's path; the whole file is read
    KLEVEL_SOURCE_COPY = 2   // the source is a text that is copied; any other kind is a text parsed in place
};

/// Bytes of a value text and of a level text, terminator included; longer texts are cut.
inline constexpr std::int32_t KLEVEL_VALUE_SIZE = 32768;
inline constexpr std::int32_t KLEVEL_LEVEL_SIZE = 2048;

/// The deepest line that is reported; lines below such a line are skipped.
inline constexpr std::int32_t KLEVEL_DEPTH_MAX = 255;

/// One reported line.
struct KLevelTextNode {
    void* user;               // as given to the parse
    std::int32_t line_no;     // counted from 0, lines passed over included
    std::int32_t start;       // offset of the line's first byte in the text
    std::int32_t end;         // offset of the line separator before the next line not passed over, or the text's end
    std::int32_t line_count;  // lines of the text when asked for, else 1
    std::int32_t depth;       // 0 for the first reported line; relative to it for the others, never below 0
    std::int32_t level;       // lines above this one at ever smaller depths: a jump of several depths is one level
    char* value;              // a copy that the procedure may change
    const char* level_text;
    const char* level_sep;  // null when not used
    const char* trim;       // null when not used
    std::uint32_t flags;    // KLEVEL_HAS_ flags
    std::intptr_t inherit;  // as the nearest line above left it, 0 at depth 0; what is left here goes to lines below
    std::int32_t result;    // the procedure may set KLEVEL_SKIP or KLEVEL_STOP
};

/// Called for every reported line; what it returns is ignored.
using KLevelTextProc = std::int32_t (*)(KLevelTextNode* node);

/// Reports the lines of a text in order. A text parsed in place is changed meanwhile and is as it was at the end.
///   line_sep    not empty; the other texts may be null or empty, which turns what they stand for off
///   count_lines not 0: the lines are counted first, for KLevelTextNode::line_count
/// Returns 1 at the end of the text, 2 when the procedure stopped it, 0 for an empty file or copied text, -1 when the
/// file cannot be read, memory runs out or there is no line separator.
std::int32_t KLevelText_Parse(char* source, std::int32_t source_kind, const char* line_sep, const char* level_sep,
                              const char* level_mark, const char* comment, const char* trim, std::int32_t count_lines,
                              KLevelTextProc proc, void* user);

}  // namespace vlt

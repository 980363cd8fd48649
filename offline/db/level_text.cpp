// SPDX-License-Identifier: MIT
#include "offline/db/level_text.h"

#include <algorithm>
#include <cstring>

#include "base/ascii_case.h"
#include "base/heap.h"
#include "offline/db/stream.h"
#include "offline/tables/text.h"

namespace vlt {

namespace {

/// Ends a text early for one scope.
class Cut {
public:
    explicit Cut(char* at) : at_(at), kept_(*at) { *at = 0; }
    Cut(const Cut&) = delete;
    Cut& operator=(const Cut&) = delete;
    ~Cut() { *at_ = kept_; }

private:
    char* at_;
    char kept_;
};

enum class Mark { none, delimiter, number, root };

struct Options {
    const char* line_sep;
    const char* level_sep;
    const char* comment;
    const char* trim;
    const char* delimiter;
    Mark mark;
};

/// One line of the text; no line at all when `begin` is null.
struct Line {
    char* begin;
    char* end;  // its line separator, or the end of the text
    std::int32_t number;
};

struct Buffers {
    char value[KLEVEL_VALUE_SIZE];
    char level[KLEVEL_LEVEL_SIZE];
    char ahead_level[KLEVEL_LEVEL_SIZE];
};

/// What the lines above hand down, by depth: a line at depth d has the nesting level nesting[d] + 1.
struct DepthTable {
    std::int32_t nesting[KLEVEL_DEPTH_MAX + 1];
    std::intptr_t inherit[KLEVEL_DEPTH_MAX + 1];
};

enum class Hold { none, passing, skipping };

const char* none_if_empty(const char* text) {
    return text && *text ? text : nullptr;
}

/// True for the four letters ROOT with at least one more character after them.
bool is_root_mark(const char* mark) {
    for (const char letter : {'r', 'o', 'o', 't'}) {
        if (fold_case(*mark++) != letter) return false;
    }
    return *mark != 0;
}

Options make_options(const char* line_sep, const char* level_sep, const char* mark, const char* comment,
                     const char* trim) {
    Options options{line_sep, nullptr, none_if_empty(comment), none_if_empty(trim), nullptr, Mark::none};
    if (!none_if_empty(mark)) return options;
    options.level_sep = none_if_empty(level_sep);
    if (equals_fold(mark, "LEVELNO")) {
        options.mark = Mark::number;
    } else {
        const bool root = is_root_mark(mark);
        options.mark = root ? Mark::root : Mark::delimiter;
        options.delimiter = root ? mark + 4 : mark;
    }
    return options;
}

char* find(char* text, const char* pattern) {
    return const_cast<char*>(KText_Find(text, pattern));
}

std::int32_t count(const char* text, const char* pattern) {
    const std::size_t length = std::strlen(pattern);
    std::int32_t found = 0;
    for (const char* at = KText_Find(text, pattern); at; at = KText_Find(at + length, pattern)) ++found;
    return found;
}

/// The value of a level text in number mode; -1 for one that is no number of 0 or more.
std::int32_t level_number(const char* text) {
    return KText_IsNumber(text) == 1 ? std::max(text_to_int(text), -1) : -1;
}

class Parse {
public:
    Parse(char* text, std::int32_t text_length, const Options& options, Buffers& buffers)
        : text_(text), text_length_(text_length), options_(options), buffers_(buffers) {
        depths_.nesting[0] = -1;
    }

    void report_to(KLevelTextProc proc, void* user) {
        proc_ = proc;
        user_ = user;
    }

    void count_lines() { line_count_ = count(text_, options_.line_sep) + 1; }

    std::int32_t run() {
        current_ = line_at(text_, 0);
        ahead_ = line_after(current_);
        while (current_.begin && result_ == 1) step();
        return result_;
    }

private:
    Line line_at(char* begin, std::int32_t number) const {
        char* end = find(begin, options_.line_sep);
        return {begin, end ? end : begin + std::strlen(begin), number};
    }

    Line line_after(const Line& line) const {
        if (!line.begin || *line.end == 0) return {};
        return line_at(line.end + std::strlen(options_.line_sep), line.number + 1);
    }

    void take_next_ahead() { ahead_ = line_after(ahead_); }

    void move_on() {
        current_ = ahead_;
        take_next_ahead();
        hold_ = Hold::none;
    }

    /// Copies the level text of a line and, where asked for, its value text.
    void copy_texts(const Line& line, char* level, char* value) const {
        const Cut line_cut(line.end);
        char* comment = options_.comment ? find(line.begin, options_.comment) : nullptr;
        const Cut comment_cut(comment ? comment : line.end);
        char* separator = options_.level_sep ? find(line.begin, options_.level_sep) : nullptr;
        const char* value_from = line.begin;
        if (options_.level_sep) value_from = separator ? separator + std::strlen(options_.level_sep) : "";
        if (value) copy_trimmed(value, value_from, KLEVEL_VALUE_SIZE);
        const Cut level_cut(separator ? separator : line.end);
        copy_trimmed(level, line.begin, KLEVEL_LEVEL_SIZE);
    }

    void copy_trimmed(char* to, const char* from, std::int32_t size) const {
        text_copy_cut(to, static_cast<std::size_t>(size), from);
        if (options_.trim) KText_Trim(to, options_.trim, options_.trim);
    }

    /// How much deeper the look-ahead line lies than the current one.
    std::int32_t difference() const {
        if (!ahead_.begin || options_.mark == Mark::none) return 0;
        if (options_.mark == Mark::root && current_.number == 0) return 1;
        if (options_.mark == Mark::number) {
            const std::int32_t here = level_number(buffers_.level);
            const std::int32_t there = level_number(buffers_.ahead_level);
            return here < 0 || there < 0 ? 0 : there - here;
        }
        return count(buffers_.ahead_level, options_.delimiter) - count(buffers_.level, options_.delimiter);
    }

    void step() {
        if (hold_ == Hold::none) copy_texts(current_, buffers_.level, buffers_.value);
        if (buffers_.level[0] == 0) return move_on();
        buffers_.ahead_level[0] = 0;
        if (ahead_.begin) copy_texts(ahead_, buffers_.ahead_level, nullptr);
        if (ahead_.begin && buffers_.ahead_level[0] == 0) {
            if (hold_ == Hold::none) hold_ = Hold::passing;
            return take_next_ahead();
        }
        const std::int32_t deeper = difference();
        if (hold_ == Hold::skipping && deeper > 0) return take_next_ahead();
        // Two numbers may differ by nearly 2^31, so the sum is made in 64 bits.
        const std::int64_t next_depth = std::max<std::int64_t>(0, std::int64_t{depth_} + deeper);
        if (hold_ == Hold::skipping) {
            depth_ = static_cast<std::int32_t>(next_depth);
            return move_on();
        }
        report(deeper, next_depth);
    }

    void report(std::int32_t deeper, std::int64_t next_depth) {
        KLevelTextNode node = make_node(deeper);
        if (proc_) proc_(&node);
        if (next_depth > KLEVEL_DEPTH_MAX) {
            node.result = KLEVEL_SKIP;  // in place of whatever the procedure asked for
            next_depth = KLEVEL_DEPTH_MAX;
        }
        for (std::int32_t below = depth_ + 1; below <= next_depth; ++below) {
            depths_.inherit[below] = node.inherit;
            depths_.nesting[below] = depths_.nesting[depth_] + 1;
        }
        if (node.result == KLEVEL_SKIP && deeper > 0) {
            hold_ = Hold::skipping;
            return;
        }
        if (node.result == KLEVEL_STOP) result_ = 2;
        depth_ = static_cast<std::int32_t>(next_depth);
        move_on();
    }

    KLevelTextNode make_node(std::int32_t deeper) {
        KLevelTextNode node{};
        node.user = user_;
        node.line_no = current_.number;
        node.start = offset(current_.begin);
        node.end = ahead_.begin ? offset(ahead_.begin - std::strlen(options_.line_sep)) : text_length_;
        node.line_count = line_count_;
        node.depth = depth_;
        node.level = depths_.nesting[depth_] + 1;
        node.value = buffers_.value;
        node.level_text = buffers_.level;
        node.level_sep = options_.level_sep;
        node.trim = options_.trim;
        node.flags = (deeper > 0 ? 1U * KLEVEL_HAS_CHILDREN : 0U) | (depth_ > 0 ? 1U * KLEVEL_HAS_PARENT : 0U);
        node.inherit = depths_.inherit[depth_];
        return node;
    }

    std::int32_t offset(const char* at) const { return static_cast<std::int32_t>(at - text_); }

    char* text_;
    std::int32_t text_length_;
    const Options& options_;
    Buffers& buffers_;
    KLevelTextProc proc_ = nullptr;
    void* user_ = nullptr;
    std::int32_t line_count_ = 1;
    std::int32_t depth_ = 0;
    std::int32_t result_ = 1;
    Hold hold_ = Hold::none;
    Line current_{};
    Line ahead_{};
    DepthTable depths_{};
};

HeapBlock<char> copy_text(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    HeapBlock<char> copy = HeapBlock<char>::of(size);
    if (copy) std::memcpy(copy.get(), text, size);
    return copy;
}

std::int32_t parse_text(char* text, const Options& options, bool count_lines, KLevelTextProc proc, void* user) {
    const std::size_t length = std::strlen(text);
    const auto buffers = HeapBlock<Buffers>::of(1);
    if (!buffers || length > INT32_MAX) return -1;
    Parse parse(text, static_cast<std::int32_t>(length), options, buffers[0]);
    parse.report_to(proc, user);
    if (count_lines) parse.count_lines();
    return parse.run();
}

}  // namespace

std::int32_t KLevelText_Parse(char* source, std::int32_t source_kind, const char* line_sep, const char* level_sep,
                              const char* level_mark, const char* comment, const char* trim, std::int32_t count_lines,
                              KLevelTextProc proc, void* user) {
    if (!none_if_empty(line_sep)) return -1;
    char nothing[1] = {};
    if (!source) source = nothing;
    HeapBlock<char> owned;
    if (source_kind == KLEVEL_SOURCE_FILE) {
        if (failed(read_whole_file(nullptr, source, &owned))) return -1;
        if (!owned) return 0;
    } else if (source_kind == KLEVEL_SOURCE_COPY) {
        if (*source == 0) return 0;
        owned = copy_text(source);
        if (!owned) return -1;
    }
    if (owned) source = owned.get();
    const Options options = make_options(line_sep, level_sep, level_mark, comment, trim);
    return parse_text(source, options, count_lines != 0, proc, user);
}

}  // namespace vlt

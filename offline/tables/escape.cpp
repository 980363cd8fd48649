// SPDX-License-Identifier: MIT
#include "offline/tables/escape.h"

#include <cstring>

#include "base/heap.h"
#include "include/offline.h"
#include "offline/tables/text.h"

namespace vlt {

namespace {

constexpr std::size_t kNoLimit = 1879048192;

/// A private copy of some text, on the stack while it is short: the output may overwrite the caller's.
class TextCopy {
public:
    bool assign(const char* text, std::size_t length) {
        if (length >= sizeof small_) {
            large_.reset(static_cast<char*>(heap_alloc(length + 1)));
            if (!large_) return false;
        }
        text_ = large_ ? large_.get() : small_;
        if (length) std::memcpy(text_, text, length);
        text_[length] = 0;
        return true;
    }
    char* get() const { return text_; }

private:
    char small_[256];
    HeapBlock<char> large_;
    char* text_ = nullptr;
};

struct Rule {
    const char* code;
    std::size_t code_length;
    const char* plain;
    std::size_t plain_length;
};

/// The rules of one table, tried in order: the escape character's own first.
class Rules {
public:
    Rules(const char* own, const char* table, char entry_separator, char pair_separator)
        : own_{own, 1, own, 1}, table_(table), entry_(entry_separator), pair_(pair_separator) {}

    template <typename Match>
    bool find(Match match, Rule* rule) const {
        *rule = own_;
        const char* at = table_;
        do {
            if (match(*rule)) return true;
        } while (next(&at, rule));
        return false;
    }

private:
    bool next(const char** at, Rule* rule) const {
        if (**at == 0) return false;
        const char* end = *at;
        const char* pair = nullptr;
        for (; *end && *end != entry_; ++end) {
            if (!pair && *end == pair_) pair = end;
        }
        if (!pair) return false;
        *rule = {*at, static_cast<std::size_t>(pair - *at), pair + 1, static_cast<std::size_t>(end - pair - 1)};
        *at = *end ? end + 1 : end;
        return true;
    }

    Rule own_;
    const char* table_;
    char entry_;
    char pair_;
};

/// The output: whole pieces or nothing, always terminated.
class Output {
public:
    Output(char* text, std::size_t size) : text_(text), size_(size) {
        if (size_) text_[0] = 0;
    }
    bool append(const char* piece, std::size_t length) {
        if (length >= size_ - used_) return false;
        std::memcpy(text_ + used_, piece, length);
        used_ += length;
        text_[used_] = 0;
        return true;
    }
    bool append_pair(char escape, const Rule& rule) {
        if (rule.code_length + 1 >= size_ - used_) return false;
        return append(&escape, 1) && append(rule.code, rule.code_length);
    }

private:
    char* text_;
    std::size_t size_;
    std::size_t used_ = 0;
};

std::size_t span(const char* from, const char* to) {
    return static_cast<std::size_t>(to - from);
}

bool has_prefix(const char* text, const char* prefix, std::size_t length) {
    return std::strncmp(text, prefix, length) == 0;
}

std::int32_t encode(const char* input, char escape, const Rules& rules, Output* output) {
    const char* run = input;
    const char* at = input;
    Rule rule;
    while (*at) {
        const auto match = [&](const Rule& r) { return r.plain_length && has_prefix(at, r.plain, r.plain_length); };
        if (!rules.find(match, &rule)) {
            at = KText_NextChar(at);
            continue;
        }
        if (!output->append(run, span(run, at)) || !output->append_pair(escape, rule)) return 2;
        run = at += rule.plain_length;
    }
    return output->append(run, span(run, at)) ? 0 : 2;
}

std::int32_t decode(const char* input, char escape, const Rules& rules, Output* output) {
    const char* at = input;
    Rule rule;
    while (true) {
        const char* mark = KText_FindChar(at, escape);
        if (!output->append(at, mark ? span(at, mark) : std::strlen(at))) return 2;
        if (!mark) return 0;
        const auto match = [&](const Rule& r) { return has_prefix(mark + 1, r.code, r.code_length); };
        if (!rules.find(match, &rule)) return -static_cast<std::int32_t>(mark - input) - 1;
        if (!output->append(rule.plain, rule.plain_length)) return 2;
        at = mark + 1 + rule.code_length;
    }
}

constexpr EscapeCodes make_codes() {
    EscapeCodes codes{};
    const auto add = [&](char code, char plain) {
        codes.code[static_cast<unsigned char>(plain)] = code;
        codes.plain[static_cast<unsigned char>(code)] = plain;
    };
    add(KOFFLINE_ESCAPE_CHAR, KOFFLINE_ESCAPE_CHAR);
    for (std::size_t i = 0; i + 2 < sizeof KOFFLINE_ESCAPE_TABLE; i += 4) {
        add(KOFFLINE_ESCAPE_TABLE[i], KOFFLINE_ESCAPE_TABLE[i + 2]);
    }
    return codes;
}

const char* find_escape(const char* text, std::size_t length, bool ascii_is_whole) {
    if (ascii_is_whole) return static_cast<const char*>(std::memchr(text, KOFFLINE_ESCAPE_CHAR, length));
    return KText_FindChar(text, KOFFLINE_ESCAPE_CHAR);
}

}  // namespace

constexpr EscapeCodes kEscapeCodes = make_codes();

std::int32_t KText_Swap(const char* input, char escape, const char* table, char entry_separator, char pair_separator,
                        char* output, std::int32_t size, std::int32_t direction) {
    if (entry_separator == pair_separator) return 1;
    if (!output) return 2;
    TextCopy own_input;
    TextCopy own_table;
    if (!own_input.assign(input, input ? std::strlen(input) : 0)) return 2;
    if (!own_table.assign(table, table ? std::strlen(table) : 0)) return 2;
    Output out(output, size < 0 ? kNoLimit : static_cast<std::size_t>(size));
    if (*own_input.get() == 0) return 0;
    const Rules rules(&escape, own_table.get(), entry_separator, pair_separator);
    return direction ? encode(own_input.get(), escape, rules, &out) : decode(own_input.get(), escape, rules, &out);
}

std::size_t escape_decode(char* text, std::size_t length, bool ascii_is_whole) {
    const char* const end = text + length;
    char* out = text;
    const char* at = text;
    while (true) {
        const char* mark = find_escape(at, span(at, end), ascii_is_whole);
        const std::size_t run = span(at, mark ? mark : end);
        if (out != at) std::memmove(out, at, run);
        out += run;
        const char plain = mark ? kEscapeCodes.plain[static_cast<unsigned char>(mark[1])] : 0;
        if (plain == 0) break;
        *out++ = plain;
        at = mark + 2;
    }
    *out = 0;
    return span(text, out);
}

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL KOfflineDb_StrSwap(const char* src, char* dst, std::int32_t dst_size,
                                                 std::int32_t direction) {
    return KText_Swap(src, KOFFLINE_ESCAPE_CHAR, KOFFLINE_ESCAPE_TABLE, KOFFLINE_ENTRY_SEPARATOR,
                      KOFFLINE_PAIR_SEPARATOR, dst, dst_size, direction) == 0;
}

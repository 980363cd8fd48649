// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstring>

#include "base/ascii_case.h"
#include "base/heap.h"
#include "offline/db/load.h"
#include "offline/db/schema.h"
#include "offline/db/stream.h"
#include "offline/tables/error_state.h"
#include "offline/tables/table.h"
#include "offline/tables/text.h"

namespace {

template <std::size_t size>
void copy_cut(char (&to)[size], const char* from) {
    const std::size_t length = std::min(std::strlen(from), size - 1);
    std::memcpy(to, from, length);
    to[length] = 0;
}

/// Takes the next word off a value, trimmed; null when there is none.
char* take_word(char** rest) {
    return KText_SplitComma(*rest, rest);
}

bool is_empty(const char* word) {
    return !word || *word == 0;
}

/// The position of a table; TABLE_COUNT for a name that no table has.
int find_table(const char* name) {
    return static_cast<int>(std::find_if(kTableNames, kTableNames + TABLE_COUNT,
                                         [&](const char* known) { return equals_fold(known, name); }) -
                            kTableNames);
}

bool open_section(KOfflineDb_SchemaState& state, const char* first, char* rest) {
    const bool table = equals_fold(first, "table");
    if (!table && !equals_fold(first, "ini")) return false;
    copy_cut(state.section, first);
    if (!table) return true;
    const char* name = take_word(&rest);
    if (is_empty(name)) return false;
    copy_cut(state.table, name);
    const int found = find_table(name);
    if (found < TABLE_COUNT) state.declared[found] = 1;
    return true;
}

bool declare_field(KOfflineDb_SchemaState& state, const char* first, char* rest) {
    const int table = find_table(state.table);
    if (table == TABLE_COUNT || !equals_fold(first, "field")) return false;
    const char* name = take_word(&rest);
    if (is_empty(name)) return false;
    (void)append_field_alone(&state.db->tables[table], name);  // it notes a failure, which the load meets there
    return true;
}

bool set_separator(KOfflineDb& db, char* names) {
    if (is_empty(names)) return false;
    char characters[kSeparatorNamesSize];
    // A separator that does not fit is refused whole: a part of it would split the lines elsewhere.
    if (KOfflineDb_ConvertSeparator(names, characters, 1) && std::strlen(characters) < sizeof db.separator) {
        copy_cut(db.separator, characters);
    }
    return true;
}

bool apply_setting(KOfflineDb_SchemaState& state, const char* first, char* rest) {
    if (equals_fold(first, "separator") || equals_fold(first, "segment")) {
        return set_separator(*state.db, take_word(&rest));
    }
    if (!equals_fold(first, "root")) return false;
    const char* code = take_word(&rest);
    if (code) copy_cut(state.root_code, code);
    return true;
}

bool apply_line(KOfflineDb_SchemaState& state, std::int32_t level, char* value) {
    if (!value || *KText_Trim(value, " \t", " \t") == 0) return false;
    char* rest = value;
    const char* first = take_word(&rest);
    if (level == 0) return open_section(state, first, rest);
    if (level == 1 && equals_fold(state.section, "table")) return declare_field(state, first, rest);
    if (level == 1 && equals_fold(state.section, "ini")) return apply_setting(state, first, rest);
    return false;
}

/// Reads a whole file as a text. Returns no text with the error set.
HeapBlock<char> read_text(KOfflineDb* db, const char* path) {
    KOfflineStream stream;
    HeapBlock<char> text;
    std::int32_t error = KOFFLINE_ERR_FILE;
    if (KOfflineStream_Open(db, path, 0, &stream)) {
        std::int32_t size = 0;
        if (KOfflineStream_GetSize(&stream, &size) && size >= 1) {
            text = HeapBlock<char>::of(static_cast<std::size_t>(size) + 1);
            if (!text) error = KOFFLINE_ERR_MEMORY;
        }
        if (text && KOfflineStream_Read(text.get(), size, &stream) != size) text.reset();
        if (text) text[static_cast<std::size_t>(size)] = 0;
        KOfflineStream_Close(db, &stream);
    }
    if (text) return text;
    if (error == KOFFLINE_ERR_MEMORY) {
        KOfflineDb_SetError(db, error);
    } else {
        KOfflineDb_SetErrorText(db, error, path);
    }
    return {};
}

}  // namespace

std::int32_t KOfflineDb_SchemaNode(KLevelTextNode* node) {
    auto& state = *static_cast<KOfflineDb_SchemaState*>(node->user);
    if (!apply_line(state, node->level, node->value)) node->result = KLEVEL_SKIP;
    return 1;
}

std::int32_t read_schema(KOfflineDb* db, const char* path, KOfflineDb_SchemaState* state) {
    const HeapBlock<char> text = read_text(db, path);
    if (!text) return 0;
    *state = {};
    state->db = db;
    std::int32_t old_counts[TABLE_COUNT];  // records of an earlier load are laid out once, not for each field
    for (int t = 0; t < TABLE_COUNT; ++t) old_counts[t] = KOfflineTable_GetFldsCount(&db->tables[t]);
    const std::int32_t parsed =
        KLevelText_Parse(text.get(), 0, "\r\n", ",", ".", "//", "\t \r\n", 0, KOfflineDb_SchemaNode, state);
    if (parsed < 0) KOfflineDb_SetError(db, KOFFLINE_ERR_MEMORY);
    for (int t = 0; t < TABLE_COUNT; ++t) (void)lay_out_records(&db->tables[t], old_counts[t]);
    return db->error_code != KOFFLINE_ERR_MEMORY;
}

// SPDX-License-Identifier: MIT
#include "offline/db/schema_read.h"

#include <algorithm>
#include <cstring>

#include "base/ascii_case.h"
#include "base/heap.h"
#include "offline/db/separator.h"
#include "offline/db/stream.h"
#include "offline/tables/fields.h"
#include "offline/tables/text.h"

namespace vlt {

namespace {

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
    text_copy_cut(state.section, sizeof state.section, first);
    if (!table) return true;
    const char* name = take_word(&rest);
    if (is_empty(name)) return false;
    text_copy_cut(state.table, sizeof state.table, name);
    const int found = find_table(name);
    if (found < TABLE_COUNT) state.declared[found] = 1;
    return true;
}

bool declare_field(KOfflineDb_SchemaState& state, const char* first, char* rest) {
    const int table = find_table(state.table);
    if (table == TABLE_COUNT || !equals_fold(first, "field")) return false;
    const char* name = take_word(&rest);
    if (is_empty(name)) return false;
    const Failure failure = append_field_alone(&state.db->tables[table], name);
    if (failed(failure)) state.failure = failure;
    return true;
}

bool set_separator(KOfflineDb& db, char* names) {
    if (is_empty(names)) return false;
    char characters[kSeparatorNamesSize];
    // A separator that does not fit is refused whole: a part of it would split the lines elsewhere.
    if (KOfflineDb_ConvertSeparator(names, characters, 1) && std::strlen(characters) < sizeof db.separator) {
        text_copy_cut(db.separator, sizeof db.separator, characters);
    }
    return true;
}

bool apply_setting(KOfflineDb_SchemaState& state, const char* first, char* rest) {
    if (equals_fold(first, "separator") || equals_fold(first, "segment")) {
        return set_separator(*state.db, take_word(&rest));
    }
    if (!equals_fold(first, "root")) return false;
    const char* code = take_word(&rest);
    if (code) text_copy_cut(state.root_code, sizeof state.root_code, code);
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

/// Records of an earlier load are laid out once for all fields, not for each.
Failure parse_schema(char* text, KOfflineDb* db, KOfflineDb_SchemaState* state) {
    *state = {};
    state->db = db;
    std::int32_t old_counts[TABLE_COUNT];
    for (int t = 0; t < TABLE_COUNT; ++t) old_counts[t] = KOfflineTable_GetFldsCount(&db->tables[t]);
    const std::int32_t parsed =
        KLevelText_Parse(text, 0, "\r\n", ",", ".", "//", "\t \r\n", 0, KOfflineDb_SchemaNode, state);
    if (parsed < 0) state->failure = Failure::memory;
    for (int t = 0; t < TABLE_COUNT; ++t) {
        const Failure failure = lay_out_records(&db->tables[t], old_counts[t]);
        if (failed(failure)) state->failure = failure;
    }
    return state->failure;
}

}  // namespace

std::int32_t KOfflineDb_SchemaNode(KLevelTextNode* node) {
    auto& state = *static_cast<KOfflineDb_SchemaState*>(node->user);
    if (!apply_line(state, node->level, node->value)) node->result = KLEVEL_SKIP;
    return 1;
}

bool read_schema(KOfflineDb* db, const char* path, KOfflineDb_SchemaState* state) {
    HeapBlock<char> text;
    Failure failure = read_whole_file(db, path, &text);
    if (!failed(failure) && !text) failure = Failure::file;
    if (!failed(failure)) failure = parse_schema(text.get(), db, state);
    if (failure == Failure::file) KOfflineDb_SetError(db, failure, path);
    if (failure == Failure::memory) KOfflineDb_SetError(db, failure);
    return !failed(failure);
}

}  // namespace vlt

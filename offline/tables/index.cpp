// SPDX-License-Identifier: MIT
#include "offline/tables/index.h"

#include <algorithm>
#include <cstring>

#include "offline/tables/caller_changes.h"
#include "offline/tables/index_refresh.h"
#include "offline/tables/plain_truth.h"
#include "offline/tables/search_aid.h"

namespace vlt {

namespace {

// Runs of a fixed length are what compilers turn into vector code without further ado.
constexpr std::size_t kRun = 16;

bool run_has(const std::int32_t* run, std::int32_t record) {
    std::int32_t found = 0;
    for (std::size_t i = 0; i < kRun; ++i) found |= -(run[i] == record);
    return found != 0;
}

/// Copies entries and decrements those above `record`; `to` is `from` or lies before it.
void copy_decremented(const std::int32_t* from, std::int32_t* to, std::size_t count, std::int32_t record) {
    std::size_t i = 0;
    for (; i + kRun <= count; i += kRun) {
        std::int32_t run[kRun];
        for (std::size_t j = 0; j < kRun; ++j) run[j] = from[i + j] - (from[i + j] > record);
        std::memcpy(to + i, run, sizeof run);
    }
    for (; i < count; ++i) to[i] = from[i] - (from[i] > record);
}

/// Removes the entry of a record and decrements the higher ones, in one pass.
void remove_entry(std::int32_t* index, std::size_t count, std::int32_t record) {
    std::size_t at = 0;
    for (; at + kRun <= count && !run_has(index + at, record); at += kRun)
        copy_decremented(index + at, index + at, kRun, record);
    const auto place = static_cast<std::size_t>(std::find(index + at, index + count, record) - index);
    copy_decremented(index + at, index + at, place - at, record);
    if (place == count) return;  // not there: a caller has written into the array
    copy_decremented(index + place + 1, index + place, count - place - 1, record);
    index[count - 1] = 0;
}

}  // namespace

void index_value_changed(KOfflineField* field, std::int32_t record) {
    IndexHead* head = Index::head(field->index);
    if (record >= head->held) return;
    index_entries_change(head);
    head->order = IndexOrder::outdated;
}

void index_records_gone(KOfflineField* field) {
    if (!field->index) return;
    index_entries_change(Index::head(field->index));
    Index::head(field->index)->order = IndexOrder::outdated;
}

void index_remove(KOfflineField* field, std::int32_t record) {
    if (!field->index) return;
    IndexHead* head = Index::head(field->index);
    if (record >= head->held) return;
    index_entries_change(head);
    remove_entry(field->index, static_cast<std::size_t>(head->held), record);
    --head->held;
    note_entries(field->index);
    if (head->has_ties && head->order == IndexOrder::exact) head->order = IndexOrder::mended;
}

void index_entries_change(IndexHead* head) {
    search_aid_free(head->aid);
    head->aid = nullptr;
    head->aid_refused = 0;
    head->searches = 0;
}

void index_free(KOfflineField* field) {
    if (!field->index) return;
    search_aid_free(Index::head(field->index)->aid);
    Index::free(field->index);
    field->index = nullptr;
}

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL KOfflineTable_LoadIdx(KOfflineTable* table, const char* name) {
    if (!table) return 0;
    take_over_changes(table);
    const std::int32_t field = KOfflineTable_GetFldIndex(table, name);
    if (field < 0) {
        KOfflineDb_SetError(table->db, Failure::index, name);
        return 0;
    }
    if (index_build(table, field)) return 1;
    KOfflineDb_SetError(table->db, Failure::memory);
    return 0;
}

VLT_API std::int32_t* VLT_CALL KOfflineTable_GetIndexRecs(KOfflineTable* table, std::int32_t field) {
    if (!table) return nullptr;
    take_over_changes(table);
    return table_has_field(table, field) ? table->fields[field].index : nullptr;
}

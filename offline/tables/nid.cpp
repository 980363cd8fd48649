// SPDX-License-Identifier: MIT
#include "offline/tables/nid.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "offline/tables/error_state.h"
#include "offline/tables/record.h"
#include "offline/tables/table.h"
#include "offline/tables/text.h"

namespace {

constexpr std::int32_t kLargestNid = std::numeric_limits<std::int32_t>::max();

struct NidText {
    explicit NidText(std::int32_t nid) { std::snprintf(text, sizeof text, "%d", static_cast<int>(nid)); }
    char text[12];
};

std::int32_t largest_nid(const KOfflineTable* table, std::int32_t field) {
    std::int32_t largest = 0;
    for (std::int32_t i = 0; i < table->record_count; ++i) {
        largest = std::max(largest, nid_from_text(record_value(table->records[i], table->field_count, field)));
    }
    return largest;
}

std::int32_t next_base(KOfflineTable* table, std::int32_t field) {
    if (table->nid_watermark < 0) return field < 0 ? -1 : table->nid_watermark = largest_nid(table, field);
    return table->nid_watermark == kLargestNid ? -1 : ++table->nid_watermark;
}

}  // namespace

std::int32_t nid_field(const KOfflineTable* table) {
    return KOfflineTable_GetFldIndex(const_cast<KOfflineTable*>(table), "NID");
}

std::int32_t nid_from_text(const char* value) {
    return KText_IsNumber(value) == 1 ? text_to_int(value) : -1;
}

std::int32_t KOfflineTable_NextNIDBase(KOfflineTable* table) {
    return next_base(table, nid_field(table));
}

std::int32_t KOfflineTable_AssignNID(KOfflineTable* table, std::int32_t nid_field, KOfflineRecord** record,
                                     bool force) {
    if (nid_field < 0) return KOFFLINE_ERR_NONE;
    if (!force && *record_text_or_empty(*record, table->field_count, nid_field)) return KOFFLINE_ERR_NONE;
    const std::int32_t watermark = table->nid_watermark;
    const std::int32_t base = next_base(table, nid_field);
    std::int32_t failure = KOFFLINE_ERR_RECORD;
    if (base >= 0 && base < kLargestNid) {
        failure = record_set_value(record, table->field_count, nid_field, NidText(base + 1).text);
    }
    if (failure) table->nid_watermark = watermark;
    return failure;
}

std::int32_t VLT_CALL KOfflineTable_GetRecNID(KOfflineTable* table, std::int32_t rec) {
    return nid_from_text(KOfflineTable_GetFldValue(table, rec, nid_field(table)));
}

std::int32_t VLT_CALL KOfflineTable_SetRecNID(KOfflineTable* table, std::int32_t rec, std::int32_t nid) {
    const std::int32_t field = nid_field(table);
    if (field < 0 || !KOfflineTable_SetFldValue(table, rec, field, NidText(nid).text)) return 0;
    const std::int32_t watermark = table->nid_watermark;
    if (watermark >= 0 && nid >= watermark) table->nid_watermark = nid == kLargestNid ? nid : nid + 1;
    return 1;
}

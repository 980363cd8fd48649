// SPDX-License-Identifier: MIT
#include "offline/tables/nid.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "offline/tables/fields.h"
#include "offline/tables/record_bytes.h"
#include "offline/tables/text.h"

namespace vlt {

namespace {

constexpr std::int32_t kLargestNid = std::numeric_limits<std::int32_t>::max();

std::int32_t largest_nid(const KOfflineTable* table, std::int32_t field) {
    std::int32_t largest = 0;
    for (std::int32_t i = 0; i < table->record_count; ++i) {
        largest = std::max(largest, nid_from_text(record_value(table->records[i], table->field_count, field)));
    }
    return largest;
}

std::int32_t next_base(KOfflineTable* table, std::int32_t field) {
    if (table->nid_watermark == kLargestNid) return -1;
    if (table->nid_watermark >= 0) return ++table->nid_watermark;
    if (field < 0) return -1;
    table->nid_watermark = largest_nid(table, field);
    return table->nid_watermark;
}

}  // namespace

NidText::NidText(std::int32_t nid) {
    *std::to_chars(text, text + sizeof text - 1, nid).ptr = 0;
}

std::int32_t nid_field(const KOfflineTable* table) {
    return KOfflineTable_GetFldIndex(const_cast<KOfflineTable*>(table), "NID");
}

std::int32_t nid_from_text(const char* value) {
    return KText_IsNumber(value) == 1 ? text_to_int(value) : -1;
}

std::int32_t KOfflineTable_NextNIDBase(KOfflineTable* table) {
    return next_base(table, nid_field(table));
}

Failure KOfflineTable_AssignNID(KOfflineTable* table, std::int32_t nid_field, KOfflineRecord** record, bool force) {
    if (nid_field < 0) return Failure::none;
    if (!force && *record_text_or_empty(*record, table->field_count, nid_field)) return Failure::none;
    const std::int32_t watermark = table->nid_watermark;
    const std::int32_t base = next_base(table, nid_field);
    Failure failure = Failure::record;
    if (base >= 0 && base < kLargestNid) {
        failure = record_set_value(record, table->field_count, nid_field, NidText(base + 1).text);
    }
    if (failed(failure)) table->nid_watermark = watermark;
    return failure;
}

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL KOfflineTable_GetRecNID(KOfflineTable* table, std::int32_t rec) {
    return nid_from_text(KOfflineTable_GetFldValue(table, rec, nid_field(table)));
}

VLT_API std::int32_t VLT_CALL KOfflineTable_SetRecNID(KOfflineTable* table, std::int32_t rec, std::int32_t nid) {
    const std::int32_t field = nid_field(table);
    if (field < 0 || !KOfflineTable_SetFldValue(table, rec, field, NidText(nid).text)) return 0;
    const std::int32_t watermark = table->nid_watermark;
    if (watermark >= 0 && nid >= watermark) table->nid_watermark = nid == kLargestNid ? nid : nid + 1;
    return 1;
}

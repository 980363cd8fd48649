// SPDX-License-Identifier: MIT
#include "offline/db/lookups.h"

#include <cstring>

#include "offline/tables/nid.h"

namespace vlt {

namespace {

constexpr FieldSlot kNidSlots[TABLE_COUNT] = {
#define KOFFLINE_ENTRY(table, lower_case) SLOT_##table##_NID,
    KOFFLINE_TABLES(KOFFLINE_ENTRY)
#undef KOFFLINE_ENTRY
};

KOfflineTable* table_of(KOfflineDb* db, FieldSlot slot) {
    return &db->tables[kWellKnownFields[slot].table];
}

FieldSlot code_slot(TableSlot table) {
    if (table == TABLE_BDWG) return SLOT_BDWG_CCODE;
    return table == TABLE_BCAPP ? SLOT_BCAPP_CCODE : SLOT_BITM_CCODE;
}

std::int32_t field_number(KOfflineDb* db, FieldSlot slot) {
    if (!db) return -1;
    std::int32_t& number = db->field_slots[slot];
    // A load accepts a table without its optional field, and the caller may add that field later.
    if (number < 0 && kWellKnownFields[slot].rule == FieldRule::optional) {
        number = KOfflineTable_GetFldIndex(table_of(db, slot), kWellKnownFields[slot].name);
    }
    return number;
}

const char* value_of(KOfflineDb* db, FieldSlot slot, std::int32_t rec) {
    return KOfflineTable_GetFldValue(table_of(db, slot), rec, db->field_slots[slot]);
}

std::int32_t find_record(KOfflineDb* db, FieldSlot slot, const char* key) {
    std::int32_t rec = -1;
    return KOfflineTable_Search(table_of(db, slot), db->field_slots[slot], key, &rec, 1) >= 1 ? rec : -1;
}

std::int32_t record_by_nid(KOfflineDb* db, TableSlot table, std::int32_t nid) {
    if (!db) return -1;
    return find_record(db, kNidSlots[table], NidText(nid).text);
}

std::int32_t nid_by_record(KOfflineDb* db, TableSlot table, std::int32_t rec) {
    return db ? nid_from_text(value_of(db, kNidSlots[table], rec)) : -1;
}

/// The code of a record; empty for one that has none or does not exist, null for a negative number or no code field.
const char* code_by_record(KOfflineDb* db, TableSlot table, std::int32_t rec) {
    const FieldSlot slot = code_slot(table);
    if (!db || rec < 0 || db->field_slots[slot] < 0) return nullptr;
    const char* code = value_of(db, slot, rec);
    return code ? code : "";
}

std::int32_t copy_code(const char* code, char* dst) {
    if (dst) std::strcpy(dst, code ? code : "");
    return code != nullptr;
}

}  // namespace

const char* code_by_nid(KOfflineDb* db, TableSlot table, std::int32_t nid) {
    const std::int32_t rec = nid < 1 ? -1 : record_by_nid(db, table, nid);
    return code_by_record(db, table, rec);
}

}  // namespace vlt

using namespace vlt;

#define KOFFLINE_ENTRY(table, lower_case)                                                            \
    VLT_API std::int32_t VLT_CALL KOfflineDb_GetRecByNID_##table(KOfflineDb* db, std::int32_t nid) { \
        return record_by_nid(db, TABLE_##table, nid);                                                \
    }                                                                                                \
    VLT_API std::int32_t VLT_CALL KOfflineDb_GetNIDByRec_##table(KOfflineDb* db, std::int32_t rec) { \
        return nid_by_record(db, TABLE_##table, rec);                                                \
    }                                                                                                \
    VLT_API KOfflineTable* VLT_CALL /* NOLINT(bugprone-macro-parentheses) */                         \
        KOfflineDb_GetTable_##table(KOfflineDb* db) {                                                \
        return db ? &db->tables[TABLE_##table] : nullptr;                                            \
    }
KOFFLINE_TABLES(KOFFLINE_ENTRY)
#undef KOFFLINE_ENTRY

#define KOFFLINE_ENTRY(table, field, rule)                                              \
    VLT_API std::int32_t VLT_CALL KOfflineDb_GetFld_##table##_##field(KOfflineDb* db) { \
        return field_number(db, SLOT_##table##_##field);                                \
    }
KOFFLINE_FIELDS(KOFFLINE_ENTRY)
#undef KOFFLINE_ENTRY

// The functions of the items carry no table name.
#define KOFFLINE_CODES(suffix, table)                                                                             \
    VLT_API std::int32_t VLT_CALL KOfflineDb_GetCCODEByRec##suffix(KOfflineDb* db, std::int32_t rec, char* dst) { \
        return copy_code(code_by_record(db, table, rec), dst);                                                    \
    }                                                                                                             \
    VLT_API std::int32_t VLT_CALL KOfflineDb_GetCCODEByNID##suffix(KOfflineDb* db, std::int32_t nid, char* dst) { \
        return copy_code(code_by_nid(db, table, nid), dst);                                                       \
    }
KOFFLINE_CODES(, TABLE_BITM)
KOFFLINE_CODES(_BDWG, TABLE_BDWG)
KOFFLINE_CODES(_BCAPP, TABLE_BCAPP)
#undef KOFFLINE_CODES

VLT_API std::int32_t VLT_CALL KOfflineDb_GetNIDByCCODE(KOfflineDb* db, const char* code) {
    if (!db || !code || *code == 0) return -1;
    const std::int32_t rec = find_record(db, SLOT_BITM_CCODE, code);
    return rec < 0 ? -1 : nid_by_record(db, TABLE_BITM, rec);
}

VLT_API void VLT_CALL KOfflineDb_SetCheckInRec(KOfflineDb* db, std::int32_t rec) {
    if (db) db->check_in_rec = rec;
}

VLT_API std::int32_t VLT_CALL KOfflineDb_GetCheckInRec(KOfflineDb* db) {
    return db ? db->check_in_rec : -1;
}

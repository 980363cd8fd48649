// SPDX-License-Identifier: MIT
#include "offline/db/accessors.h"

#include <charconv>
#include <cstring>

#include "offline/tables/text.h"

namespace {

constexpr FieldSlot kNidSlots[TABLE_COUNT] = {
#define KOFFLINE_ENTRY(table) SLOT_##table##_NID,
    KOFFLINE_TABLES(KOFFLINE_ENTRY)
#undef KOFFLINE_ENTRY
};

using TablePointer = KOfflineTable*;

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
    char text[12];
    *std::to_chars(text, text + sizeof text - 1, nid).ptr = 0;
    return find_record(db, kNidSlots[table], text);
}

std::int32_t nid_by_record(KOfflineDb* db, TableSlot table, std::int32_t rec) {
    const char* text = db ? value_of(db, kNidSlots[table], rec) : nullptr;
    return KText_IsNumber(text) == 1 ? text_to_int(text) : -1;
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

/// Record numbers for the caller: all are counted, those that fit are stored.
class RecordList {
public:
    RecordList(std::int32_t* recs, std::int32_t max) : recs_(recs), max_(recs ? max : 0) {}

    void add(std::int32_t rec) {
        if (count_ < max_) recs_[count_] = rec;
        ++count_;
    }

    std::int32_t count() const { return count_; }

private:
    std::int32_t* recs_;
    std::int32_t max_;
    std::int32_t count_ = 0;
};

bool has_parent(KOfflineDb* db, const char* nid) {
    return KOfflineTable_Search(&db->tables[TABLE_BBOM], db->field_slots[SLOT_BBOM_NCID], nid, nullptr, 0) >= 1;
}

bool is_top(KOfflineDb* db, std::int32_t rec) {
    const char* nid = value_of(db, SLOT_BITM_NID, rec);
    return nid && *nid && !has_parent(db, nid);
}

}  // namespace

const char* code_by_nid(KOfflineDb* db, TableSlot table, std::int32_t nid) {
    const std::int32_t rec = nid < 1 ? -1 : record_by_nid(db, table, nid);
    return code_by_record(db, table, rec);
}

#define KOFFLINE_ENTRY(table)                                                       \
    std::int32_t KOfflineDb_GetRecByNID_##table(KOfflineDb* db, std::int32_t nid) { \
        return record_by_nid(db, TABLE_##table, nid);                               \
    }                                                                               \
    std::int32_t KOfflineDb_GetNIDByRec_##table(KOfflineDb* db, std::int32_t rec) { \
        return nid_by_record(db, TABLE_##table, rec);                               \
    }                                                                               \
    TablePointer KOfflineDb_GetTable_##table(KOfflineDb* db) {                      \
        return db ? &db->tables[TABLE_##table] : nullptr;                           \
    }
KOFFLINE_TABLES(KOFFLINE_ENTRY)
#undef KOFFLINE_ENTRY

#define KOFFLINE_ENTRY(table, field, rule)                             \
    std::int32_t KOfflineDb_GetFld_##table##_##field(KOfflineDb* db) { \
        return field_number(db, SLOT_##table##_##field);               \
    }
KOFFLINE_FIELDS(KOFFLINE_ENTRY)
#undef KOFFLINE_ENTRY

// The functions of the items carry no table name.
#define KOFFLINE_CODES(suffix, table)                                                            \
    std::int32_t KOfflineDb_GetCCODEByRec##suffix(KOfflineDb* db, std::int32_t rec, char* dst) { \
        return copy_code(code_by_record(db, table, rec), dst);                                   \
    }                                                                                            \
    std::int32_t KOfflineDb_GetCCODEByNID##suffix(KOfflineDb* db, std::int32_t nid, char* dst) { \
        return copy_code(code_by_nid(db, table, nid), dst);                                      \
    }
KOFFLINE_CODES(, TABLE_BITM)
KOFFLINE_CODES(_BDWG, TABLE_BDWG)
KOFFLINE_CODES(_BCAPP, TABLE_BCAPP)
#undef KOFFLINE_CODES

std::int32_t KOfflineDb_GetNIDByCCODE(KOfflineDb* db, const char* code) {
    if (!db || !code || *code == 0) return -1;
    const std::int32_t rec = find_record(db, SLOT_BITM_CCODE, code);
    return rec < 0 ? -1 : nid_by_record(db, TABLE_BITM, rec);
}

std::int32_t KOfflineDb_SetRootNode(KOfflineDb* db, std::int32_t rec) {
    const std::int32_t nid = db ? KOfflineTable_GetRecNID(&db->tables[TABLE_BITM], rec) : -1;
    if (nid < 1) return 0;
    db->root_nid = nid;
    return 1;
}

std::int32_t KOfflineDb_GetRootNodes(KOfflineDb* db, std::int32_t* recs, std::int32_t max) {
    if (!db) return 0;
    const std::int32_t root = db->root_nid > 0 ? record_by_nid(db, TABLE_BITM, db->root_nid) : -1;
    if (root < 0) return KOfflineDb_GetNoParentNodes(db, recs, max);
    if (recs && max >= 1) recs[0] = root;
    return 1;
}

std::int32_t KOfflineDb_GetNoParentNodes(KOfflineDb* db, std::int32_t* recs, std::int32_t max) {
    if (!db) return 0;
    RecordList tops(recs, max);
    const std::int32_t items = KOfflineTable_GetRecsCount(&db->tables[TABLE_BITM]);
    const bool flat = KOfflineTable_GetRecsCount(&db->tables[TABLE_BBOM]) < 1;
    for (std::int32_t rec = 0; rec < items; ++rec) {
        if (flat || is_top(db, rec)) tops.add(rec);
    }
    return tops.count();
}

void KOfflineDb_SetCheckInRec(KOfflineDb* db, std::int32_t rec) {
    if (db) db->check_in_rec = rec;
}

std::int32_t KOfflineDb_GetCheckInRec(KOfflineDb* db) {
    return db ? db->check_in_rec : -1;
}

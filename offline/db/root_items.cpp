// SPDX-License-Identifier: MIT
// The root item that a caller chose, and the items that no other one has as its child.
#include "include/offline.h"
#include "offline/db/field_list.h"

namespace vlt {

namespace {

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
    const char* nid = KOfflineTable_GetFldValue(&db->tables[TABLE_BITM], rec, db->field_slots[SLOT_BITM_NID]);
    return nid && *nid && !has_parent(db, nid);
}

}  // namespace

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL KOfflineDb_SetRootNode(KOfflineDb* db, std::int32_t rec) {
    const std::int32_t nid = db ? KOfflineTable_GetRecNID(&db->tables[TABLE_BITM], rec) : -1;
    if (nid < 1) return 0;
    db->root_nid = nid;
    return 1;
}

VLT_API std::int32_t VLT_CALL KOfflineDb_GetRootNodes(KOfflineDb* db, std::int32_t* recs, std::int32_t max) {
    if (!db) return 0;
    const std::int32_t root = db->root_nid > 0 ? KOfflineDb_GetRecByNID_BITM(db, db->root_nid) : -1;
    if (root < 0) return KOfflineDb_GetNoParentNodes(db, recs, max);
    if (recs && max >= 1) recs[0] = root;
    return 1;
}

VLT_API std::int32_t VLT_CALL KOfflineDb_GetNoParentNodes(KOfflineDb* db, std::int32_t* recs, std::int32_t max) {
    if (!db) return 0;
    RecordList tops(recs, max);
    const std::int32_t items = KOfflineTable_GetRecsCount(&db->tables[TABLE_BITM]);
    const bool flat = KOfflineTable_GetRecsCount(&db->tables[TABLE_BBOM]) < 1;
    for (std::int32_t rec = 0; rec < items; ++rec) {
        if (flat || is_top(db, rec)) tops.add(rec);
    }
    return tops.count();
}

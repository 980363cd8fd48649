// SPDX-License-Identifier: MIT
// Callers own the records of the interface, and old ones write into them. Whatever they write into a field that is no
// pointer, every function ends and stays within what there is.
#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>

#include "tests/support/database.h"

namespace {

/// Something of a database that a caller may write into, and what is written.
struct Change {
    std::string name;
    std::function<void(KOfflineDb*)> apply;
};

class CallerChanges : public DatabaseTest, public testing::WithParamInterface<Place> {
protected:
    /// A number, found again in each database, is set to values of all kinds.
    template <typename Find>
    void AddNumber(const std::string& name, Find find) {
        for (const std::int32_t value : {0, 1, -1, INT_MAX, INT_MIN}) {
            changes_.push_back({name + " = " + std::to_string(value), [=](auto* db) { *find(db) = value; }});
        }
        changes_.push_back({name + " one more", [=](auto* db) { ++*find(db); }});
        changes_.push_back({name + " one less", [=](auto* db) { --*find(db); }});
    }

    /// A text loses its terminator.
    template <typename Find>
    void AddText(const std::string& name, Find find) {
        changes_.push_back({name, [=](auto* db) { std::memset(*find(db), 'x', sizeof *find(db)); }});
    }

    void AddTable(int t) {
        const std::string name = "tables[" + std::to_string(t) + "].";
        AddNumber(name + "field_count", [=](auto* db) { return &db->tables[t].field_count; });
        AddNumber(name + "indexes_stale", [=](auto* db) { return &db->tables[t].indexes_stale; });
        AddNumber(name + "record_capacity", [=](auto* db) { return &db->tables[t].record_capacity; });
        AddNumber(name + "record_count", [=](auto* db) { return &db->tables[t].record_count; });
        AddNumber(name + "nid_watermark", [=](auto* db) { return &db->tables[t].nid_watermark; });
        AddText(name + "table_name", [=](auto* db) { return &db->tables[t].table_name; });
        for (const int f : {0, 1}) {
            AddText(name + "field_name", [=](auto* db) { return &db->tables[t].fields[f].field_name; });
            for (const int entry : {0, 1, kItems / 2}) {
                AddNumber(name + "index", [=](auto* db) { return &db->tables[t].fields[f].index[entry]; });
            }
            changes_.push_back({name + "index reversed", [=](auto* db) {
                                    std::int32_t* index = db->tables[t].fields[f].index;
                                    std::reverse(index, index + db->tables[t].record_count);
                                }});
        }
    }

    CallerChanges() {
        AddNumber("package", [](auto* db) { return &db->package; });
        AddNumber("user_data_size", [](auto* db) { return &db->user_data_size; });
        AddNumber("root_nid", [](auto* db) { return &db->root_nid; });
        AddNumber("check_in_rec", [](auto* db) { return &db->check_in_rec; });
        AddNumber("error_code", [](auto* db) { return &db->error_code; });
        AddNumber("field_slots[0]", [](auto* db) { return &db->field_slots[0]; });
        AddNumber("field_slots[6]", [](auto* db) { return &db->field_slots[6]; });
        AddText("path", [](auto* db) { return &db->path; });
        AddText("separator", [](auto* db) { return &db->separator; });
        AddText("error_text", [](auto* db) { return &db->error_text; });
        for (const int table : {0, 1}) AddTable(table);
    }
    ~CallerChanges() override { vlt_package_close_all(); }

    static std::string Rows(int count) {
        std::string rows;
        for (int i = 1; i <= count; ++i) {
            const std::string n = std::to_string(i), other = std::to_string(i * 7 % count + 1);
            rows += n + "\t" + other + "x\t" + other + "\tvalue\r\n";
        }
        return rows;
    }

    /// A database whose searches have gone far enough to have prepared what makes them fast.
    void Load(KOfflineDb* db) {
        Files files = SmallDatabase();
        files["bitm.txt"] = Rows(kItems);
        files["bbom.txt"] = Rows(kItems);
        Remove("data");
        ASSERT_EQ(KOfflineDb_Load(db, Put(files, GetParam()).c_str()), 1);
        std::memset(KOfflineDb_InitUserData(db, 8, 0), 'u', 8);
        for (int i = 0; i < 5; ++i) Search(db);
    }

    static void Search(KOfflineDb* db) {
        std::int32_t found[4];
        for (KOfflineTable& table : db->tables) {
            for (std::int32_t field = -1; field < 6; ++field) {
                for (const char* key : {"7", "8x", "7x", ""}) KOfflineTable_Search(&table, field, key, found, 4);
            }
        }
    }

    static void UseTable(KOfflineTable* table, const std::string& path) {
        char name[33];
        KOfflineTable_GetOfflineDb(table);
        KOfflineTable_GetTblName(table);
        for (std::int32_t field = -1; field < 6; ++field) {
            KOfflineTable_GetFldName(table, field, name);
            KOfflineTable_GetIndexRecs(table, field);
            for (const std::int32_t rec : {-1, 0, 1, kItems - 1, kItems, INT_MAX}) {
                if (const char* value = KOfflineTable_GetFldValue(table, rec, field)) std::string{value};
                if (field < 4) KOfflineTable_SetFldValue(table, rec, field, field % 2 ? "8x" : "a longer value");
            }
        }
        KOfflineTable_DelRec(table, KOfflineTable_GetRecsCount(table) / 2);
        KOfflineTable_SetRecNID(table, 0, KOfflineTable_GetRecNID(table, 0) + 9);
        KOfflineTable_CopyRec(table, 0);
        KOfflineTable_AddRec(table, "\tnew\tnew", "\t");
        KOfflineTable_AddFld(table, "EXTRA");
        KOfflineTable_AddRec(table, "5000\tnew\tnew\t\t\t", "\t");
        KOfflineTable_GetFldIndex(table, "EXTRA");
        KOfflineTable_GetFldsCount(table);
        KOfflineTable_WriteFile(table, path.c_str(), "\t");
    }

    void Use(KOfflineDb* db) {
        char text[300];
        Search(db);
        KOfflineDb_GetNoParentNodes(db, nullptr, 0);
        KOfflineDb_GetRootNodes(db, nullptr, 0);
        KOfflineDb_GetNIDByCCODE(db, "8x");
        KOfflineDb_GetPath(db, text);
        KOfflineDb_GetPackageHandle(db);
        KOfflineDb_StrSwap("text", text, sizeof text, 1);
        KOfflineDb_SetCheckInRec(db, KOfflineDb_GetCheckInRec(db) / 2);
        std::int32_t size = 0;
        KOfflineDb_GetUserData(db, &size);
        for (auto* number : kFieldNumbers) number(db);
        for (const std::int32_t number : {-1, 0, 7, kItems - 1, kItems, INT_MAX}) {
            for (auto* code : kCodes) code(db, number, text);
            for (const auto& of : kTables) of.record(db, of.nid(db, number)), of.record(db, number);
        }
        for (KOfflineTable& table : db->tables) UseTable(&table, At("file"));
        Search(db);
        for (KOfflineTable& table : db->tables) {
            for (const char* field : {"NID", "CCODE", "NPID", "CNAME"}) KOfflineTable_LoadIdx(&table, field);
        }
        Search(db);
        KOfflineDb_InitUserData(db, 64, 1);
        KOfflineDb_SetRootNode(db, 0);
        KOfflineDb_CheckPackageFileExist(db, "bitm.txt");
        KOfflineDb_GetPackageFile(db, "bitm.txt", At("out").c_str());
        KOfflineDb_SavePackageFile(db, At("out").c_str(), "in");
        KOfflineDb_Save(db);
        KOfflineDb_SaveAs(db, At("data").c_str());
        KOfflineTable_Clear(&db->tables[0]);
        KOfflineDb_Load(db, At("data").c_str());
    }

    static constexpr int kItems = 90;
    std::vector<Change> changes_;
};

INSTANTIATE_TEST_SUITE_P(Places, CallerChanges, testing::Values(Place::directory, Place::package));

TEST_P(CallerChanges, OfAnyFieldAreSurvivedByEveryFunction) {
    for (const Change& change : changes_) {
        SCOPED_TRACE(change.name);
        Database db;
        Load(db);
        const std::int32_t package = db->package;
        change.apply(db);
        Use(db);
        KOfflineDb_Reset(db);
        vlt_package_close(package);
    }
}

TEST_P(CallerChanges, OfCountsCutOffWhatLiesBehind) {
    Database db;
    Load(db);
    KOfflineTable* items = KOfflineDb_GetTable_BITM(db);
    std::int32_t found = -1;
    ASSERT_EQ(KOfflineTable_Search(items, 0, "90", &found, 1), 1);
    items->record_count = 80;
    EXPECT_EQ(KOfflineTable_Search(items, 0, "90", &found, 1), -1);
    EXPECT_EQ(KOfflineTable_AddRec(items, "500", "\t"), 80);
    EXPECT_EQ(KOfflineTable_Search(items, 0, "500", &found, 1), 1);
    EXPECT_EQ(found, 80);
    items->field_count = 2;
    EXPECT_EQ(KOfflineTable_AddFld(items, "NEW"), 2);
    EXPECT_EQ(KOfflineTable_GetFldValue(items, 0, 2), nullptr);
    EXPECT_STREQ(KOfflineTable_GetFldValue(items, 0, 1), "8x");
    items->record_count = INT_MAX;
    EXPECT_EQ(KOfflineTable_GetRecsCount(items), 81);
    KOfflineTable_SetFldValue(items, 3, 0, "900");
    items->indexes_stale = 0;
    for (int i = 0; i < 5; ++i) EXPECT_EQ(KOfflineTable_Search(items, 0, "900", nullptr, 0), 1);
}

}  // namespace

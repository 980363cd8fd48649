// SPDX-License-Identifier: MIT
// Databases under faults: every operation while the n-th host call or allocation fails, a save that is cut off after
// n writes, damage to the seven files.
#include <algorithm>
#include <cstring>
#include <filesystem>

#include "offline/tables/data_file.h"
#include "tests/faults/world.h"
#include "tests/support/database.h"
#include "tests/support/table.h"

using namespace vlt;

namespace {

constexpr int kFull = 512;  // records that fill what a table has room for

/// Items with codes, a field of few different values and one of many.
std::string ItemLines(int count) {
    std::string lines;
    for (int i = 1; i <= count; ++i) {
        const std::string n = std::to_string(i);
        lines += n + "\tC" + n + "\t" + std::to_string(i % 5) + "\tv" + std::to_string(i * 77 % 1000) + "\r\n";
    }
    return lines;
}

KOfflineTable* Items(KOfflineDb* db) {
    return KOfflineDb_GetTable_BITM(db);
}

/// A database beside a document, in a package or a directory; and a disk file.
class DatabaseMeetsFaults : public DatabaseTest {
protected:
    DatabaseMeetsFaults() { files_["document.txt"] = std::string(40000, 'd'); }
    ~DatabaseMeetsFaults() override {
        vlt_package_close_all();
        EXPECT_TRUE(HeldNow() == HeldResources()) << "something is still held";
    }

    /// Puts everything where it is at first, and loads it.
    bool Begin(KOfflineDb* db, Place place) {
        Write("disk file", std::string(40000, 'f'));
        MakeDirectory("copy");
        std::filesystem::remove_all(path_);
        path_ = Put(files_, place);
        return KOfflineDb_Load(db, path_.c_str()) == 1;
    }

    /// Loads a database that may be damaged, uses it and saves it; once more what was saved.
    void Examine() {
        Database db;
        bool loaded = Begin(db, Place::package);
        for (int round = 0; round < 2; ++round) {
            EXPECT_TRUE(loaded || db->error_code != KOFFLINE_ERR_NONE);
            KOfflineDb_GetNIDByCCODE(db, "BIKE");
            KOfflineDb_GetRecByNID_BBOM(db, 1);
            KOfflineDb_GetRootNodes(db, nullptr, 0);
            KOfflineTable_AddRec(Items(db), "5\tX", "\t");
            KOfflineTable_CopyRec(Items(db), 0);
            KOfflineTable_DelRec(Items(db), 0);
            EXPECT_TRUE(!loaded || KOfflineDb_Save(db) == 1);
            KOfflineDb_Reset(db);
            loaded = KOfflineDb_Load(db, path_.c_str()) == 1;
        }
        Count("patches of databases tried");
    }

    void ExpectSoundPackage() const {
        const PackageImage image(ReadHostFile(path_));
        EXPECT_EQ(Faults(image, kCutOff), "");
        EXPECT_EQ(image.FileBytes("document.txt"), Bytes(40000, 'd'));
    }

    Files files_ = SmallDatabase();
    std::string path_ = At("data");
};

// ---- Operations --------------------------------------------------------------------------------------------------

std::string data_path, copy_path, disk_path;  // where they lie for the test that runs

using Db = KOfflineDb;

struct DbOperation {
    const char* name;
    std::int32_t failure;  // what it returns when it fails; kNever for one that does without what fails
    std::int32_t code;     // the error code then; what only memory can fail is not done again when it has succeeded
    std::int32_t (*run)(Db* db);
};

constexpr std::int32_t kNone = KOFFLINE_ERR_NONE, kMemory = KOFFLINE_ERR_MEMORY, kFile = KOFFLINE_ERR_FILE;
constexpr std::int32_t kNever = -99;
const std::string kLong(300, ',');

std::int32_t Load(Db* db) {
    KOfflineDb_Reset(db);
    return KOfflineDb_Load(db, data_path.c_str());
}

std::int32_t Refresh(Db* db) {
    EXPECT_EQ(KOfflineTable_SetFldValue(Items(db), 3, 2, "1"), 1);
    return KOfflineTable_Search(Items(db), 2, "1", nullptr, 0);
}

std::int32_t SearchOften(Db* db) {
    std::int32_t found = 0;
    for (int i = 0; i < 20; ++i) found += KOfflineTable_Search(Items(db), 2, "2", nullptr, 0);
    return found;
}

std::int32_t Escape(Db*) {
    char text[700];
    return KOfflineDb_StrSwap(kLong.c_str(), text, sizeof text, 1);
}

const DbOperation kDbOperations[] = {
    {"Load", 0, kFile, Load},
    {"Save", 0, kFile, [](Db* db) { return KOfflineDb_Save(db); }},
    {"SaveAs", 0, kFile, [](Db* db) { return KOfflineDb_SaveAs(db, copy_path.c_str()); }},
    {"WriteFile", 0, kFile, [](Db* db) { return KOfflineTable_WriteFile(Items(db), disk_path.c_str(), "\t"); }},
    {"GetPackageFile", 0, kNone,
     [](Db* db) { return KOfflineDb_GetPackageFile(db, "document.txt", disk_path.c_str()); }},
    {"SavePackageFile", 0, kNone, [](Db* db) { return KOfflineDb_SavePackageFile(db, disk_path.c_str(), "in.txt"); }},
    {"CheckPackageFileExist", 0, kNone, [](Db* db) { return KOfflineDb_CheckPackageFileExist(db, "document.txt"); }},
    {"InitUserData", 0, kNone, [](Db* db) { return std::int32_t{KOfflineDb_InitUserData(db, 16, 1) != nullptr}; }},
    {"StrSwap", 0, kNone, Escape},
    {"AddRec", -1, kMemory, [](Db* db) { return KOfflineTable_AddRec(Items(db), "\tX", "\t"); }},
    {"CopyRec", -1, kMemory, [](Db* db) { return KOfflineTable_CopyRec(Items(db), 3); }},
    {"SetFldValue", 0, kMemory, [](Db* db) { return KOfflineTable_SetFldValue(Items(db), 3, 2, kLong.c_str()); }},
    {"SetRecNID", 0, kMemory, [](Db* db) { return KOfflineTable_SetRecNID(Items(db), 3, 1234567890); }},
    {"AddFld", -1, kMemory, [](Db* db) { return KOfflineTable_AddFld(Items(db), "NEW"); }},
    {"LoadIdx", 0, kMemory, [](Db* db) { return KOfflineTable_LoadIdx(Items(db), "CSRC"); }},
    {"LoadIdxAgain", kNever, kMemory, [](Db* db) { return KOfflineTable_LoadIdx(Items(db), "CNAME"); }},
    {"DelRec", kNever, kMemory, [](Db* db) { return KOfflineTable_DelRec(Items(db), 3); }},
    {"ParseLines", 0, kMemory,
     [](Db* db) { return std::int32_t{KOfflineTable_ParseLines(Items(db), "2000\ta\n", "\t")}; }},
    {"SearchThatRefreshes", kNever, kMemory, Refresh},
    {"SearchOften", kNever, kMemory, SearchOften},
};

/// Everything that a database holds in memory. Searches make its indexes current first.
std::string Contents(Db* db) {
    std::string all = db->path;
    const auto add = [&](const std::int32_t* records, std::int32_t count) {
        for (std::int32_t i = 0; records && i < count; ++i) all += std::to_string(records[i]) + " ";
    };
    for (KOfflineTable& table : db->tables) {
        all += "\n" + FieldNames(&table);
        for (std::int32_t field = 0; field < table.field_count; ++field) {
            all += "\n" + ValuesOf(&table, table.fields[field].field_name) + ":";
            for (const char* key : {"3", "4", "c7", ""}) {
                std::int32_t found[1000];
                add(found, KOfflineTable_Search(&table, field, key, found, 1000));
            }
            add(KOfflineTable_GetIndexRecs(&table, field), table.record_count);
        }
    }
    std::int32_t size = 0;
    const void* data = KOfflineDb_GetUserData(db, &size);
    return data ? all.append(static_cast<const char*>(data), static_cast<std::size_t>(size)) : all;
}

class OperationOnADatabase : public DatabaseMeetsFaults,
                             public testing::WithParamInterface<std::tuple<Place, DbOperation>> {
protected:
    OperationOnADatabase() {
        files_["bitm.txt"] = ItemLines(kFull);
        files_["bbom.txt"] = ItemLines(kFull + 20);
        copy_path = At("copy");
        disk_path = At("disk file");
    }

    Place place() const { return std::get<Place>(GetParam()); }
    const DbOperation& operation() const { return std::get<DbOperation>(GetParam()); }

    void Begin(Db* db) {
        EXPECT_TRUE(DatabaseMeetsFaults::Begin(db, place()));
        EXPECT_EQ(KOfflineTable_LoadIdx(Items(db), "CNAME"), 1);
        data_path = path_;
        std::memset(KOfflineDb_InitUserData(db, 8, 0), 'u', 8);
    }

    Files AllFiles(Db* db) const {
        Files files = Stored(db, db->path);
        files["(disk)"] = Read("disk file");
        return files;
    }

    /// Without memory for it a file is one that cannot be opened; a package that cannot be opened has no code.
    bool IsDocumented(std::int32_t code, const FaultKind& kind, std::int32_t package) const {
        if (code == operation().code || operation().code != kFile) return code == operation().code;
        return (code == kMemory && kind.of_system()) || (code == kNone && place() == Place::package && !package);
    }

    /// False when the operation ended before the fault came.
    bool Try(const FaultKind& kind, int nth) {
        Database db;
        Begin(db);
        std::int32_t result;
        bool hit;
        {
            const Fault fault = kind.At(nth);
            result = operation().run(db);
            hit = fault.hit();
        }
        const bool done = result == expected_;
        EXPECT_TRUE(done || (hit && result == operation().failure)) << result;
        EXPECT_TRUE(done ? db->error_code == kNone : IsDocumented(db->error_code, kind, db->package))
            << db->error_code;
        const std::string now = Contents(db);
        if (done || operation().run != Load) {
            EXPECT_TRUE(now == (done ? after_ : before_));
        }
        if (!done || operation().code != kMemory) {
            EXPECT_EQ(operation().run(db), expected_);
        }
        EXPECT_TRUE(Contents(db) == after_);
        EXPECT_TRUE(AllFiles(db) == files_after_);
        if (place() == Place::package) ExpectSoundPackage();
        KOfflineDb_Reset(db);
        EXPECT_TRUE(HeldNow() == held_) << "something is still held";
        return hit;
    }

    std::int32_t expected_ = 0;
    std::string before_, after_;
    Files files_after_;
    HeldResources held_;
};

TEST_P(OperationOnADatabase, FailsAsDocumentedAndSucceedsAgain) {
    {
        Database db;
        Begin(db);
        before_ = Contents(db);
    }
    {
        Database db;  // searches would have made the indexes of the other one current
        Begin(db);
        expected_ = operation().run(db);
        after_ = Contents(db);
        files_after_ = AllFiles(db);
    }
    held_ = HeldNow();
    TryFaults(kFaultKinds, "faults injected into databases",
              [&](const FaultKind& kind, int nth) { return Try(kind, nth); });
}

INSTANTIATE_TEST_SUITE_P(, OperationOnADatabase,
                         testing::Combine(testing::Values(Place::directory, Place::package),
                                          testing::ValuesIn(kDbOperations)),
                         [](const auto& made) {
                             const bool packed = std::get<Place>(made.param) == Place::package;
                             return std::string(packed ? "package_" : "directory_") +
                                    std::get<DbOperation>(made.param).name;
                         });

TEST(StaleIndex, ThatCannotGrowIsPassedOverByAScan) {
    Table table({"NID"});
    for (int i = 0; i < kFull; ++i) table.Add(std::to_string(i));
    KOfflineTable_LoadIdx(table, "NID");
    table.Add("new");
    {
        Fault fault(kFaultMemory, 1);
        EXPECT_EQ(table.Find("NID", "new"), std::vector<std::int32_t>{kFull});
        EXPECT_TRUE(fault.hit());
    }
    EXPECT_EQ(table->indexes_stale, 1);
    EXPECT_EQ(table.Find("NID", "new"), std::vector<std::int32_t>{kFull});
    EXPECT_EQ(table->indexes_stale, 0);
}

TEST_F(DatabaseMeetsFaults, WhereADiskFileIsLongerThanThirtyOneBitsTell) {
    Database db;
    ASSERT_TRUE(Begin(db, Place::package));
    Write("long", "begin");
    std::filesystem::resize_file(At("long"), (std::uintmax_t{2} << 30) + 5);  // a hole, where the system has them
    LimitHostFiles(8 << 20);
    EXPECT_EQ(KOfflineDb_SavePackageFile(db, At("long").c_str(), "long"), 1);
    EXPECT_TRUE(HostLimitReached());
    LimitHostFiles(INT64_MAX);
    EXPECT_EQ(Stored(db, path_)["long"].substr(0, 6), std::string("begin\0", 6));
}

/// A save that is cut off leaves each file as it was, as it was to become, or as a beginning of that; one at most.
TEST_F(DatabaseMeetsFaults, InASaveThatIsCutOff) {
    Files before, after;
    const auto save = [&](const FaultKind& kind, int nth) {
        Database db;
        EXPECT_TRUE(Begin(db, Place::package));
        before = Stored(db, path_);
        for (KOfflineTable& table : db->tables)
            for (int i = 0; i < 200; ++i) KOfflineTable_AddRec(&table, "\tmore", "\t");
        const Fault fault = kind.At(nth);
        KOfflineDb_Save(db);
        if (!fault.hit()) after = Stored(db, path_);
        return fault.hit();
    };
    EXPECT_FALSE(save(kEnds[0], 10000));
    TryFaults(kEnds, "prefixes of a save opened", [&](const FaultKind& kind, int nth) {
        const bool hit = save(kind, nth);
        Database db;
        KOfflineDb_Load(db, path_.c_str());
        int between = 0;
        for (const auto& [name, contents] : Stored(db, path_)) {
            if (contents == before[name] || contents == after[name]) continue;
            EXPECT_EQ(after[name].compare(0, contents.size(), contents), 0) << name;
            ++between;
        }
        EXPECT_LE(between, 1);
        ExpectSoundPackage();
        return hit;
    });
}

// ---- Damage ------------------------------------------------------------------------------------------------------

struct FilePatch {
    const char* name;
    void (*apply)(std::string&);
};

void Change(std::string& text, char (*to)(char)) {
    std::transform(text.begin(), text.end(), text.begin(), to);
}

char Garbage(char) {
    static unsigned random = 1;
    return static_cast<char>((random = random * 1103515245 + 12345) >> 16);
}

const FilePatch kFilePatches[] = {
    {"empty", [](std::string& text) { text.clear(); }},
    {"cut in half", [](std::string& text) { text.resize(text.size() / 2); }},
    {"zero byte inside", [](std::string& text) { text[text.size() / 3] = 0; }},
    {"zero bytes", [](std::string& text) { text.assign(text.size(), '\0'); }},
    {"a line of a megabyte", [](std::string& text) { text.insert(text.size() / 2, 1 << 20, 'x'); }},
    {"a megabyte of separators", [](std::string& text) { text.insert(text.size() / 2, 1 << 20, '\t'); }},
    {"a megabyte of commas", [](std::string& text) { text.insert(text.size() / 2, 1 << 20, ','); }},
    {"many short lines", [](std::string& text) { text += Lines(std::vector<std::string>(5000, "1")); }},
    {"no line ends", [](std::string& text) { std::erase(text, '\n'), std::erase(text, '\r'); }},
    {"escapes of nothing", [](std::string& text) { std::replace(text.begin(), text.end(), '\t', '\\'); }},
    {"bytes above 0x7F", [](std::string& text) { Change(text, [](char c) { return static_cast<char>(c | 0x80); }); }},
    {"numbers too large",
     [](std::string& text) { Change(text, [](char c) { return c >= '0' && c <= '9' ? '9' : c; }); }},
    {"garbage", [](std::string& text) { Change(text, Garbage); }},
};

TEST_F(DatabaseMeetsFaults, InFilesThatAreDamaged) {
    const Files good = SmallDatabase();
    for (const auto& [name, contents] : good) {
        files_ = good;
        files_.erase(name);
        Examine();
        for (const FilePatch& patch : kFilePatches) {
            SCOPED_TRACE(testing::Message() << name << ": " << patch.name);
            files_[name] = contents;
            patch.apply(files_[name]);
            Examine();
        }
    }
}

}  // namespace

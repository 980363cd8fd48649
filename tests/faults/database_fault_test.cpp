// SPDX-License-Identifier: MIT
// The database under the same faults as the store: files in and out while the n-th host call or allocation fails,
// lookups without memory, a save that is cut off after n writes, damage to the seven files. Loads, saves and tables
// that fail have files of their own.
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "tests/support/database.h"
#include "tests/support/host_faults.h"

namespace {

int faults_injected = 0, prefixes_opened = 0, patches_tried = 0;

/// A database with enough records for every way of sorting and searching, and a document beside it.
Files LargeDatabase() {
    Files files = SmallDatabase();
    for (int i = 5; i < 150; ++i)
        files["bitm.txt"] += Lines({std::to_string(i) + "\tC" + std::to_string(i / 2) + "\tPart\tmade"});
    files["document.txt"] = std::string(10000, 'd');
    return files;
}

/// Everything that a database holds, as text.
std::string Snapshot(KOfflineDb* db) {
    std::string all = std::string(db->path) + ";" + std::to_string(db->root_nid) + ";" + db->separator;
    for (KOfflineTable& table : db->tables) {
        all += "\n" + FieldNames(&table);
        for (std::int32_t rec = 0; rec < KOfflineTable_GetRecsCount(&table); ++rec)
            for (std::int32_t field = 0; field < KOfflineTable_GetFldsCount(&table); ++field)
                if (const char* value = KOfflineTable_GetFldValue(&table, rec, field))
                    all += std::string("|") + value;
    }
    return all;
}

KOfflineTable* Items(KOfflineDb* db) {
    return KOfflineDb_GetTable_BITM(db);
}

/// What lookups and searches give; it does not depend on the memory there is.
std::vector<std::int32_t> Lookups(KOfflineDb* db) {
    std::vector<std::int32_t> results;
    std::int32_t recs[200];
    for (const char* code : {"C20", "bike", "none"}) {
        const std::int32_t count = KOfflineTable_Search(Items(db), KOfflineDb_GetFld_BITM_CCODE(db), code, recs, 200);
        std::sort(recs, recs + std::max(count, 0));
        results.push_back(std::max(count, 0));
        results.insert(results.end(), recs, recs + std::max(count, 0));
        results.push_back(KOfflineDb_GetNIDByCCODE(db, code));
    }
    for (std::int32_t nid = 0; nid < 150; nid += 3) results.push_back(KOfflineDb_GetRecByNID_BITM(db, nid));
    char code[64];
    results.push_back(KOfflineDb_GetCCODEByNID(db, 70, code));
    results.push_back(KOfflineDb_GetRootNodes(db, recs, 200));
    results.push_back(KOfflineDb_GetNoParentNodes(db, recs, 200));
    return results;
}

/// An operation on files of a database; it changes nothing that the database holds.
struct DbOperation {
    const char* name;
    bool (*act)(KOfflineDb*);
    bool of_package = true;  // it fails for a database in a directory
};

std::string out_path;  // of files that operations write

const DbOperation kOperations[] = {
    {"write_table", [](KOfflineDb* db) { return KOfflineTable_WriteFile(Items(db), out_path.c_str(), "\t") == 1; },
     false},
    {"take_file_out",
     [](KOfflineDb* db) { return KOfflineDb_GetPackageFile(db, "document.txt", out_path.c_str()) == 1; }},
    {"put_file_in", [](KOfflineDb* db) { return KOfflineDb_SavePackageFile(db, out_path.c_str(), "in.txt") == 1; }},
    {"find_file", [](KOfflineDb* db) { return KOfflineDb_CheckPackageFileExist(db, "document.txt") == 1; }},
};

struct DbFault {
    const char* name;
    unsigned calls;
    FaultManner manner;
    bool from_then_on;
};

constexpr DbFault kFaults[] = {
    {"memory runs out once", kFaultSystem, FaultManner::cleanly, false},
    {"memory runs out", kFaultSystem, FaultManner::cleanly, true},
    {"a host call fails", kFaultHost, FaultManner::cleanly, false},
    {"host calls fail", kFaultHost, FaultManner::cleanly, true},
    {"host calls are cut short", kFaultHost, FaultManner::cut_short, true},
};

class DatabaseMeetsFaults : public DatabaseTest, public testing::WithParamInterface<Place> {
protected:
    void SetUp() override {
        path_ = Put(LargeDatabase(), GetParam());
        out_path = At("out.txt");
        Write("out.txt", "disk file");
        if (GetParam() == Place::package) package_ = ReadHostFile(path_);
    }
    ~DatabaseMeetsFaults() override {
        vlt_package_close_all();
        EXPECT_TRUE(HeldNow() == HeldResources()) << "something is still held";
    }
    static void TearDownTestSuite() {
        std::printf("%d faults injected, %d prefixes opened, %d patches tried\n", faults_injected, prefixes_opened,
                    patches_tried);
    }

    /// The database as it was at first, where an operation may have changed it.
    void PutBack() {
        if (GetParam() == Place::package) WriteHostFile(path_, package_);
        if (GetParam() == Place::directory) Put(LargeDatabase());
    }

    void ExpectSoundPackage() {
        vlt_package_close_all();
        if (GetParam() == Place::package) {
            const Leniency lenient = {
                .longer_chains = true, .leaked_blocks = true, .short_header = true, .unfinished_ends = true};
            const PackageImage image(ReadHostFile(path_));
            EXPECT_EQ(Faults(image, lenient), "");
            EXPECT_EQ(image.FileBytes("document.txt"), Bytes(10000, 'd'));
        }
    }

    /// An operation with one fault. False when it ended before the fault came.
    bool Try(const DbOperation& operation, const DbFault& fault, int nth) {
        SCOPED_TRACE(testing::Message() << operation.name << ", " << fault.name << ", call " << nth);
        PutBack();
        bool hit;
        {
            Database db;
            EXPECT_EQ(KOfflineDb_Load(db, path_.c_str()), 1);
            const std::string before = Snapshot(db);
            bool done;
            {
                Fault armed(fault.calls, nth, fault.manner, fault.from_then_on);
                done = operation.act(db);
                hit = armed.hit();
            }
            if (!done) {
                EXPECT_TRUE(hit) << "it fails without a fault";
                EXPECT_TRUE(operation.act(db)) << "it fails again";
            }
            EXPECT_TRUE(Snapshot(db) == before) << "the database has changed";
            EXPECT_EQ(KOfflineDb_Save(db), 1);
            Database again;
            KOfflineDb_Destructor(db);
            KOfflineDb_Constructor(db);
            EXPECT_EQ(KOfflineDb_Load(again, path_.c_str()), 1);
            EXPECT_TRUE(Snapshot(again) == before);
        }
        ExpectSoundPackage();
        faults_injected += hit;
        return hit;
    }

    std::string path_;
    Bytes package_;
};

TEST_P(DatabaseMeetsFaults, AndFailsAsDocumentedAndSucceedsAgain) {
    for (const DbOperation& operation : kOperations) {
        if (operation.of_package && GetParam() == Place::directory) continue;
        for (const DbFault& fault : kFaults)
            for (int nth = 1; !HasFailure() && Try(operation, fault, nth); ++nth) {
            }
    }
}

/// Lookups have no failure of their own: without memory they are slower and find the same.
TEST_P(DatabaseMeetsFaults, AndFindsTheSameWithoutMemory) {
    const auto prepare = [&](KOfflineDb* db) {
        EXPECT_EQ(KOfflineDb_Load(db, path_.c_str()), 1);
        for (int i = 0; i < 20; ++i) KOfflineTable_AddRec(Items(db), "\tNEW\tName\tmade", "\t");
    };
    Database plain;
    prepare(plain);
    const std::vector<std::int32_t> expected = Lookups(plain);
    for (const bool from_then_on : {false, true}) {
        for (int nth = 1, hit = 1; hit; ++nth) {
            Database db;
            prepare(db);
            Fault armed(kFaultMemory, nth, FaultManner::cleanly, from_then_on);
            EXPECT_EQ(Lookups(db), expected) << "allocation " << nth;
            hit = armed.hit();
            faults_injected += hit;
        }
    }
}

/// A save that is cut off leaves each file as it was, as it was to become, or as a beginning of that; one at most.
TEST_P(DatabaseMeetsFaults, AndASaveCutOffSparesTheOtherFiles) {
    if (GetParam() == Place::directory) return;
    Files old_files, new_files;
    std::vector<HostChange> changes;
    {
        Database db;
        ASSERT_EQ(KOfflineDb_Load(db, path_.c_str()), 1);
        old_files = Stored(db, path_);
        package_ = ReadHostFile(path_);
        for (KOfflineTable& table : db->tables) KOfflineTable_AddRec(&table, "\tmore", "\t");
        HostRecording recording;
        ASSERT_EQ(KOfflineDb_Save(db), 1);
        changes = recording.changes();
        new_files = Stored(db, path_);
    }
    Bytes host = package_;
    for (std::size_t at = 0; at < changes.size() && !HasFailure(); ++at) {
        for (const bool torn : {true, false}) {
            SCOPED_TRACE(testing::Message() << "after " << at << " writes of " << changes.size());
            Bytes left = host;
            ApplyChange(left, changes[at], torn);
            WriteHostFile(path_, left);
            Database db;
            KOfflineDb_Load(db, path_.c_str());
            int between = 0;
            for (const auto& [name, contents] : Stored(db, path_)) {
                if (contents == old_files[name] || contents == new_files[name]) continue;
                EXPECT_EQ(new_files[name].compare(0, contents.size(), contents), 0) << name;
                ++between;
            }
            EXPECT_LE(between, 1);
            KOfflineDb_Destructor(db);
            KOfflineDb_Constructor(db);
            ExpectSoundPackage();
            ++prefixes_opened;
        }
        ApplyChange(host, changes[at], false);
    }
}

// ---- Damage ------------------------------------------------------------------------------------------------------

struct FilePatch {
    const char* name;
    void (*apply)(std::string&);
};

const FilePatch kFilePatches[] = {
    {"empty", [](std::string& text) { text.clear(); }},
    {"cut in half", [](std::string& text) { text.resize(text.size() / 2); }},
    {"zero byte inside", [](std::string& text) { text[text.size() / 3] = 0; }},
    {"zero bytes", [](std::string& text) { std::fill(text.begin(), text.end(), '\0'); }},
    {"a line of a megabyte", [](std::string& text) { text.insert(text.size() / 2, 1 << 20, 'x'); }},
    {"a megabyte of separators", [](std::string& text) { text.insert(text.size() / 2, 1 << 20, '\t'); }},
    {"a megabyte of commas", [](std::string& text) { text.insert(text.size() / 2, 1 << 20, ','); }},
    {"many short lines",
     [](std::string& text) {
         for (int i = 0; i < 5000; ++i) text += "1\n";
     }},
    {"no line ends", [](std::string& text) { std::erase(text, '\n'), std::erase(text, '\r'); }},
    {"escapes of nothing", [](std::string& text) { std::replace(text.begin(), text.end(), '\t', '\\'); }},
    {"bytes above 0x7F",
     [](std::string& text) {
         for (char& c : text) c = static_cast<char>(c | 0x80);
     }},
    {"numbers too large",
     [](std::string& text) {
         for (char& c : text) c = c >= '0' && c <= '9' ? '9' : c;
     }},
    {"garbage",
     [](std::string& text) {
         unsigned random = 1;
         for (char& c : text) c = static_cast<char>((random = random * 1103515245 + 12345) >> 16);
     }},
};

TEST_P(DatabaseMeetsFaults, AndDamagedFilesAreSafe) {
    const auto examine = [&](const Files& files) {
        PutBack();
        if (GetParam() == Place::package) std::filesystem::remove(path_);
        if (GetParam() == Place::directory) std::filesystem::remove_all(path_);
        Put(files, GetParam());
        Database db;
        const std::int32_t loaded = KOfflineDb_Load(db, path_.c_str());
        EXPECT_TRUE(loaded || db->error_code != KOFFLINE_ERR_NONE);
        Lookups(db);
        KOfflineTable_AddRec(Items(db), "5\tX", "\t");
        KOfflineTable_CopyRec(Items(db), 0);
        KOfflineTable_DelRec(Items(db), 0);
        if (loaded) {
            EXPECT_EQ(KOfflineDb_Save(db), 1);
            const std::string saved = Snapshot(db);
            KOfflineDb_Reset(db);
            KOfflineDb_Load(db, path_.c_str());
        }
        Lookups(db);
        ++patches_tried;
    };
    const Files good = SmallDatabase();
    for (const auto& file : good) {
        for (const FilePatch& patch : kFilePatches) {
            SCOPED_TRACE(testing::Message() << file.first << ": " << patch.name);
            Files bad = good;
            patch.apply(bad[file.first]);
            examine(bad);
        }
        Files bad = good;
        bad.erase(file.first);
        examine(bad);
    }
}

INSTANTIATE_TEST_SUITE_P(, DatabaseMeetsFaults, testing::Values(Place::directory, Place::package),
                         [](const auto& made) {
                             return made.param == Place::package ? "in_a_package" : "in_a_directory";
                         });

}  // namespace

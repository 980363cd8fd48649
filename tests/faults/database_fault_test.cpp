// SPDX-License-Identifier: MIT
// Databases under faults: files in and out of a package while the n-th host call or allocation fails, a save that is
// cut off after n writes, damage to the seven files. Loads, saves and tables that fail have files of their own.
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "tests/support/database.h"
#include "tests/support/host_faults.h"

namespace {

int faults_injected = 0, prefixes_opened = 0, patches_tried = 0;

constexpr Leniency kCutOff = {
    .longer_chains = true, .leaked_blocks = true, .short_header = true, .unfinished_ends = true};

/// A database in a package, beside a document.
class DatabaseMeetsFaults : public DatabaseTest {
protected:
    DatabaseMeetsFaults() {
        Files files = SmallDatabase();
        files["document.txt"] = std::string(10000, 'd');
        path_ = Put(files, Place::package);
        package_ = ReadHostFile(path_);
    }
    ~DatabaseMeetsFaults() override {
        vlt_package_close_all();
        EXPECT_TRUE(HeldNow() == HeldResources()) << "something is still held";
    }
    static void TearDownTestSuite() {
        std::printf("%d faults injected, %d prefixes opened, %d patches tried\n", faults_injected, prefixes_opened,
                    patches_tried);
    }

    void ExpectSoundPackage() const {
        const PackageImage image(ReadHostFile(path_));
        EXPECT_EQ(Faults(image, kCutOff), "");
        EXPECT_EQ(image.FileBytes("document.txt"), Bytes(10000, 'd'));
    }

    std::string path_;
    Bytes package_;
};

std::string disk_file;

/// Operations on files of a database that was loaded; false for failure.
bool (*const kTransfers[])(KOfflineDb*) = {
    [](KOfflineDb* db) {
        return KOfflineTable_WriteFile(KOfflineDb_GetTable_BITM(db), disk_file.c_str(), "\t") == 1;
    },
    [](KOfflineDb* db) { return KOfflineDb_GetPackageFile(db, "document.txt", disk_file.c_str()) == 1; },
    [](KOfflineDb* db) { return KOfflineDb_SavePackageFile(db, disk_file.c_str(), "in.txt") == 1; },
    [](KOfflineDb* db) { return KOfflineDb_CheckPackageFileExist(db, "document.txt") == 1; },
};

TEST_F(DatabaseMeetsFaults, WhileFilesGoInAndOut) {
    disk_file = At("disk file");
    for (const unsigned calls : {kFaultSystem, kFaultHost})
        for (const bool from_then_on : {false, true})
            for (std::size_t transfer = 0; transfer < std::size(kTransfers); ++transfer)
                for (int nth = 1, hit = 1; hit && !HasFailure(); ++nth) {
                    SCOPED_TRACE(testing::Message() << "transfer " << transfer << ", call " << nth);
                    WriteHostFile(path_, package_);
                    Write("disk file", "contents");
                    Database db;
                    EXPECT_EQ(KOfflineDb_Load(db, path_.c_str()), 1);
                    bool done;
                    {
                        Fault fault(calls, nth, FaultManner::cut_short, from_then_on);
                        done = kTransfers[transfer](db);
                        hit = fault.hit();
                    }
                    EXPECT_TRUE(done || (hit && kTransfers[transfer](db))) << "it fails again";
                    ExpectSoundPackage();
                    faults_injected += hit;
                }
}

/// A save that is cut off leaves each file as it was, as it was to become, or as a beginning of that; one at most.
TEST_F(DatabaseMeetsFaults, InASaveThatIsCutOff) {
    Files old_files, new_files;
    std::vector<HostChange> changes;
    {
        Database db;
        ASSERT_EQ(KOfflineDb_Load(db, path_.c_str()), 1);
        old_files = Stored(db, path_);
        package_ = ReadHostFile(path_);
        for (KOfflineTable& table : db->tables)
            for (int i = 0; i < 200; ++i) KOfflineTable_AddRec(&table, "\tmore", "\t");
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

TEST_F(DatabaseMeetsFaults, InFilesThatAreDamaged) {
    const auto examine = [&](const Files& files) {
        std::filesystem::remove(path_);
        Put(files, Place::package);
        Database db;
        KOfflineTable* items = KOfflineDb_GetTable_BITM(db);
        for (int round = 0; round < 2; ++round) {
            const bool loaded = KOfflineDb_Load(db, path_.c_str()) == 1;
            EXPECT_TRUE(loaded || db->error_code != KOFFLINE_ERR_NONE);
            KOfflineDb_GetNIDByCCODE(db, "BIKE");
            KOfflineDb_GetRecByNID_BBOM(db, 1);
            KOfflineDb_GetRootNodes(db, nullptr, 0);
            KOfflineTable_AddRec(items, "5\tX", "\t");
            KOfflineTable_CopyRec(items, 0);
            KOfflineTable_DelRec(items, 0);
            if (loaded) {
                EXPECT_EQ(KOfflineDb_Save(db), 1);
            }
            KOfflineDb_Reset(db);
        }
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

}  // namespace

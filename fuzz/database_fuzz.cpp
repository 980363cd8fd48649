// SPDX-License-Identifier: MIT
// A whole database, in a directory or in a package that may be damaged: load, every accessor, changes, save, load.
#include <cstring>
#include <vector>

#include "fuzz/support.h"
#include "include/offline.h"

namespace {

const char* const kFiles[] = {"kdbmain.txt", "bitm.txt",  "bbom.txt",   "bdwg.txt",
                              "bitdwg.txt",  "bcapp.txt", "bitcap.txt", "doc.svg"};

class Database {
public:
    Database() { KOfflineDb_Constructor(&db); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database() { KOfflineDb_Destructor(&db); }

    KOfflineDb db;
};

void Store(std::int32_t package, const char* name, const std::string& contents) {
    const auto file = static_cast<std::uint32_t>(vlt_file_open(package, name, VLT_MODE_WRITE, 0, 1, nullptr));
    Require(vlt_file_write(file, contents.data(), static_cast<std::int32_t>(contents.size())) == 1);
}

/// Puts the files, which stand one after the other in the input, where they can be loaded from; gives the path.
const char* Put(Input& input, bool in_package) {
    std::vector<std::string> contents;
    for (std::size_t i = 0; i < std::size(kFiles); ++i) contents.push_back(input.Text('\x1e'));
    if (!in_package) {
        for (std::size_t i = 0; i < std::size(kFiles); ++i)
            if (i == 0 || !contents[i].empty())
                HostFile(std::string("dir/") + kFiles[i]).assign(contents[i].begin(), contents[i].end());
        return "dir";
    }
    Require(vlt_package_create("db.vlt", 0, 0, nullptr, nullptr) == 1);
    const std::int32_t package = vlt_package_open("db.vlt", 0, 0, nullptr, nullptr, nullptr, nullptr);
    for (std::size_t i = 0; i < std::size(kFiles); ++i)
        if (i == 0 || !contents[i].empty()) Store(package, kFiles[i], contents[i]);
    vlt_package_close(package);
    return "db.vlt";
}

/// Changes bytes of the package: in its header, its directory or anywhere.
void Damage(Input& input) {
    Bytes& host = HostFile("db.vlt");
    while (!input.empty()) {
        const std::size_t at = input.Number(2) % host.size();
        host[at] = input.Byte();
    }
}

void LookUp(KOfflineDb* db, std::int32_t rec) {
    static char code[1 << 16];
    const std::int32_t nid = KOfflineDb_GetNIDByRec_BITM(db, rec);
    Require(KOfflineDb_GetRecByNID_BITM(db, nid) < KOfflineTable_GetRecsCount(KOfflineDb_GetTable_BITM(db)));
    KOfflineDb_GetRecByNID_BBOM(db, KOfflineDb_GetNIDByRec_BBOM(db, rec));
    KOfflineDb_GetRecByNID_BDWG(db, KOfflineDb_GetNIDByRec_BDWG(db, rec));
    KOfflineDb_GetRecByNID_BITDWG(db, KOfflineDb_GetNIDByRec_BITDWG(db, rec));
    KOfflineDb_GetRecByNID_BCAPP(db, KOfflineDb_GetNIDByRec_BCAPP(db, rec));
    KOfflineDb_GetRecByNID_BITCAP(db, KOfflineDb_GetNIDByRec_BITCAP(db, rec));
    KOfflineDb_GetCCODEByRec_BDWG(db, rec, code);
    KOfflineDb_GetCCODEByNID_BDWG(db, rec, code);
    KOfflineDb_GetCCODEByRec_BCAPP(db, rec, code);
    KOfflineDb_GetCCODEByNID_BCAPP(db, rec, code);
    KOfflineDb_GetCCODEByNID(db, nid, code);
    if (KOfflineDb_GetCCODEByRec(db, rec, code) && code[0]) KOfflineDb_GetNIDByCCODE(db, code);
}

/// More calls than there are records, so that numbers out of range are among them.
void UseAll(KOfflineDb* db) {
    const std::int32_t records = KOfflineTable_GetRecsCount(KOfflineDb_GetTable_BITM(db));
    for (std::int32_t rec = -1; rec <= records && rec < 40; ++rec) LookUp(db, rec);
    std::vector<std::int32_t> nodes(static_cast<std::size_t>(records) + 1);
    Require(KOfflineDb_GetNoParentNodes(db, nodes.data(), records) <= records);
    Require(KOfflineDb_GetRootNodes(db, nodes.data(), records) <= records);
    char path[260];
    KOfflineDb_GetPath(db, path);
    const bool stored = KOfflineDb_CheckPackageFileExist(db, "x\\doc.svg") == 1;
    Require(KOfflineDb_GetPackageFile(db, "doc.svg", "out.svg") == 0 || stored);
    if (KOfflineDb_SavePackageFile(db, "other.svg", "new.svg"))
        Require(KOfflineDb_CheckPackageFileExist(db, "new.svg") == 1);
}

void Change(KOfflineDb* db) {
    KOfflineTable* items = KOfflineDb_GetTable_BITM(db);
    KOfflineTable_AddRec(items, "", db->separator);
    KOfflineTable_SetFldValue(items, 0, KOfflineDb_GetFld_BITM_CCODE(db), "NEW, / CODE");
    KOfflineTable_CopyRec(items, 0);
    KOfflineTable_DelRec(KOfflineDb_GetTable_BBOM(db), 0);
    KOfflineDb_SetRootNode(db, 0);
    UseAll(db);
}

std::vector<std::string> Contents(const std::string& folder) {
    std::vector<std::string> contents;
    for (const char* name : kFiles) {
        const std::string path = folder + "/" + name;
        contents.push_back(HostFileExists(path) ? std::string(HostFile(path).begin(), HostFile(path).end()) : "");
    }
    return contents;
}

/// What is saved, loaded and saved again stays the same, once saving has brought it into its own form.
void CheckSaved(KOfflineDb* db) {
    if (!KOfflineDb_Save(db)) return Require(db->error_code != KOFFLINE_ERR_NONE);
    if (db->package != 0 || (std::strcmp(db->separator, "\t") != 0 && std::strcmp(db->separator, ",") != 0)) return;
    std::vector<std::string> former;
    for (const char* folder : {"dir/", "one", "two"}) {
        Database again;
        if (!KOfflineDb_Load(&again.db, former.empty() ? "dir" : "one")) return;
        Require(KOfflineDb_SaveAs(&again.db, folder) == 1);
        if (folder[0] == 't') Require(Contents("two") == Contents("one"));
        if (folder[0] == 'o') former = Contents("one");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ResetHost();
    Input input(data, size);
    const std::uint8_t kind = input.Byte();
    UseDoubleBytes(kind & 2);
    HostFile("other.svg").assign(100, '<');
    const char* path = Put(input, kind & 1);
    if (kind & 1) Damage(input);
    {
        Database database;
        if (KOfflineDb_Load(&database.db, path)) {
            Require(database.db.error_code == KOFFLINE_ERR_NONE);
            UseAll(&database.db);
            Change(&database.db);
            if (!(kind & 2)) CheckSaved(&database.db);
        } else {
            KOfflineDb_Save(&database.db);
        }
    }
    vlt_package_close_all();
    return 0;
}

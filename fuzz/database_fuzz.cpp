// SPDX-License-Identifier: MIT
// A whole database, in a directory or in a package that may be damaged: load, every accessor, changes, save, load.
#include <algorithm>
#include <cstring>
#include <vector>

#include "fuzz/support.h"
#include "tests/support/database_files.h"

namespace {

/// The files stand one after the other in the input; of the data files only those that hold something are made.
Files TakeFiles(Input& input) {
    Files files;
    for (const char* name :
         {"kdbmain.txt", "bitm.txt", "bbom.txt", "bdwg.txt", "bitdwg.txt", "bcapp.txt", "bitcap.txt", "doc.svg"}) {
        const std::string contents = input.Text('\x1e');
        if (files.empty() || !contents.empty()) files[name] = contents;
    }
    return files;
}

/// Changes bytes of the package: in its header, its directory or anywhere.
void Damage(Input& input, const std::string& path) {
    std::string host = ReadText(path);
    while (!input.empty()) {
        const std::size_t at = input.Number(2) % host.size();
        host[at] = static_cast<char>(input.Byte());
    }
    WriteText(path, host);
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
    for (const auto get : {KOfflineDb_GetCCODEByRec_BDWG, KOfflineDb_GetCCODEByNID_BDWG,
                           KOfflineDb_GetCCODEByRec_BCAPP, KOfflineDb_GetCCODEByNID_BCAPP, KOfflineDb_GetCCODEByNID})
        get(db, rec, code);
    if (KOfflineDb_GetCCODEByRec(db, rec, code) && code[0]) KOfflineDb_GetNIDByCCODE(db, code);
}

/// More calls than there are records, so that numbers out of range are among them.
void UseAll(KOfflineDb* db) {
    const std::int32_t records = KOfflineTable_GetRecsCount(KOfflineDb_GetTable_BITM(db));
    for (std::int32_t rec = -1; rec <= records && rec < 40; ++rec) LookUp(db, rec);
    std::vector<std::int32_t> nodes(static_cast<std::size_t>(records) + 1);
    Require(KOfflineDb_GetNoParentNodes(db, nodes.data(), records) <= records);
    Require(KOfflineDb_GetRootNodes(db, nodes.data(), records) <= records);
    const bool stored = KOfflineDb_CheckPackageFileExist(db, "x\\doc.svg") == 1;
    Require(KOfflineDb_GetPackageFile(db, "doc.svg", Scratch("out.svg").c_str()) == 0 || stored);
    const bool kept = KOfflineDb_SavePackageFile(db, Scratch("other.svg").c_str(), "new.svg") == 1;
    Require(!kept || KOfflineDb_CheckPackageFileExist(db, "new.svg") == 1);
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

/// What is saved, loaded and saved again stays the same, once saving has brought it into its own form. Only the root,
/// which the schema ends with, may be another item each time, where items share numbers and codes.
void CheckSaved(KOfflineDb* db) {
    if (!KOfflineDb_Save(db)) return Require(db->error_code != KOFFLINE_ERR_NONE);
    if (db->package != 0 || (std::strcmp(db->separator, "\t") != 0 && std::strcmp(db->separator, ",") != 0)) return;
    Files saved[3];
    for (Files& files : saved) {
        Database again;
        if (!KOfflineDb_Load(again, db->path)) return;
        Require(KOfflineDb_Save(again) == 1);
        files = StoredFiles(again, again->path);
        std::string& schema = files["kdbmain.txt"];
        schema.resize(std::min(schema.rfind("1.1, root, "), schema.size()));
    }
    Require(saved[1] == saved[2]);
}

void Use(KOfflineDb* db, const std::string& path, bool double_bytes) {
    if (!KOfflineDb_Load(db, path.c_str())) return static_cast<void>(KOfflineDb_Save(db));
    Require(db->error_code == KOFFLINE_ERR_NONE);
    UseAll(db);
    Change(db);
    if (!double_bytes) CheckSaved(db);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::uint8_t kind = input.Byte();
    UseDoubleBytes(kind & 2);
    WriteText(Scratch("other.svg"), std::string(100, '<'));
    const std::string path = Scratch(kind & 1 ? "db.vlt" : "dir");
    Require(PutFiles(path, TakeFiles(input), kind & 1 ? Place::package : Place::directory));
    if (kind & 1) Damage(input, path);
    Use(Database(), path, kind & 2);
    Require(vlt_package_close(1) == 0);  // the database has closed its package
    vlt_package_close_all();
    ResetHost();
    return 0;
}

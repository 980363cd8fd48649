// SPDX-License-Identifier: MIT
// A small language for tests of databases: the files of one as a map, put into a directory or a package.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/database_files.h"

/// What gives the number of each well-known field, in their order.
inline std::int32_t (*const kFieldNumbers[])(KOfflineDb*) = {
    KOfflineDb_GetFld_BITM_NID,   KOfflineDb_GetFld_BITM_CCODE,      KOfflineDb_GetFld_BITM_CNAME,
    KOfflineDb_GetFld_BITM_CSRC,  KOfflineDb_GetFld_BBOM_NID,        KOfflineDb_GetFld_BBOM_NPID,
    KOfflineDb_GetFld_BBOM_NCID,  KOfflineDb_GetFld_BBOM_FCOUNT,     KOfflineDb_GetFld_BDWG_NID,
    KOfflineDb_GetFld_BDWG_CCODE, KOfflineDb_GetFld_BDWG_CFILE,      KOfflineDb_GetFld_BDWG_CSRC,
    KOfflineDb_GetFld_BDWG_CASM,  KOfflineDb_GetFld_BDWG_COFLNMODI,  KOfflineDb_GetFld_BDWG_NOFLNITMID,
    KOfflineDb_GetFld_BITDWG_NID, KOfflineDb_GetFld_BITDWG_NPID,     KOfflineDb_GetFld_BITDWG_NCID,
    KOfflineDb_GetFld_BCAPP_NID,  KOfflineDb_GetFld_BCAPP_CCODE,     KOfflineDb_GetFld_BCAPP_CFILE,
    KOfflineDb_GetFld_BCAPP_CSRC, KOfflineDb_GetFld_BCAPP_COFLNMODI, KOfflineDb_GetFld_BCAPP_NOFLNITMID,
    KOfflineDb_GetFld_BITCAP_NID, KOfflineDb_GetFld_BITCAP_NPID,     KOfflineDb_GetFld_BITCAP_NCID};

/// What finds a table, and its records by NID and NIDs by record, in their order.
inline const struct {
    KOfflineTable* (*table)(KOfflineDb*);
    std::int32_t (*record)(KOfflineDb*, std::int32_t);
    std::int32_t (*nid)(KOfflineDb*, std::int32_t);
} kTables[] = {{KOfflineDb_GetTable_BITM, KOfflineDb_GetRecByNID_BITM, KOfflineDb_GetNIDByRec_BITM},
               {KOfflineDb_GetTable_BBOM, KOfflineDb_GetRecByNID_BBOM, KOfflineDb_GetNIDByRec_BBOM},
               {KOfflineDb_GetTable_BDWG, KOfflineDb_GetRecByNID_BDWG, KOfflineDb_GetNIDByRec_BDWG},
               {KOfflineDb_GetTable_BITDWG, KOfflineDb_GetRecByNID_BITDWG, KOfflineDb_GetNIDByRec_BITDWG},
               {KOfflineDb_GetTable_BCAPP, KOfflineDb_GetRecByNID_BCAPP, KOfflineDb_GetNIDByRec_BCAPP},
               {KOfflineDb_GetTable_BITCAP, KOfflineDb_GetRecByNID_BITCAP, KOfflineDb_GetNIDByRec_BITCAP}};

/// What copies the code of a record, or of the record with a NID.
inline std::int32_t (*const kCodes[])(KOfflineDb*, std::int32_t, char*) = {
    KOfflineDb_GetCCODEByRec, KOfflineDb_GetCCODEByRec_BDWG, KOfflineDb_GetCCODEByRec_BCAPP,
    KOfflineDb_GetCCODEByNID, KOfflineDb_GetCCODEByNID_BDWG, KOfflineDb_GetCCODEByNID_BCAPP};

/// The lines, each ended by CR LF.
std::string Lines(const std::vector<std::string>& lines);

/// The files with a text replaced in the file `name`, or all of that file for an empty text.
Files Changed(Files files, const std::string& name, const std::string& from, const std::string& to);

/// A schema with every well-known field, separator TAB and no root; data files with a few records.
Files SmallDatabase();

/// A schema that declares what it must, and two empty data files.
Files MinimalDatabase();

/// A test with a directory of its own, which is empty at its start and gone after it.
class DatabaseTest : public testing::Test {
protected:
    DatabaseTest();
    ~DatabaseTest() override;

    /// The path of a file in the test's directory.
    std::string At(const std::string& name) const { return folder_ + "/" + name; }

    void Write(const std::string& name, const std::string& contents) const;
    std::string Read(const std::string& name) const;
    bool Exists(const std::string& name) const;
    void Remove(const std::string& name) const;  // a directory with all in it
    void MakeDirectory(const std::string& name) const;

    /// Puts the files where they can be loaded from, and returns the path of that.
    std::string Put(const Files& files, Place place = Place::directory) const;

    /// Reads them back, from the directory `path` or out of the package that `db` has open.
    static Files Stored(KOfflineDb* db, const std::string& path) { return StoredFiles(db, path); }

private:
    std::string folder_;
};

/// The names of a table's fields, joined by blanks.
std::string FieldNames(KOfflineTable* table);

/// The values of a field in record order, joined by blanks; "-" for none.
std::string ValuesOf(KOfflineTable* table, const char* field);

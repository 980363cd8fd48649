// SPDX-License-Identifier: MIT
// A small language for tests of databases: the files of one as a map, put into a directory or a package.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/database_files.h"

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
    void Remove(const std::string& name) const;  ///< a directory with all in it
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

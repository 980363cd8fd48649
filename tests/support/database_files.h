// SPDX-License-Identifier: MIT
// The files of a database as a map, put into a directory or a package and read back. Test suites and fuzz targets
// share them.
#pragma once

#include <map>
#include <string>

#include "include/offline.h"

/// File name to contents.
using Files = std::map<std::string, std::string>;

enum class Place { directory, package };

std::string ReadText(const std::string& path);
void WriteText(const std::string& path, const std::string& contents);

/// Makes a directory or a package at `path` and puts the files into it; false when a package does not take them.
bool PutFiles(const std::string& path, const Files& files, Place place);

/// Reads them back, from the directory `path` or out of the package that `db` has open.
Files StoredFiles(KOfflineDb* db, const std::string& path);

/// A database record that is constructed and destroyed by scope.
class Database {
public:
    Database() { KOfflineDb_Constructor(&record_); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database() { KOfflineDb_Destructor(&record_); }

    operator KOfflineDb*() { return &record_; }
    KOfflineDb* operator->() { return &record_; }

private:
    KOfflineDb record_;
};

// SPDX-License-Identifier: MIT
// A database that a verb works on: in a package, in a folder, or named by its `kdbmain.txt`. Everything here fails
// with `Failure`.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "include/offline.h"
#include "tool/names.h"
#include "tool/options.h"
#include "tool/output.h"
#include "tool/package.h"
#include "tool/system.h"

namespace tool {

/// A database on the command line.
struct DatabaseOptions {
    std::string path;
    Credentials words;
    std::string encoding;
    bool no_lock = false, sync = false;

    /// `DB` and the options.
    Parameters parameters(Access access);
    /// The options without the argument, for verbs that take databases in several places.
    Parameters options(Access access);
    /// The same options for another database.
    DatabaseOptions with_path(const std::string& other) const;
};

/// Where a database lies: a package, or a folder.
struct DatabasePlace {
    fs::path path;
    bool is_package = false;

    explicit DatabasePlace(const DatabaseOptions& options);
};

/// A document, or any other file beside the seven of a database.
struct Document {
    std::string name;  // as `CFILE` may name it: the bytes of the database's encoding
    std::int64_t size = 0;
    fs::path path;  // of a folder's; empty in a package
};

/// Where the old files of a folder stand, all of them, while new ones take their places.
constexpr const char* kOldFiles = "vlt-old";

/// The files of a database as bytes, whether it loads or not. A package must not be loaded while these are used
/// unless it was loaded before.
class DatabaseFiles {
public:
    explicit DatabaseFiles(const DatabaseOptions& options);

    /// One of the seven files; nothing when it is not there.
    std::optional<std::string> read(const std::string& name) const;

    /// What is stored beside the seven: in a package every other file, in a folder the files in it and in its folder
    /// `docs`.
    std::vector<Document> documents() const;

    /// One of those.
    std::string read(const Document& document) const;

private:
    DatabasePlace place_;
    Names names_;
    std::unique_ptr<Package> package_;
};

/// A database that does not load, though its package or folder is there.
class DatabaseError : public Failure {
public:
    using Failure::Failure;
};

/// What follows the first point of a field's name: "NID" of "BDWG.NID".
std::string field_key(KOfflineTable* table, std::int32_t field);

/// A loaded database, with a lock on its package as long as it lives.
class Database {
public:
    Database(const DatabaseOptions& options, Access access);
    ~Database() { KOfflineDb_Destructor(&record_); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    KOfflineDb* get() const { return &record_; }
    const std::string& name() const { return options_.path; }
    const DatabasePlace& place() const { return place_; }
    DatabaseFiles files() const;

    /// A value as the database holds it; empty where there is none.
    std::string_view value(KOfflineTable* table, std::int32_t rec, std::int32_t field) const;

    /// Values as text for people, for programs, and from the command line; see `Names`. The last one fails when the
    /// encoding of the database lacks a character.
    std::string shown(std::string_view value) const;
    /// The same without a copy where the value can be shown as it is; `room` takes the text otherwise.
    std::string_view shown(std::string_view value, std::string& room) const;
    std::string typed(const std::string& text) const;
    const Names& names() const { return names_; }

    /// The last failure of the library in plain words.
    DatabaseError failure() const;

private:
    bool load(const fs::path& path);
    bool load_copy();

    DatabaseOptions options_;
    DatabasePlace place_;
    std::unique_ptr<HostLock> lock_;
    Names names_;
    mutable KOfflineDb record_;  // even a search may rebuild an index
};

}  // namespace tool

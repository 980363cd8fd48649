// SPDX-License-Identifier: MIT
// A database in a folder of our own, where it is made or changed before it is brought to its place.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "exchange/schema.h"
#include "tool/options.h"
#include "tool/scratch.h"

namespace tool {

/// The text of the database is UTF-8 whatever its encoding, so that characters of double-byte code pages that hold a
/// backslash cannot be taken for escapes.
class DatabaseCopy {
public:
    /// `name` stands in front of failures; the folder is made in `parent`.
    DatabaseCopy(std::string name, std::string encoding, const fs::path& parent);
    ~DatabaseCopy();

    /// Returns one of the seven files as it is stored; nothing when there is none.
    using ReadFile = std::function<std::optional<std::string>(const std::string& name)>;

    /// Copies the seven files and loads them. With `both_ways`, fails when a text would change on its way back.
    void load(const ReadFile& read_file, bool both_ways);

    /// Begins a database without records.
    KOfflineDb* begin(const exchange::Schema& schema);

    KOfflineDb* get() { return &record_; }

    /// Saves the database and returns the folder with the seven files in its encoding.
    fs::path save();

private:
    void load_folder(const fs::path& folder);
    [[noreturn]] void fail();

    std::string name_, encoding_;
    ScratchFolder scratch_;
    KOfflineDb record_;
};

/// Where a database is to be brought.
struct Destination {
    fs::path path;
    bool is_package = false;
    bool force = false;  // replace the database that stands there; its documents stay
    bool sync = false;
    Credentials words = {};  // of the package that is there
};

/// Where the copy is made that is brought there: on the same file system.
fs::path scratch_place(const Destination& destination);

/// Fails with `Failure` when a database stands there already and must not be replaced.
void check_destination(const Destination& destination);

/// Locks the database that is to be replaced, if there is one.
void lock_destination(const Destination& destination, HostLock::Mode mode, std::optional<HostLock>& lock);

/// Puts the files of a folder back as they were before a change that was cut off, if one was. The caller holds the
/// lock, which may be given up and taken again.
void bring_back(const Destination& destination, std::optional<HostLock>& lock);

/// Brings the seven files of a folder, which may become the destination, to their place. A new folder or package
/// appears whole; a package that is there is replaced by a changed copy. In a folder that is there each file that
/// differs is replaced, and the old ones are brought back if that fails, or by `bring_back`. The lock is given up
/// before the last file is replaced, for some systems replace no file that is open.
void install_database(const fs::path& folder, const Destination& destination, std::optional<HostLock>& lock);

}  // namespace tool

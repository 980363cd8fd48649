// SPDX-License-Identifier: MIT
// The files of folders on the disk, with the names they get in a package.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tool/system.h"

namespace tool {

/// A file on the disk, and its name with '/' between folders.
struct SourceFile {
    std::shared_ptr<const fs::path> folder;  // files of one folder follow each other and share this
    PathText last;                           // the last part of its path
    std::string name;
    FileStatus status;

    fs::path path() const { return *folder / last; }
};

/// Something that was left out, and why.
struct LeftOut {
    std::string name, reason;
};

class Collector {
public:
    std::vector<std::string> excluded;  // patterns for names or their last parts
    fs::path not_this;                  // a file that is never collected: the package itself

    /// Collects a file, or the files of a folder and the folders in it; links are not followed.
    void collect(const fs::path& path, const std::string& name);

    std::vector<SourceFile> files;
    std::vector<LeftOut> left_out;
    std::uint64_t bytes = 0;

private:
    bool is_excluded(const std::string& name) const;
    bool is_not_this(const SourceFile& file);
    void take(SourceFile file);
    void walk(const fs::path& folder, const std::string& name);
    std::vector<SourceFile> look_at(const fs::path& folder, const std::string& name);

    std::optional<std::int64_t> not_this_size_;  // -1 where it is missing
};

/// The name that a path on the command line gets: without its root, "." and leading "..", with '/'.
std::string name_of_path(const fs::path& path);

}  // namespace tool

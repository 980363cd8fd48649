// SPDX-License-Identifier: MIT
// The files of folders on the disk, with the names they get in a package.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tool/system.h"

namespace tool {

/// A file on the disk, and its name with '/' between folders.
struct SourceFile {
    fs::path path;
    std::string name;
    FileStatus status;
};

/// Something that was left out, and why.
struct LeftOut {
    std::string name, reason;
};

class Collector {
public:
    std::vector<std::string> excluded;  ///< patterns for names or their last parts
    fs::path not_this;                  ///< a file that is never collected: the package itself

    /// Collects a file, or the files of a folder and the folders in it; links are not followed.
    void collect(const fs::path& path, const std::string& name);

    std::vector<SourceFile> files;
    std::vector<LeftOut> left_out;
    std::uint64_t bytes = 0;

private:
    bool is_excluded(const std::string& name) const;
    void take(const fs::path& path, const std::string& name);
    void walk(const fs::path& folder, const std::string& name);
};

/// The name that a path on the command line gets: without its root, "." and leading "..", with '/'.
std::string name_of_path(const fs::path& path);

}  // namespace tool

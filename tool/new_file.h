// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "tool/system.h"

namespace tool {

/// A file that appears whole or not at all: it is written under a name of its own beside its place, and removed
/// unless it is moved there.
class NewFile {
public:
    explicit NewFile(const fs::path& folder) : path_(folder / temporary_name()), file_(HostFile::create_new(path_)) {}
    ~NewFile() {
        std::error_code ignored;
        file_.close_quietly();
        if (!moved_) fs::remove(path_, ignored);
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    HostFile& file() { return file_; }
    /// Where it is until it is moved.
    const fs::path& path() const { return path_; }
    /// A file that cannot be closed, for want of room on its disk, is not moved.
    void move_to(const fs::path& target, bool replace) {
        file_.close();
        move_file(path_, target, replace);
        moved_ = true;
    }

private:
    static std::string temporary_name() {
        static int count = 0;
        return ".vlt-" + std::to_string(process_number()) + "-" + std::to_string(++count) + ".part";
    }

    fs::path path_;
    HostFile file_;
    bool moved_ = false;
};

}  // namespace tool

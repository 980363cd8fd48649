// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "tool/system.h"

namespace tool {

/// A file that appears whole or not at all: it is written under a name of its own beside its place, and removed
/// unless it is moved there.
class NewFile {
public:
    explicit NewFile(std::shared_ptr<const HostFolder> folder)
        : folder_(std::move(folder)), name_(temporary_name()), file_(folder_->create_new(name_)) {}
    explicit NewFile(const fs::path& folder)
        : NewFile(std::make_shared<const HostFolder>(folder.empty() ? fs::path(".") : folder)) {}
    ~NewFile() {
        file_.close_quietly();
        if (!moved_) folder_->remove(name_);
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    HostFile& file() { return file_; }
    /// Where it is until it is moved.
    fs::path path() const { return folder_->path_of(name_); }
    /// Gives it its name in the folder. Fails with `Failure` if something stands there, unless `replace`, and if it
    /// cannot be closed, for want of room on its disk.
    void move_to(const PathText& name, bool replace) {
        file_.close();
        folder_->move(name_, name, replace);
        moved_ = true;
    }

private:
    static PathText temporary_name() {
        static const std::string start = ".vlt-" + std::to_string(process_number()) + "-";
        static int count = 0;
        return path_of(start + std::to_string(++count) + ".part").native();
    }

    std::shared_ptr<const HostFolder> folder_;
    PathText name_;
    HostFile file_;
    bool moved_ = false;
};

}  // namespace tool

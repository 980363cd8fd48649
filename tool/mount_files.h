// SPDX-License-Identifier: MIT
// The files of a package as a file system asks for them. What an operation returns is 0, or a count, or an error of
// the system (`-ENOENT`); what the library fails at is thrown as `Failure`.
#pragma once

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <ctime>
#include <functional>
#include <optional>
#include <string>

#include "tool/mount_tree.h"
#include "tool/package.h"

namespace tool {

class MountFiles {
public:
    /// Names that can be no paths are left out and told on stderr.
    MountFiles(Package& package, Access access);

    const Package& package() const { return package_; }
    bool left_out() const { return left_out_; }

    /// Lets go of the file that is open still.
    void close() { opened_.reset(); }

    int attributes(const std::string& path, struct stat& result) const;
    int list(const std::string& folder, const std::function<void(const std::string&)>& visit) const;
    int read(const std::string& path, char* buffer, std::size_t length, std::int64_t position);
    int space(struct statvfs& result) const;

    int create(const std::string& path);
    int write(const std::string& path, const char* data, std::size_t length, std::int64_t position);
    int resize(const std::string& path, std::int64_t size);
    int remove(const std::string& path);
    /// Copies the file and removes the old one, for the library renames none. Folders are left to the caller, who
    /// copies what is in them.
    int rename(const std::string& from, const std::string& to, bool may_replace);
    int make_folder(const std::string& path);
    int remove_folder(const std::string& path);
    int set_times(const std::string& path, const timespec& accessed, const timespec& written);

private:
    /// The file that was used last stays open: programs ask for one piece after the other.
    struct Opened {
        std::string name;
        Access access;
        StoredFile file;
    };

    void load(const Entry& entry, std::string refusal);
    void leave_out(const std::string& stored, const std::string& reason);
    std::optional<Entry> entry_at(const std::string& path) const;
    StoredFile& opened(const Entry& entry, Access access);
    void extend(const Entry& entry, std::int64_t size);
    int shorten(const Entry& entry, std::int64_t size);
    void copy(const Entry& entry, const std::string& target);
    int new_name(const std::string& path, std::string& stored) const;

    Package& package_;
    bool writable_;
    bool left_out_ = false;
    MountTree tree_;
    std::optional<Opened> opened_;
    std::time_t since_ = std::time(nullptr);
};

}  // namespace tool

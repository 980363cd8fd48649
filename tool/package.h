// SPDX-License-Identifier: MIT
// A package and its stored files, through the library's public interface. Everything here fails with `Failure`.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "include/vlt.h"
#include "tool/failure.h"
#include "tool/names.h"
#include "tool/options.h"
#include "tool/system.h"

namespace tool {

/// What the package tells of a stored file.
struct Entry {
    std::string name;  // stored form, see names.h
    bool of_other_maker = false;
    std::int64_t size = 0;
    double created = 0, accessed = 0, written = 0;
};

class Package;

/// A stored file that is open. It goes before its package does.
class StoredFile {
public:
    StoredFile(StoredFile&& other) noexcept
        : package_(other.package_),
          name_(std::move(other.name_)),
          file_(std::exchange(other.file_, 0)),
          left_(other.left_),
          size_(other.size_) {}
    ~StoredFile() {
        if (file_) vlt_file_close(file_);
    }

    /// Returns fewer bytes than asked for at the end only.
    std::size_t read(void* buffer, std::size_t length);
    void write(const void* data, std::size_t length);
    void seek(std::int64_t position);
    void close();

private:
    friend class Package;
    StoredFile(const Package& package, std::string name, std::uint32_t file, std::int64_t size)
        : package_(package), name_(std::move(name)), file_(file), left_(size) {}
    std::string subject() const;

    const Package& package_;
    std::string name_;
    std::uint32_t file_;
    std::int64_t left_;  // bytes to read up to the end: the library reports a failed read like the end of the file
    std::int64_t size_ = left_;
};

/// The files that a verb changed, by folded name; where times were set alone, the bytes stay what they were.
struct Changes {
    std::unordered_set<std::string> written, removed, retimed;

    bool none() const { return written.empty() && removed.empty() && retimed.empty(); }
};

class Package {
public:
    /// Locks the host file and opens the package. Readers open the host file for reading only, so nothing in it
    /// changes, not even a time stamp.
    Package(const PackageOptions& options, Access access);
    ~Package();
    Package(const Package&) = delete;
    Package& operator=(const Package&) = delete;

    /// Brings the sums of a sealed package up to date, closes it, and brings it to the disk, if that was asked for.
    void close();

    const std::string& path() const { return options_.path; }
    const PackageOptions& options() const { return options_; }
    const Names& names() const { return *names_; }
    bool wide() const { return names_->wide(); }
    std::int32_t handle() const { return handle_; }

    void for_each(const std::function<void(const Entry&)>& visit) const;
    std::vector<Entry> entries() const;
    std::optional<Entry> find(const std::string& name) const;
    /// The entry that an argument names, as typed or as it is; fails when there is none.
    Entry entry_of_argument(const std::string& text) const;

    StoredFile open_to_read(const Entry& entry) const;
    /// Makes the file, or empties it.
    StoredFile open_to_write(const std::string& name);
    /// Leaves what is stored in it.
    StoredFile open_to_change(const Entry& entry);
    void remove(const std::string& name);
    void set_times(const Entry& entry);

    /// A failure that names the package and a stored file.
    Failure failure(const std::string& name, const std::string& text) const;

private:
    std::int32_t open(const Credentials& words, Access access, std::int32_t* error) const;
    std::uint32_t open_file(const std::string& name, std::uint32_t mode, bool truncate) const;

    PackageOptions options_;
    std::unique_ptr<HostLock> lock_;
    std::int32_t handle_ = 0;
    std::optional<Names> names_;
    bool sealed_ = false;  // only then changes are noted
    Changes changes_;
};

}  // namespace tool

// SPDX-License-Identifier: MIT
#include "tool/mount_files.h"

#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unordered_set>

#include "tool/scratch.h"
#include "tool/stamps.h"
#include "tool/sums.h"

namespace tool {

namespace {

using Kind = MountTree::Kind;

constexpr std::size_t kPiece = 1 << 18;

std::int64_t size_of(const Entry& entry) {
    return std::max<std::int64_t>(entry.size, 0);  // damaged entries have negative ones
}

void write_zeros(StoredFile& file, std::int64_t count) {
    const std::string zeros(kPiece, '\0');
    for (; count > 0; count -= std::min<std::int64_t>(count, kPiece))
        file.write(zeros.data(), static_cast<std::size_t>(std::min<std::int64_t>(count, kPiece)));
}

double stamp_of_time(const timespec& time, double unchanged) {
    if (time.tv_nsec == UTIME_OMIT) return unchanged;
    return time.tv_nsec == UTIME_NOW ? stamp_now() : stamp_of(static_cast<std::int64_t>(time.tv_sec));
}

}  // namespace

// ---- What is there -------------------------------------------------------------------------------------------

MountFiles::MountFiles(Package& package, Access access) : package_(package), writable_(access == Access::write) {
    std::unordered_set<std::string> taken;
    package.for_each([&](const Entry& entry) {
        const bool again = !taken.insert(folded(entry.name)).second;
        if (folded(entry.name) != kSumsName)
            load(entry, again ? "a file of the same name stands before it; see `vlt check`" : "");
    });
    for (const std::string& stored : tree_.remove_files_named_as_folders())
        leave_out(stored, "it is named as the folder of others");
}

void MountFiles::load(const Entry& entry, std::string refusal) {
    const std::string path = package_.names().plain(entry.name);
    if (refusal.empty()) refusal = MountTree::refusal_of(path);
    if (refusal.empty() && entry.of_other_maker) refusal = "an entry of another maker";
    if (refusal.empty() && !tree_.add_file(path, entry.name)) refusal = "another file is shown under this name";
    if (!refusal.empty()) leave_out(entry.name, refusal);
}

void MountFiles::leave_out(const std::string& stored, const std::string& reason) {
    left_out_ = true;
    warn(package_.path() + ": " + package_.names().shown(stored) + ": not shown: " + reason);
}

std::optional<Entry> MountFiles::entry_at(const std::string& path) const {
    return tree_.kind(path) == Kind::file ? package_.find(tree_.stored(path)) : std::nullopt;
}

int MountFiles::attributes(const std::string& path, struct stat& result) const {
    std::memset(&result, 0, sizeof result);
    result.st_uid = getuid();
    result.st_gid = getgid();
    result.st_nlink = 1;
    if (tree_.kind(path) == Kind::folder) {
        result.st_mode = S_IFDIR | (writable_ ? 0755 : 0555);
        result.st_atime = result.st_mtime = result.st_ctime = since_;
        return 0;
    }
    const auto entry = entry_at(path);
    if (!entry) return -ENOENT;
    result.st_mode = S_IFREG | (writable_ ? 0644 : 0444);
    result.st_size = static_cast<off_t>(size_of(*entry));
    result.st_blksize = VLT_BLOCK_SIZE;
    result.st_blocks = (result.st_size + 511) / 512;
    result.st_atime = static_cast<std::time_t>(seconds_of_stamp(entry->accessed).value_or(0));
    result.st_mtime = result.st_ctime = static_cast<std::time_t>(seconds_of_stamp(entry->written).value_or(0));
    return 0;
}

int MountFiles::list(const std::string& folder, const std::function<void(const std::string&)>& visit) const {
    if (tree_.kind(folder) != Kind::folder) return -ENOENT;
    for (const std::string& name : tree_.list(folder)) visit(name);
    return 0;
}

int MountFiles::space(struct statvfs& result) const {
    const fs::path host = path_of(package_.path());
    if (statvfs(folder_of(host).c_str(), &result) != 0) return -errno;
    const auto unit = static_cast<std::int64_t>(result.f_frsize);
    const auto own = static_cast<fsblkcnt_t>((file_status(host).size + unit - 1) / unit);
    result.f_bfree = result.f_bavail = writable_ ? result.f_bavail : 0;
    result.f_blocks = own + result.f_bavail;
    result.f_files = result.f_ffree = result.f_favail = 0;
    return 0;
}

// ---- Reading and writing -------------------------------------------------------------------------------------

StoredFile& MountFiles::opened(const Entry& entry, Access access) {
    if (!opened_ || opened_->name != entry.name || opened_->access != access) {
        opened_.reset();
        opened_.emplace(
            Opened{entry.name, access,
                   access == Access::read ? package_.open_to_read(entry) : package_.open_to_change(entry)});
    }
    return opened_->file;
}

int MountFiles::read(const std::string& path, char* buffer, std::size_t length, std::int64_t position) {
    const auto entry = entry_at(path);
    if (!entry) return -ENOENT;
    if (position >= entry->size) return 0;
    StoredFile& file = opened(*entry, Access::read);
    file.seek(position);
    return static_cast<int>(file.read(buffer, length));
}

int MountFiles::create(const std::string& path) {
    std::string stored;
    if (const int error = new_name(path, stored)) return error;
    opened_.reset();
    package_.open_to_write(stored).close();
    tree_.add_file(path, stored);
    return 0;
}

/// The stored name for a path where nothing is shown. What differs in case only, or is not shown, is there already.
int MountFiles::new_name(const std::string& path, std::string& stored) const {
    const auto name = package_.names().stored(path);
    if (!MountTree::refusal_of(path).empty() || (!name && path.size() > VLT_NAME_MAX)) return -ENAMETOOLONG;
    if (!name) return -EILSEQ;
    if (folded(*name) == kSumsName) return -EPERM;
    if (package_.find(*name)) return -EEXIST;
    stored = *name;
    return 0;
}

int MountFiles::write(const std::string& path, const char* data, std::size_t length, std::int64_t position) {
    const auto entry = entry_at(path);
    if (!entry) return -ENOENT;
    extend(*entry, position);
    StoredFile& file = opened(*entry, Access::write);
    file.seek(position);
    file.write(data, length);
    return static_cast<int>(length);
}

/// Stored files have no holes: what is skipped becomes zeros.
void MountFiles::extend(const Entry& entry, std::int64_t size) {
    const std::int64_t missing = size - size_of(entry);
    if (missing <= 0) return;
    struct statvfs there {};
    if (space(there) == 0 &&
        missing / static_cast<std::int64_t>(there.f_frsize) > static_cast<std::int64_t>(there.f_blocks))
        throw package_.failure(entry.name, "the disk has no room for the zeros before what is to be written");
    StoredFile& file = opened(entry, Access::write);
    file.seek(size_of(entry));
    write_zeros(file, missing);
}

/// The library empties files and shortens none: what stays is read first and stored again.
int MountFiles::shorten(const Entry& entry, std::int64_t size) {
    std::string kept(static_cast<std::size_t>(size), '\0');
    opened_.reset();
    if (size > 0) kept.resize(package_.open_to_read(entry).read(kept.data(), kept.size()));
    StoredFile file = package_.open_to_write(entry.name);
    file.write(kept.data(), kept.size());
    return 0;
}

int MountFiles::resize(const std::string& path, std::int64_t size) {
    const auto entry = entry_at(path);
    if (!entry) return -ENOENT;
    if (size < entry->size || entry->size < 0) return shorten(*entry, size);
    extend(*entry, size);
    return 0;
}

// ---- Names ---------------------------------------------------------------------------------------------------

int MountFiles::remove(const std::string& path) {
    const auto entry = entry_at(path);
    if (!entry) return -ENOENT;
    opened_.reset();
    package_.remove(entry->name);
    tree_.remove(path);
    return 0;
}

void MountFiles::copy(const Entry& entry, const std::string& target) {
    opened_.reset();
    StoredFile from = package_.open_to_read(entry), to = package_.open_to_write(target);
    std::vector<char> piece(kPiece);
    try {
        while (const std::size_t length = from.read(piece.data(), piece.size())) to.write(piece.data(), length);
    } catch (const Failure&) {
        to.close();
        package_.remove(target);
        throw;
    }
    to.close();
    Entry copied = entry;
    copied.name = target;
    package_.set_times(copied);
}

int MountFiles::rename(const std::string& from, const std::string& to, bool may_replace) {
    const Kind there = tree_.kind(to);
    if (tree_.kind(from) == Kind::folder) return -EXDEV;
    const auto entry = entry_at(from);
    if (!entry) return -ENOENT;
    if (there != Kind::none && !may_replace) return -EEXIST;
    if (there == Kind::folder) return -EISDIR;
    std::string target;
    if (there == Kind::file)
        target = tree_.stored(to);
    else if (const int error = new_name(to, target))
        return error;
    try {
        copy(*entry, target);
    } catch (const Failure&) {
        if (!package_.find(target)) tree_.remove(to);
        throw;
    }
    tree_.add_file(to, target);
    return remove(from);
}

int MountFiles::make_folder(const std::string& path) {
    if (!MountTree::refusal_of(path).empty()) return -ENAMETOOLONG;
    if (tree_.kind(path) != Kind::none) return -EEXIST;
    tree_.add_folder(path);
    return 0;
}

int MountFiles::remove_folder(const std::string& path) {
    if (tree_.kind(path) != Kind::folder) return -ENOENT;
    if (!tree_.holds_nothing(path)) return -ENOTEMPTY;
    tree_.remove(path);
    return 0;
}

int MountFiles::set_times(const std::string& path, const timespec& accessed, const timespec& written) {
    if (tree_.kind(path) == Kind::folder) return 0;
    auto entry = entry_at(path);
    if (!entry) return -ENOENT;
    entry->accessed = stamp_of_time(accessed, entry->accessed);
    entry->written = stamp_of_time(written, entry->written);
    package_.set_times(*entry);
    return 0;
}

}  // namespace tool

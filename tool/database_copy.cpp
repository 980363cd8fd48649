// SPDX-License-Identifier: MIT
#include "tool/database_copy.h"

#include <algorithm>
#include <optional>

#include "include/vlt.h"
#include "tool/database.h"
#include "tool/failure.h"
#include "tool/names.h"
#include "tool/package.h"

namespace tool {

namespace {

std::string decoded(const CodePage& page, std::string_view bytes, const std::string& file) {
    std::string text;
    while (!bytes.empty()) {
        const std::size_t length = page.decode(bytes, text);
        if (length == 0)
            throw Failure(file, "holds bytes that are no text in this encoding; give another --encoding");
        bytes.remove_prefix(length);
    }
    return text;
}

std::string encoded(const CodePage& page, std::string_view text, const std::string& file) {
    std::string bytes;
    for (std::size_t line = 1; !text.empty(); ++line) {
        const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
        if (!page.encode(text.substr(0, length), bytes))
            throw Failure(file, "line " + std::to_string(line) + " has a character that the encoding lacks");
        text.remove_prefix(length);
    }
    return bytes;
}

std::string bytes_of(const fs::path& path) {
    return whole_file(text_of(path));
}

/// The files that stand in a folder already.
std::vector<std::string> files_there(const fs::path& folder) {
    std::vector<std::string> there;
    for (const char* name : exchange::kDatabaseFiles)
        if (file_status(folder / name).kind != FileStatus::Kind::missing) there.emplace_back(name);
    return there;
}

void store_files(Package& package, const fs::path& folder) {
    for (const char* name : exchange::kDatabaseFiles) {
        const std::string bytes = bytes_of(folder / name);
        StoredFile file = package.open_to_write(name);
        file.write(bytes.data(), bytes.size());
        file.close();
    }
}

void fill_package(const fs::path& path, const fs::path& folder, const Destination& destination) {
    PackageOptions options;
    options.path = text_of(path);
    options.words = destination.words;
    options.no_lock = true;
    options.sync = destination.sync;
    Package package(options, Access::write);
    store_files(package, folder);
    package.close();
}

void install_new_package(const fs::path& folder, const Destination& destination) {
    const ScratchFolder scratch(folder_of(destination.path));
    const fs::path made = scratch / "new";
    if (!vlt_package_create(library_path(made).c_str(), 0, 0, nullptr, nullptr))
        throw Failure(text_of(destination.path), "cannot be created; is there room on the disk?");
    fill_package(made, folder, destination);
    move_file(made, destination.path, false);
}

/// Seven stored files cannot be replaced at once, but the package can.
void install_into_package(const fs::path& folder, const Destination& destination, std::optional<HostLock>& lock) {
    std::error_code error;
    const fs::path place = fs::canonical(destination.path, error);  // a link stays one
    const ScratchFolder scratch(folder_of(place));
    const fs::path copy = scratch / "new";
    if (!error) fs::copy_file(place, copy, error);
    if (error) throw Failure(text_of(destination.path), "the package cannot be copied: " + error.message());
    try {
        fill_package(copy, folder, destination);
    } catch (const Failure& failure) {
        const std::string text = failure.what(), name = text_of(copy);
        if (!text.starts_with(name + ": ")) throw;
        throw Failure(text_of(destination.path), text.substr(name.size() + 2));
    }
    copy_access(place, copy);
    lock.reset();
    move_file(copy, place, true);
    if (destination.sync) sync_file(place);
}

// ---- Files of a folder -----------------------------------------------------------------------------------------

/// A second name for a file, or a copy where the file system knows no such.
void link_or_copy(const fs::path& from, const fs::path& to) {
    std::error_code error;
    fs::create_hard_link(from, to, error);
    if (error) fs::copy_file(from, to, error);
    if (error) throw Failure(text_of(from), "cannot be copied: " + error.message());
}

bool is_there(const fs::path& path) {
    return file_status(path).kind != FileStatus::Kind::missing;
}

bool is_same(const fs::path& a, const fs::path& b) {
    const FileStatus left = file_status(a), right = file_status(b);
    return left.kind == right.kind && left.size == right.size && bytes_of(a) == bytes_of(b);
}

/// The files that are to be replaced, the one that bears the lock last.
std::vector<std::string> files_that_differ(const fs::path& folder, const fs::path& place) {
    std::vector<std::string> differ;
    for (auto name = exchange::kDatabaseFiles.rbegin(); name != exchange::kDatabaseFiles.rend(); ++name)
        if (!is_same(folder / *name, place / *name)) differ.emplace_back(*name);
    return differ;
}

void sync_files(const fs::path& folder, bool wanted) {
    for (const char* name : exchange::kDatabaseFiles)
        if (wanted) sync_file(folder / name);
}

/// What no database can do without.
bool holds_database(const fs::path& folder) {
    return is_there(folder / "kdbmain.txt") && is_there(folder / "bitm.txt") && is_there(folder / "bbom.txt");
}

/// Brings old files back to their place, and removes those that were not there; the lock is given up before the file
/// that bears it is replaced. May be cut off and done again.
void restore(const fs::path& place, const fs::path& old, std::optional<HostLock>& lock) {
    const ScratchFolder scratch(place);
    for (const std::string& name : files_that_differ(old, place)) {
        if (name == exchange::kDatabaseFiles[0]) lock.reset();
        std::error_code error;
        if (!is_there(old / name)) {
            fs::remove(place / name, error);
            continue;
        }
        link_or_copy(old / name, scratch / name);
        move_file(scratch / name, place / name, true);
    }
    move_file(old, scratch / "done", false);
}

/// While the folder of old files stands, all of them in it, the change has not happened: it comes and goes at once.
void install_into_folder(const fs::path& folder, const Destination& destination, std::optional<HostLock>& lock) {
    const fs::path& place = destination.path;
    const std::vector<std::string> differ = files_that_differ(folder, place);
    const ScratchFolder scratch(place);
    make_folder(scratch / "old");
    for (const std::string& name : files_there(place)) link_or_copy(place / name, scratch / "old" / name);
    const bool had_database = holds_database(scratch / "old");
    if (had_database) move_file(scratch / "old", place / kOldFiles, false);
    try {
        for (const std::string& name : differ) {
            if (is_there(place / name)) copy_access(place / name, folder / name);
            if (name == exchange::kDatabaseFiles[0]) lock.reset();
            move_file(folder / name, place / name, true);
        }
        sync_files(place, destination.sync);
    } catch (...) {
        restore(place, had_database ? place / kOldFiles : scratch / "old", lock);
        throw;
    }
    if (is_there(place / kOldFiles)) move_file(place / kOldFiles, scratch / "done", false);
}

}  // namespace

DatabaseCopy::DatabaseCopy(std::string name, std::string encoding, const fs::path& parent)
    : name_(std::move(name)), encoding_(is_utf8_name(encoding) ? "" : std::move(encoding)), scratch_(parent) {
    KOfflineDb_Constructor(&record_);
}

DatabaseCopy::~DatabaseCopy() {
    KOfflineDb_Destructor(&record_);
}

void DatabaseCopy::fail() {
    throw Failure(name_, database_error_text(record_.error_code, record_.error_text));
}

void DatabaseCopy::load_folder(const fs::path& folder) {
    if (!KOfflineDb_Load(&record_, library_path(folder).c_str())) fail();
}

void DatabaseCopy::load(const ReadFile& read_file, bool both_ways) {
    std::optional<CodePage> page;
    if (!encoding_.empty()) page.emplace(encoding_);
    const fs::path folder = scratch_ / "loaded";
    make_folder(folder);
    for (const char* name : exchange::kDatabaseFiles) {
        std::optional<std::string> bytes = read_file(name);
        if (!bytes) continue;
        const std::string text = page ? decoded(*page, *bytes, name_ + ": " + name) : *bytes;
        if (page && both_ways && encoded(*page, text, name) != *bytes)
            throw Failure(name_ + ": " + name,
                          "has characters that the encoding writes in two ways, and would change");
        write_file(folder / name, text);
    }
    load_folder(folder);
}

KOfflineDb* DatabaseCopy::begin(const exchange::Schema& schema) {
    const fs::path folder = scratch_ / "begun";
    make_folder(folder);
    write_file(folder / exchange::kDatabaseFiles[0], exchange::schema_text(schema));
    for (const std::size_t table : {exchange::kBitm, exchange::kBbom})
        write_file(folder / exchange::kDatabaseFiles[table + 1], {});
    load_folder(folder);
    return &record_;
}

fs::path DatabaseCopy::save() {
    fs::path folder = scratch_ / "saved";
    make_folder(folder);
    if (!KOfflineDb_SaveAs(&record_, library_path(folder).c_str())) fail();
    if (encoding_.empty()) return folder;
    const CodePage page(encoding_);
    fs::path converted = scratch_ / "encoded";
    make_folder(converted);
    for (const char* name : exchange::kDatabaseFiles)
        write_file(converted / name, encoded(page, bytes_of(folder / name), name_ + ": " + name));
    return converted;
}

fs::path scratch_place(const Destination& destination) {
    std::error_code error;
    return fs::is_directory(destination.path, error) ? destination.path : folder_of(destination.path);
}

void check_destination(const Destination& destination) {
    const FileStatus::Kind kind = file_status(destination.path).kind;
    if (kind == FileStatus::Kind::missing || destination.force) return;
    std::error_code error;
    const bool folder = !destination.is_package && fs::is_directory(destination.path, error);
    if (!folder || !files_there(destination.path).empty())
        throw Failure(text_of(destination.path), "exists already; give -f to replace the database in it");
}

void lock_destination(const Destination& destination, HostLock::Mode mode, std::optional<HostLock>& lock) {
    const fs::path file = destination.is_package ? destination.path : destination.path / exchange::kDatabaseFiles[0];
    if (file_status(file).kind == FileStatus::Kind::file) lock.emplace(file, mode);
}

void bring_back(const Destination& destination, std::optional<HostLock>& lock) {
    const fs::path old = destination.path / kOldFiles;
    if (destination.is_package || !is_there(old)) return;
    if (!holds_database(old))
        throw Failure(text_of(old), "holds no database as it was before a change; move it away, then try again");
    const bool locked = lock.has_value();
    restore(destination.path, old, lock);
    if (locked && !lock) lock_destination(destination, HostLock::Mode::exclusive, lock);
    warn(text_of(destination.path) + ": a change was cut off; the files are as they were before it");
}

void install_database(const fs::path& folder, const Destination& destination, std::optional<HostLock>& lock) {
    check_destination(destination);
    const bool there = is_there(destination.path);
    sync_files(folder, destination.sync);
    if (destination.is_package)
        there ? install_into_package(folder, destination, lock) : install_new_package(folder, destination);
    else
        there ? install_into_folder(folder, destination, lock) : move_file(folder, destination.path, false);
}

}  // namespace tool

// SPDX-License-Identifier: MIT
#include "tool/database_copy.h"

#include <algorithm>
#include <optional>

#include "include/vlt.h"
#include "tool/failure.h"
#include "tool/package.h"

namespace tool {

namespace {

constexpr const char* kOldFiles = "vlt-old";  // in a folder, while files are exchanged

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

bool is_utf8_name(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(), [](char c) { return c >= 'a' && c <= 'z' ? c - 32 : c; });
    return name.empty() || name == "UTF-8" || name == "UTF8";
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

PackageOptions package_options(const fs::path& path, bool sync) {
    PackageOptions options;
    options.path = text_of(path);
    options.no_lock = true;
    options.sync = sync;
    return options;
}

void fill_package(const fs::path& path, const fs::path& folder, bool sync) {
    Package package(package_options(path, sync), Access::write);
    store_files(package, folder);
    package.close();
}

void install_new_package(const fs::path& folder, const Destination& destination) {
    const ScratchFolder scratch(folder_of(destination.path));
    const fs::path made = scratch / "new";
    if (!vlt_package_create(library_path(made).c_str(), 0, 0, nullptr, nullptr))
        throw Failure(text_of(destination.path), "cannot be created; is there room on the disk?");
    fill_package(made, folder, destination.sync);
    move_file(made, destination.path, false);
}

/// Seven stored files cannot be exchanged at once, so a copy of the package keeps the old ones until all are written.
void install_into_package(const fs::path& folder, const Destination& destination) {
    const fs::path copy = path_of(text_of(destination.path) + ".before");
    if (file_status(copy).kind != FileStatus::Kind::missing)
        throw Failure(text_of(copy),
                      "the package as it was before a change that was cut off; "
                      "bring it back or remove it, then try again");
    std::error_code error;
    fs::copy_file(destination.path, copy, error);
    if (error) throw Failure(text_of(copy), "the package cannot be copied: " + error.message());
    try {
        sync_file(copy);
        fill_package(destination.path, folder, destination.sync);
    } catch (...) {
        warn(text_of(copy) + ": the package as it was before; bring it back");
        throw;
    }
    fs::remove(copy, error);
}

/// Moves files from one folder to another and back again when it is not finished.
class Exchange {
public:
    Exchange(fs::path from, fs::path to, fs::path old)
        : from_(std::move(from)), to_(std::move(to)), old_(std::move(old)) {}
    ~Exchange() {
        if (!finished_) undo();
    }
    void run(const std::vector<std::string>& there) {
        for (const std::string& name : there) {
            move_file(to_ / name, old_ / name, false);
            away_.push_back(name);
        }
        for (const char* name : exchange::kDatabaseFiles) {
            move_file(from_ / name, to_ / name, false);
            brought_.emplace_back(name);
        }
        finished_ = true;
    }

private:
    void undo() {
        std::error_code error;
        for (const std::string& name : brought_) fs::rename(to_ / name, from_ / name, error);
        for (const std::string& name : away_) fs::rename(old_ / name, to_ / name, error);
        fs::remove(old_, error);  // only when it is empty
    }

    fs::path from_, to_, old_;
    std::vector<std::string> away_, brought_;
    bool finished_ = false;
};

void sync_files(const fs::path& folder, bool wanted) {
    for (const char* name : exchange::kDatabaseFiles)
        if (wanted) sync_file(folder / name);
}

void install_into_folder(const fs::path& folder, const Destination& destination) {
    const fs::path old = destination.path / kOldFiles;
    std::error_code error;
    if (!fs::create_directory(old, error))
        throw Failure(text_of(old),
                      "holds the files as they were before a change that was cut off; "
                      "bring them back or remove it, then try again");
    Exchange(folder, destination.path, old).run(files_there(destination.path));
    sync_files(destination.path, destination.sync);
    fs::remove_all(old, error);
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

void install_database(const fs::path& folder, const Destination& destination) {
    check_destination(destination);
    const bool there = file_status(destination.path).kind != FileStatus::Kind::missing;
    sync_files(folder, destination.sync);
    if (destination.is_package)
        there ? install_into_package(folder, destination) : install_new_package(folder, destination);
    else
        there ? install_into_folder(folder, destination) : move_file(folder, destination.path, false);
}

}  // namespace tool

// SPDX-License-Identifier: MIT
#include "tool/database.h"

#include <algorithm>
#include <cstring>
#include <system_error>

#include "bom/check.h"
#include "bom/text.h"
#include "tool/failure.h"
#include "tool/scratch.h"

namespace tool {

namespace {

bool is_database_file(const std::string& name) {
    const auto equals = [&](const char* file) { return bom::compare_folded(name.c_str(), file) == 0; };
    return equals(bom::kSchemaFile) || std::any_of(bom::kTableFiles.begin(), bom::kTableFiles.end(), equals);
}

fs::path place_of(const fs::path& path) {
    if (path.filename() != bom::kSchemaFile) return path;
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

void list_folder(const fs::path& folder, const Names& names, std::vector<Document>& documents) {
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        const FileStatus status = file_status(at->path());
        const std::string name = text_of(at->path().filename());
        if (status.kind != FileStatus::Kind::file || is_database_file(name)) continue;
        documents.push_back({names.stored(name).value_or(name), status.size, at->path()});
    }
}

void check_whole(const DatabasePlace& place) {
    if (file_status(place.path / kOldFiles).kind == FileStatus::Kind::missing) return;
    throw Failure(text_of(place.path),
                  "a change was cut off, or is going on; `vlt db edit` brings the files back as they were before it");
}

bool is_printable(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c < 0x7f && c != '\\'; });
}

}  // namespace

Parameters DatabaseOptions::parameters(Access access) {
    return {{"DB", &path, "the database: a package, a folder, or kdbmain.txt in one", {.required = true}},
            options(access)};
}

Parameters DatabaseOptions::options(Access access) {
    return {words.parameters(Access::read),
            {"--encoding", &encoding, "code page of the values, such as CP932; UTF-8 if not given"},
            no_lock_option(no_lock),
            access == Access::write ? sync_option(sync) : Parameters()};
}

DatabaseOptions DatabaseOptions::with_path(const std::string& other) const {
    DatabaseOptions options = *this;
    options.path = other;
    return options;
}

DatabasePlace::DatabasePlace(const DatabaseOptions& options) : path(place_of(path_of(options.path))) {
    const FileStatus::Kind kind = file_status(path_of(options.path)).kind;
    if (kind == FileStatus::Kind::missing) throw Failure(options.path, "there is no such package or folder");
    std::error_code error;
    is_package = !fs::is_directory(path, error);
}

// ---- Files ---------------------------------------------------------------------------------------------------

DatabaseFiles::DatabaseFiles(const DatabaseOptions& options) : place_(options), names_(false, options.encoding) {
    if (!place_.is_package) {
        check_whole(place_);
        return;
    }
    PackageOptions package;
    package.path = text_of(place_.path);
    package.words = options.words;
    package.encoding = options.encoding;
    package.no_lock = true;
    package_ = std::make_unique<Package>(package, Access::read);
}

std::optional<std::string> DatabaseFiles::read(const std::string& name) const {
    if (!package_) {
        const fs::path path = place_.path / name;
        if (file_status(path).kind == FileStatus::Kind::missing) return std::nullopt;
        return whole_file(text_of(path));
    }
    const auto entry = package_->find(name);
    if (!entry) return std::nullopt;
    std::string bytes(static_cast<std::size_t>(entry->size), '\0');
    StoredFile file = package_->open_to_read(*entry);
    bytes.resize(file.read(bytes.data(), bytes.size()));
    return bytes;
}

std::string DatabaseFiles::read(const Document& document) const {
    if (!package_) return whole_file(text_of(document.path));
    if (auto bytes = read(document.name)) return *std::move(bytes);
    throw Failure(document.name, "is no longer there");
}

std::vector<Document> DatabaseFiles::documents() const {
    std::vector<Document> documents;
    if (!package_) {
        list_folder(place_.path, names_, documents);
        list_folder(place_.path / "docs", names_, documents);
    } else {
        package_->for_each([&](const Entry& entry) {
            if (!entry.of_other_maker && !is_database_file(entry.name))
                documents.push_back({entry.name, entry.size, {}});
        });
    }
    std::sort(documents.begin(), documents.end(),
              [](const Document& a, const Document& b) { return a.name < b.name; });
    return documents;
}

// ---- The database --------------------------------------------------------------------------------------------

std::string field_key(KOfflineTable* table, std::int32_t field) {
    char name[33];
    KOfflineTable_GetFldName(table, field, name);
    const std::string text = name;
    return text.substr(text.find('.') + 1);
}

Database::Database(const DatabaseOptions& options, Access access)
    : options_(options), place_(options), names_(false, options.encoding) {
    if (place_.is_package && !options.no_lock) {
        lock_ = std::make_unique<HostLock>(
            place_.path, access == Access::read ? HostLock::Mode::shared : HostLock::Mode::exclusive);
    }
    if (!place_.is_package) check_whole(place_);
    KOfflineDb_Constructor(&record_);
    try {
        if (load(place_.path) || (record_.error_code == KOFFLINE_ERR_NONE && place_.is_package && load_copy()))
            return;
        throw failure();
    } catch (...) {
        KOfflineDb_Destructor(&record_);
        throw;
    }
}

bool Database::load(const fs::path& path) {
    return KOfflineDb_Load(&record_, library_path(path).c_str()) == 1;
}

/// A load gives no words and opens the package for writing; where that cannot be, it is given the files alone.
bool Database::load_copy() {
    const DatabaseFiles source = files();
    const ScratchFolder scratch(temporary_folder());
    const auto copy = [&](const char* name) {
        if (const auto bytes = source.read(name)) write_file(scratch / name, *bytes);
    };
    copy(bom::kSchemaFile);
    std::for_each(bom::kTableFiles.begin(), bom::kTableFiles.end(), copy);
    KOfflineDb_Reset(&record_);
    return load(scratch.path());
}

DatabaseError Database::failure() const {
    return DatabaseError(options_.path, database_error_text(record_.error_code, record_.error_text));
}

DatabaseFiles Database::files() const {
    return DatabaseFiles(options_);
}

std::string_view Database::value(KOfflineTable* table, std::int32_t rec, std::int32_t field) const {
    const char* text = KOfflineTable_GetFldValue(table, rec, field);
    return text ? std::string_view(text) : std::string_view();
}

std::string Database::shown(std::string_view value) const {
    return is_printable(value) ? std::string(value) : names_.shown(value);
}

std::string_view Database::shown(std::string_view value, std::string& room) const {
    if (is_printable(value)) return value;
    room = names_.shown(value);
    return room;
}

std::string Database::typed(const std::string& text) const {
    std::string stored;
    for (std::string_view rest = text; !rest.empty();) {  // piece by piece: values may be longer than names
        const std::size_t length = rest[0] == '\\' ? 4 : std::max<std::size_t>(utf8_length(rest), 1);
        const auto piece = names_.typed(rest.substr(0, length));
        if (!piece) throw Failure(text, "cannot be written in the encoding of the database");
        stored += *piece;
        rest.remove_prefix(std::min(length, rest.size()));
    }
    return stored;
}

}  // namespace tool

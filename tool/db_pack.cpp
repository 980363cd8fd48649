// SPDX-License-Identifier: MIT
// vlt db pack, vlt db unpack
#include <algorithm>
#include <map>

#include "exchange/schema.h"
#include "include/vlt.h"
#include "tool/database.h"
#include "tool/program.h"
#include "tool/progress.h"
#include "tool/safe_names.h"
#include "tool/scratch.h"
#include "tool/stamps.h"
#include "tool/sums.h"

namespace tool {

namespace {

constexpr const char* kDocuments = "docs";  // the folder of documents beside an unpacked database
constexpr std::size_t kPiece = 1 << 18;

struct BothOptions {
    std::string folder, package, encoding;
    Credentials words;
    bool force = false, quiet = false, no_lock = false, sync = false;

    Parameters parameters() {
        return {{"-f,--force", &force, "replace files that exist"},
                {"--encoding", &encoding, "code page of the names of documents; UTF-8 if not given"},
                no_lock_option(no_lock),
                quiet_option(quiet)};
    }
};

struct PackOptions : BothOptions {
    Parameters parameters() {
        return {{"FOLDER", &folder, "the database; every file in it and below is packed", {.required = true}},
                {"PACKAGE", &package, "the package, which is made", {.required = true}},
                sync_option(sync),
                BothOptions::parameters()};
    }
};

struct UnpackOptions : BothOptions {
    Parameters parameters() {
        return {{"PACKAGE", &package, "the package", {.required = true}},
                {"FOLDER", &folder, "the folder; documents go into `docs` in it", {.required = true}},
                words.parameters(Access::read),
                BothOptions::parameters()};
    }
};

bool is_database_file(const std::string& name) {
    return std::find(exchange::kDatabaseFiles.begin(), exchange::kDatabaseFiles.end(), folded(name)) !=
           exchange::kDatabaseFiles.end();
}

/// What was left out, listed at the end.
class LeftOut {
public:
    void add(const std::string& name, const std::string& why) { lines_.push_back(shown_text(name) + ": " + why); }
    int report() const {
        for (const std::string& line : lines_) warn(line);
        return lines_.empty() ? kDone : kFindings;
    }

private:
    std::vector<std::string> lines_;
};

/// The files of a folder by the names under which they are stored: the last components of their paths.
class FolderFiles {
public:
    FolderFiles(const fs::path& folder, const Names& names, LeftOut& left_out)
        : folder_(folder), names_(names), left_out_(left_out) {
        walk(folder);
    }

    const std::map<std::string, fs::path>& files() const { return files_; }

private:
    void walk(const fs::path& folder) {
        std::error_code error;
        std::vector<fs::path> found;
        for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
            found.push_back(at->path());
        if (error) throw Failure(text_of(folder), "cannot be read: " + error.message());
        std::sort(found.begin(), found.end());
        for (const fs::path& path : found) {
            const FileStatus::Kind kind = file_status(path).kind;
            if (kind == FileStatus::Kind::folder)
                walk(path);
            else if (kind == FileStatus::Kind::file)
                add(path, path.parent_path() == folder_);
            else
                left_out_.add(text_of(path), "is neither a file nor a folder; left out");
        }
    }

    void add(const fs::path& path, bool at_top) {
        const std::string text = text_of(path.filename());
        const auto name = names_.stored(text);
        if (!name) return left_out_.add(text_of(path), "its name cannot be stored; left out");
        if (is_database_file(*name) && !at_top)
            return left_out_.add(text_of(path), "bears the name of a database's file; left out");
        const auto [at, fresh] = folded_.try_emplace(folded(*name), path);
        if (!fresh) return left_out_.add(text_of(path), "bears the name of " + text_of(at->second) + "; left out");
        files_[*name] = path;
    }

    const fs::path& folder_;
    const Names& names_;
    LeftOut& left_out_;
    std::map<std::string, fs::path> folded_, files_;
};

void store(Package& package, const std::string& name, const fs::path& path, Progress& progress) {
    HostFile source = HostFile::open(path);
    StoredFile file = package.open_to_write(name);
    std::vector<char> piece(kPiece);
    while (const std::size_t got = source.read(piece.data(), piece.size())) {
        file.write(piece.data(), got);
        progress.advance(got);
    }
    file.close();
    Entry entry;
    entry.name = name;
    entry.created = entry.accessed = entry.written = stamp_of(source.status().written);
    package.set_times(entry);
}

fs::path without_slash(const fs::path& path) {
    return path.has_filename() ? path : path.parent_path();
}

void check_is_database(const std::string& path, const std::string& encoding) {
    DatabaseOptions options;
    options.path = path;
    options.encoding = encoding;
    const Database loaded(options, Access::read);
}

PackageOptions made_package(const fs::path& path, const PackOptions& options) {
    PackageOptions made;
    made.path = text_of(path);
    made.encoding = options.encoding;
    made.no_lock = true;
    made.sync = options.sync;
    return made;
}

int pack(Program&, const PackOptions& options) {
    DatabaseOptions database;
    database.path = options.folder;
    const DatabasePlace place(database);
    if (place.is_package) throw Failure(options.folder, "is no folder");
    const fs::path folder = without_slash(place.path), target = path_of(options.package);
    if (!options.force) check_free(target);
    check_is_database(options.folder, options.encoding);
    LeftOut left_out;
    const Names names(false, options.encoding);
    const FolderFiles found(folder, names, left_out);
    const ScratchFolder scratch(folder_of(target));
    if (!vlt_package_create(library_path(scratch / "new").c_str(), 0, 0, nullptr, nullptr))
        throw Failure(options.package, "cannot be created; is there room on the disk?");
    {
        std::uint64_t bytes = 0;
        for (const auto& [name, path] : found.files()) bytes += static_cast<std::uint64_t>(file_status(path).size);
        Progress progress("pack", bytes, options.quiet);
        Package package(made_package(scratch / "new", options), Access::write);
        for (const auto& [name, path] : found.files()) store(package, name, path, progress);
        package.close();
    }
    check_is_database(text_of(scratch / "new"), options.encoding);
    if (file_status(target).kind == FileStatus::Kind::file && !options.no_lock)
        HostLock(target, HostLock::Mode::exclusive);  // fails where somebody uses what is replaced
    move_file(scratch / "new", target, options.force);
    return left_out.report();
}

void take_out(const Package& package, const Entry& entry, const fs::path& path, Progress& progress) {
    StoredFile file = package.open_to_read(entry);
    HostFile target = HostFile::create_new(path);
    std::vector<char> piece(kPiece);
    while (const std::size_t got = file.read(piece.data(), piece.size())) {
        target.write(piece.data(), got);
        progress.advance(got);
    }
    if (const auto seconds = seconds_of_stamp(entry.written)) target.set_written(*seconds);
    target.close();
}

/// Where each stored file goes, below the folder.
std::map<std::string, Entry> places(const Package& package, LeftOut& left_out) {
    std::map<std::string, Entry> result;
    std::map<std::string, std::string> taken;
    package.for_each([&](const Entry& entry) {
        const std::string name = package.names().plain(entry.name);
        if (entry.of_other_maker) return left_out.add(name, "an entry of another maker; left out");
        if (entry.name == kSumsName) return;
        const std::string refusal = refusal_of(name, NameRules::everywhere);
        if (!refusal.empty() || parts_of_name(name).size() != 1)
            return left_out.add(name, (refusal.empty() ? "names a folder" : refusal) + "; left out");
        const std::string place = is_database_file(name) ? folded(name) : std::string(kDocuments) + "/" + name;
        if (!taken.try_emplace(case_folded(place), name).second)
            return left_out.add(name, "bears the name of another one; left out");
        result.emplace(place, entry);
    });
    return result;
}

int unpack(Program&, const UnpackOptions& options) {
    const fs::path folder = without_slash(path_of(options.folder));
    PackageOptions opened;
    opened.path = options.package;
    opened.words = options.words;
    opened.encoding = options.encoding;
    opened.no_lock = options.no_lock;
    const Package package(opened, Access::read);
    LeftOut left_out;
    const auto files = places(package, left_out);
    if (!files.count(exchange::kDatabaseFiles[0]))
        throw Failure(options.package, "holds no database; `vlt extract` takes files out of any package");
    const bool there = file_status(folder).kind != FileStatus::Kind::missing;
    for (const auto& [place, entry] : files)
        if (there && !options.force) check_free(folder / path_of(place));

    const ScratchFolder scratch(there ? folder : folder_of(folder));
    const fs::path made = scratch / "new";
    make_folder(made / kDocuments);
    {
        std::uint64_t bytes = 0;
        for (const auto& [place, entry] : files) bytes += static_cast<std::uint64_t>(entry.size);
        Progress progress("unpack", bytes, options.quiet);
        for (const auto& [place, entry] : files) take_out(package, entry, made / path_of(place), progress);
    }
    std::error_code error;
    fs::remove(made / kDocuments, error);  // only when it is empty
    if (!there) {
        move_file(made, folder, false);
        return left_out.report();
    }
    make_folder(folder / kDocuments);
    for (const auto& [place, entry] : files) move_file(made / path_of(place), folder / path_of(place), options.force);
    return left_out.report();
}

}  // namespace

void add_db_pack_verbs(Program& program) {
    program.add_verb("db pack", "a folder with a database and its documents into a package", pack, R"(
        vlt db pack examples/bicycle bicycle.vlt)");
    program.add_verb("db unpack", "a package with a database and its documents into a folder", unpack, R"(
        vlt db unpack bicycle.vlt bicycle)");
}

}  // namespace tool

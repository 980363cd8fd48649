// SPDX-License-Identifier: MIT
// vlt cat, vlt extract
#include <algorithm>
#include <memory>
#include <unordered_map>
#include <unordered_set>

#include "tool/new_file.h"
#include "tool/package.h"
#include "tool/patterns.h"
#include "tool/program.h"
#include "tool/progress.h"
#include "tool/read_ahead.h"
#include "tool/safe_names.h"
#include "tool/stamps.h"
#include "tool/sums.h"

namespace tool {

namespace {

constexpr std::size_t kPiece = 1 << 18;

struct CatOptions {
    PackageOptions package;
    std::vector<std::string> names;

    Parameters parameters() {
        return {package.parameters(Access::read), {"NAME", &names, "names of stored files", {.required = true}}};
    }
};

int cat(Program& program, const CatOptions& options) {
    const Package package(options.package, Access::read);
    std::vector<char> piece(kPiece);
    for (const std::string& name : options.names) {
        StoredFile file = package.open_to_read(package.entry_of_argument(name));
        while (const std::size_t length = file.read(piece.data(), piece.size())) {
            program.out().bytes({piece.data(), length});
            check_interrupt();
        }
    }
    return kDone;
}

struct ExtractOptions {
    PackageOptions package;
    std::vector<std::string> patterns;
    std::string folder = ".";
    bool force = false, rename = false, native_names = false, quiet = false;

    Parameters parameters() {
        return {package.parameters(Access::read),
                pattern_arguments(patterns),
                {"-C,--directory", &folder, "the folder to write to; made if it is not there"},
                {"-f,--force", &force, "replace files that are there"},
                {"--rename", &rename, "give safe names to files whose names are refused"},
                {"--native-names", &native_names, "take names that this system can have and others cannot"},
                quiet_option(quiet)};
    }
};

class Extracting {
public:
    Extracting(const Package& package, const ExtractOptions& options, std::vector<Entry> entries)
        : package_(package),
          options_(options),
          entries_(std::move(entries)),
          top_(path_of(options.folder)),
          progress_("extract", bytes_of(entries_), options.quiet),
          ahead_(entries_.size(), [this](std::size_t number) { return open(entries_[number]); }) {}

    void extract_all() {
        for (number_ = 0; number_ < entries_.size(); ++number_) extract(entries_[number_]);
    }

    /// Prints what was not extracted; returns whether there was any.
    bool report() {
        progress_.clear();
        for (const std::string& text : refused_) warn(text);
        return !refused_.empty();
    }

private:
    static std::uint64_t bytes_of(const std::vector<Entry>& entries) {
        std::uint64_t bytes = 0;
        for (const Entry& entry : entries) bytes += static_cast<std::uint64_t>(entry.size);
        return bytes;
    }

    ReadAhead::File open(const Entry& entry) const {
        auto file = std::make_shared<StoredFile>(package_.open_to_read(entry));
        return {[file](char* to, std::size_t room) { return file->read(to, room); }, entry.size};
    }

    void extract(const Entry& entry) {
        std::string name = package_.names().plain(entry.name);
        const auto rules = options_.native_names ? NameRules::native : NameRules::everywhere;
        std::string refusal = refusal_of(name, rules);
        if (options_.rename) name = unused_name(refusal.empty() ? name : safe_name(name)), refusal.clear();
        if (refusal.empty() && !taken_.insert(case_folded(name)).second)
            refusal = "it differs from another in the case of letters or in slashes only";
        if (refusal.empty()) refusal = enter_folder_of(name);
        if (refusal.empty()) refusal = extract_here(entry, path_of(last_part(name)).native());
        if (!refusal.empty()) refused_.push_back(package_.names().shown(entry.name) + ": not extracted: " + refusal);
    }

    static std::string last_part(const std::string& name) { return name.substr(name.find_last_of("/\\") + 1); }

    std::string unused_name(const std::string& name) const {
        std::string candidate = name;
        for (int i = 2; taken_.count(case_folded(candidate)); ++i) candidate = name + "_" + std::to_string(i);
        return candidate;
    }

    /// Opens the folder that a file goes to; stored files that follow each other mostly go to the same one.
    std::string enter_folder_of(const std::string& name) {
        const std::string folder = name.substr(0, name.size() - last_part(name).size());
        if (folder_ && folder == folder_name_) return "";
        fs::path path = top_;
        std::string refusal = make_folders(parts_of_name(name), path);
        if (!refusal.empty()) return refusal;
        folder_name_ = folder;
        folder_ = std::make_shared<const HostFolder>(path);
        folder_is_new_ = entered_[path.native()];
        return "";
    }

    /// Makes the folders of a name. Links that stand there are not followed: they may lead out of the folder.
    std::string make_folders(const std::vector<std::string>& parts, fs::path& path) {
        for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
            path /= path_of(parts[i]);
            if (entered_.count(path.native())) continue;
            const FileStatus status = file_status(path);
            const bool is_new = status.kind == FileStatus::Kind::missing;
            if (is_new) {
                std::error_code error;
                if (!fs::create_directory(path, error)) throw Failure(text_of(path), error.message());
            } else if (status.kind != FileStatus::Kind::folder) {
                const bool link = status.kind == FileStatus::Kind::link;
                return link ? "the link " + text_of(path) + " stands in its way" : text_of(path) + " is no folder";
            }
            entered_[path.native()] = is_new;
        }
        return "";
    }

    /// Why a file cannot be made; empty where it can.
    std::string what_stands_in_its_way(const PathText& name) const {
        const FileStatus there = folder_->status(name);
        if (there.kind == FileStatus::Kind::folder) return "there is a folder of that name";
        const bool replaces = there.kind != FileStatus::Kind::missing && !options_.force;
        return replaces ? "it is there already; -f replaces it" : "";
    }

    std::string extract_here(const Entry& entry, const PathText& name) {
        if (entry.of_other_maker) return "it is an entry of another maker";
        // In a folder of our own nothing stands, but for what the moving refuses to replace.
        std::string refusal = folder_is_new_ ? "" : what_stands_in_its_way(name);
        if (!refusal.empty()) return refusal;
        NewFile made(folder_);
        try {
            copy_to(made.file());
        } catch (const StoredFailure& failure) {
            return failure.what();
        }
        if (const auto written = seconds_of_stamp(entry.written)) made.file().set_written(*written);
        try {
            made.move_to(name, options_.force);
        } catch (const Failure&) {
            refusal = what_stands_in_its_way(name);
            if (refusal.empty()) throw;
        }
        return refusal;
    }

    void copy_to(HostFile& file) {
        for (std::string_view piece; !(piece = ahead_.next(number_)).empty();) {
            file.write(piece.data(), piece.size());
            progress_.advance(piece.size());
        }
        progress_.advance(0);
    }

    const Package& package_;
    const ExtractOptions& options_;
    const std::vector<Entry> entries_;
    fs::path top_;
    Progress progress_;
    std::unordered_set<std::string> taken_;
    std::unordered_map<PathText, bool> entered_;  // folders; whether they were made here
    std::string folder_name_;                     // of the one that is open, as names begin
    std::shared_ptr<const HostFolder> folder_;
    bool folder_is_new_ = false;
    std::vector<std::string> refused_;
    std::size_t number_ = 0;  // of the entry in hand
    ReadAhead ahead_;         // the last member: its thread uses the others
};

/// The sums of a sealed package are its own affair, unless somebody asks for them by their name.
bool names_the_sums(const std::vector<std::string>& patterns) {
    return std::any_of(patterns.begin(), patterns.end(),
                       [](const std::string& pattern) { return folded(pattern) == kSumsName; });
}

int extract(Program&, const ExtractOptions& options) {
    const Package package(options.package, Access::read);
    Selection selection(options.patterns, package.names());
    std::vector<Entry> entries;
    const bool with_sums = names_the_sums(options.patterns);
    package.for_each([&](const Entry& entry) {
        if ((folded(entry.name) == kSumsName && !with_sums) || !selection.selects(entry.name)) return;
        entries.push_back(entry);
    });
    std::error_code error;
    fs::create_directories(path_of(options.folder), error);
    if (error) throw Failure(options.folder, error.message());
    Extracting extracting(package, options, std::move(entries));
    extracting.extract_all();
    const bool refused = extracting.report();
    return selection.report_unused(options.package.path) || refused ? kFindings : kDone;
}

}  // namespace

void add_extract_verbs(Program& program) {
    program.add_verb("cat", "writes stored files to standard output", cat, R"(
        vlt cat plans.vlt notes.txt
        vlt cat plans.vlt drawings/gear.svg > gear.svg)");
    program.add_verb("extract", "writes stored files to a folder", extract, R"(
        vlt extract plans.vlt -C /tmp/plans
        vlt extract plans.vlt 'drawings/*.svg' notes.txt)");
}

}  // namespace tool

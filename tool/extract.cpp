// SPDX-License-Identifier: MIT
// vlt cat, vlt extract
#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "tool/new_file.h"
#include "tool/package.h"
#include "tool/patterns.h"
#include "tool/program.h"
#include "tool/progress.h"
#include "tool/safe_names.h"
#include "tool/stamps.h"
#include "tool/sums.h"

namespace tool {

namespace {

constexpr std::size_t kPiece = 1 << 18;

struct CatOptions {
    PackageOptions package;
    std::vector<std::string> names;
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
};

class Extracting {
public:
    Extracting(const Package& package, const ExtractOptions& options, std::uint64_t bytes)
        : package_(package),
          options_(options),
          top_(path_of(options.folder)),
          progress_("extract", bytes, options.quiet),
          piece_(kPiece) {}

    void extract(const Entry& entry) {
        std::string name = package_.names().plain(entry.name);
        const auto rules = options_.native_names ? NameRules::native : NameRules::everywhere;
        std::string refusal = refusal_of(name, rules);
        if (options_.rename) name = unused_name(refusal.empty() ? name : safe_name(name)), refusal.clear();
        if (refusal.empty() && !taken_.insert(case_folded(name)).second)
            refusal = "it differs from another in the case of letters or in slashes only";
        if (refusal.empty()) refusal = enter_folders(parts_of_name(name));
        if (refusal.empty()) refusal = extract_to(entry, target_of(name));
        if (!refusal.empty()) refused_.push_back(package_.names().shown(entry.name) + ": not extracted: " + refusal);
    }

    /// Prints what was not extracted; returns whether there was any.
    bool report() {
        progress_.clear();
        for (const std::string& text : refused_) warn(text);
        return !refused_.empty();
    }

private:
    fs::path target_of(const std::string& name) const {
        fs::path path = top_;
        for (const std::string& part : parts_of_name(name)) path /= path_of(part);
        return path;
    }

    std::string unused_name(const std::string& name) const {
        std::string candidate = name;
        for (int i = 2; taken_.count(case_folded(candidate)); ++i) candidate = name + "_" + std::to_string(i);
        return candidate;
    }

    /// Makes the folders of a name. Links that stand there are not followed: they may lead out of the folder.
    std::string enter_folders(const std::vector<std::string>& parts) {
        fs::path path = top_;
        for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
            path /= path_of(parts[i]);
            if (entered_.count(path.native())) continue;
            FileStatus status = file_status(path);
            if (status.kind == FileStatus::Kind::missing) {
                std::error_code error;
                if (!fs::create_directory(path, error)) throw Failure(text_of(path), error.message());
                status.kind = FileStatus::Kind::folder;
            }
            if (status.kind == FileStatus::Kind::link) return "the link " + text_of(path) + " stands in its way";
            if (status.kind != FileStatus::Kind::folder) return text_of(path) + " is no folder";
            entered_.insert(path.native());
        }
        return "";
    }

    std::string extract_to(const Entry& entry, const fs::path& target) {
        if (entry.of_other_maker) return "it is an entry of another maker";
        const FileStatus there = file_status(target);
        if (there.kind == FileStatus::Kind::folder) return "there is a folder of that name";
        if (there.kind != FileStatus::Kind::missing && !options_.force) return "it is there already; -f replaces it";
        NewFile made(target.parent_path());
        try {
            copy(package_.open_to_read(entry), made.file());
        } catch (const StoredFailure& failure) {
            return failure.what();
        }
        if (const auto written = seconds_of_stamp(entry.written)) made.file().set_written(*written);
        made.move_to(target, options_.force);
        return "";
    }

    void copy(StoredFile from, HostFile& to) {
        while (const std::size_t length = from.read(piece_.data(), piece_.size())) {
            to.write(piece_.data(), length);
            progress_.advance(length);
        }
        progress_.advance(0);
    }

    const Package& package_;
    const ExtractOptions& options_;
    fs::path top_;
    Progress progress_;
    std::vector<char> piece_;
    std::unordered_set<std::string> taken_;
    std::unordered_set<fs::path::string_type> entered_;
    std::vector<std::string> refused_;
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
    std::uint64_t bytes = 0;
    const bool with_sums = names_the_sums(options.patterns);
    package.for_each([&](const Entry& entry) {
        if ((folded(entry.name) == kSumsName && !with_sums) || !selection.selects(entry.name)) return;
        entries.push_back(entry);
        bytes += static_cast<std::uint64_t>(entry.size);
    });
    std::error_code error;
    fs::create_directories(path_of(options.folder), error);
    if (error) throw Failure(options.folder, error.message());
    Extracting extracting(package, options, bytes);
    for (const Entry& entry : entries) extracting.extract(entry);
    const bool refused = extracting.report();
    return selection.report_unused(options.package.path) || refused ? kFindings : kDone;
}

void add_cat(Program& program) {
    auto options = std::make_shared<CatOptions>();
    Verb verb = program.add_verb("cat", "writes stored files to standard output",
                                 "vlt cat plans.vlt notes.txt\n"
                                 "vlt cat plans.vlt drawings/gear.svg > gear.svg");
    options->package.declare(verb, Access::read);
    verb.add_option("NAME", options->names, "names of stored files").required();
    program.on_run(verb, options, cat);
}

void add_extract(Program& program) {
    auto options = std::make_shared<ExtractOptions>();
    Verb verb = program.add_verb("extract", "writes stored files to a folder",
                                 "vlt extract plans.vlt -C /tmp/plans\n"
                                 "vlt extract plans.vlt 'drawings/*.svg' notes.txt");
    options->package.declare(verb, Access::read);
    verb.add_option("PATTERN", options->patterns, "names, folders, or patterns with * ? [a-z]; all if not given");
    verb.add_option("-C,--directory", options->folder, "the folder to write to; made if it is not there");
    verb.add_flag("-f,--force", options->force, "replace files that are there");
    verb.add_flag("--rename", options->rename, "give safe names to files whose names are refused");
    verb.add_flag("--native-names", options->native_names, "take names that this system can have and others cannot");
    declare_quiet(verb, options->quiet);
    program.on_run(verb, options, extract);
}

}  // namespace

void add_extract_verbs(Program& program) {
    add_cat(program);
    add_extract(program);
}

}  // namespace tool

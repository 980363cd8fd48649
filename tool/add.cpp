// SPDX-License-Identifier: MIT
// vlt add
#include <algorithm>
#include <ctime>
#include <memory>
#include <optional>
#include <unordered_map>

#include "tool/collector.h"
#include "tool/package.h"
#include "tool/program.h"
#include "tool/progress.h"
#include "tool/read_ahead.h"
#include "tool/stamps.h"

namespace tool {

namespace {

struct AddOptions {
    PackageOptions package;
    std::vector<std::string> paths, excluded;
    std::string as, prefix, folder;
    bool update = false, dry_run = false, quiet = false;

    Parameters parameters() {
        return {package.parameters(Access::write),
                {"PATH", &paths, "files and folders; - for standard input", {.required = true}},
                {"--as", &as, "the name of the stored file, or what stands for the folder"},
                {"-C,--directory", &folder, "the folder that paths begin in; it is no part of names"},
                {"--prefix", &prefix, "what names begin with, followed by /"},
                {"--exclude", &excluded, "leave out names that match this pattern; any number of times"},
                {"--update", &update, "leave files alone whose size and time are those of the stored file"},
                {"-n,--dry-run", &dry_run, "print the names only; nothing is stored"},
                quiet_option(quiet)};
    }
};

/// A file of the host that is going to be stored.
struct Planned {
    const SourceFile* source;
    std::string name;     // stored form
    const Entry* before;  // what is stored under it so far, if anything
};

/// A file of the host that cannot be read; the others can be.
struct Unreadable : Failure {
    explicit Unreadable(const Failure& failure) : Failure(failure) {}
};

/// Opens files to be read, one folder after the other.
class Sources {
public:
    ReadAhead::File open(const SourceFile& source) {
        try {
            if (source.folder != opened_) {
                opened_.reset();
                folder_.emplace(source.folder->empty() ? fs::path(".") : *source.folder);
                opened_ = source.folder;
            }
            return {reader(folder_->open(source.last), source.status.size), source.status.size};
        } catch (const Failure& failure) {
            throw Unreadable(failure);
        }
    }

private:
    /// A read that got less than it asked for, and reached the size that was told, reached the end. A file that has
    /// grown since has more than that; what the system makes up when it is read is told as 0.
    static ReadAhead::Read reader(HostFile file, std::int64_t size) {
        auto shared = std::make_shared<HostFile>(std::move(file));
        return [shared, left = size, at_end = false](char* to, std::size_t room) mutable -> std::size_t {
            if (at_end) return 0;
            const std::size_t length = read(*shared, to, room);
            left -= static_cast<std::int64_t>(length);
            at_end = length < room && left == 0;
            return length;
        };
    }

    static std::size_t read(HostFile& file, char* to, std::size_t room) {
        try {
            return file.read(to, room);
        } catch (const Failure& failure) {
            throw Unreadable(failure);
        }
    }

    std::shared_ptr<const fs::path> opened_;
    std::optional<HostFolder> folder_;  // the one in `opened_`
};

/// Stores files one after the other, and notes what could not be stored.
class Adding {
public:
    Adding(Package& package, const AddOptions& options, Output& out, Collector& collector)
        : package_(package),
          options_(options),
          out_(out),
          collector_(collector),
          progress_("add", collector.bytes, options.quiet) {
        package.for_each([&](const Entry& entry) { stored_.emplace(folded(entry.name), entry); });
    }

    void add_all() {
        for (const SourceFile& source : collector_.files) plan(source);
        Sources sources;
        ReadAhead ahead(planned_.size(), [&](std::size_t number) { return sources.open(*planned_[number].source); });
        for (std::size_t number = 0; number < planned_.size(); ++number) {
            const Planned& file = planned_[number];
            try {
                store([&] { return ahead.next(number); }, file);
            } catch (const Unreadable& failure) {
                leave_out(*file.source, failure.what());
            }
        }
    }

    void add_input(const std::string& text) {
        const auto name = package_.names().typed(text);
        if (!name) throw Failure(text, "the package cannot store such a name");
        if (options_.dry_run) return out_.line(package_.names().shown(*name));
        SourceFile source{{}, {}, text, {}};
        source.status.written = static_cast<std::int64_t>(std::time(nullptr));
        HostFile input = HostFile::standard_input();
        std::vector<char> piece(1 << 18);
        const auto next = [&] { return std::string_view(piece.data(), input.read(piece.data(), piece.size())); };
        store(next, {&source, *name, stored_as(folded(*name))});
    }

private:
    /// Decides what becomes of a file before any is read.
    void plan(const SourceFile& source) {
        const auto name = package_.names().stored(source.name);
        if (!name) return leave_out(source, "its name is too long, or has characters that the package cannot store");
        const auto [same, is_new] = added_.emplace(folded(*name), &source);
        if (!is_new) return leave_out(source, "its name differs from '" + same->second->name + "' in case only");
        const Entry* before = stored_as(same->first);
        if (options_.update && before && unchanged(source, *before))
            return progress_.advance(static_cast<std::uint64_t>(source.status.size));
        if (options_.dry_run) return out_.line(package_.names().shown(*name));
        planned_.push_back({&source, *name, before});
    }

    const Entry* stored_as(const std::string& folded_name) const {
        const auto found = stored_.find(folded_name);
        return found == stored_.end() ? nullptr : &found->second;
    }

    static bool unchanged(const SourceFile& source, const Entry& before) {
        return before.size == source.status.size && before.written == stamp_of(source.status.written);
    }

    void leave_out(const SourceFile& source, const std::string& reason) {
        collector_.left_out.push_back({source.name, reason});
    }

    /// Stores a file whole, piece by piece, or removes what was stored of it.
    template <typename Next>
    void store(Next next, const Planned& planned) {
        // Read a first piece before the stored file is emptied: what cannot be read replaces nothing.
        std::string_view piece = next();
        StoredFile file = package_.open_to_write(planned.name);
        try {
            for (; !piece.empty(); piece = next()) {
                file.write(piece.data(), piece.size());
                progress_.advance(piece.size());
            }
            check_interrupt();  // Ctrl-C ends the program before the pipe as well: what came is not all of it
            file.close();
            set_times(planned);
        } catch (...) {
            file.close();
            package_.remove(planned.name);
            progress_.clear();
            warn(package_.path() + ": " + package_.names().shown(planned.name) +
                 ": was stored in part and is removed again");
            throw;
        }
    }

    void set_times(const Planned& planned) {
        Entry entry;
        entry.name = planned.name;
        entry.accessed = entry.written = entry.created = stamp_of(planned.source->status.written);
        if (planned.before) entry.created = planned.before->created;
        package_.set_times(entry);
    }

    Package& package_;
    const AddOptions& options_;
    Output& out_;
    Collector& collector_;
    Progress progress_;
    std::unordered_map<std::string, Entry> stored_;
    std::unordered_map<std::string, const SourceFile*> added_;
    std::vector<Planned> planned_;
};

std::string prefixed(const AddOptions& options, const std::string& name) {
    if (options.prefix.empty() || name.empty()) return options.prefix + name;
    return options.prefix + (options.prefix.back() == '/' ? "" : "/") + name;
}

Collector collect(const AddOptions& options) {
    Collector collector;
    collector.excluded = options.excluded;
    collector.not_this = path_of(options.package.path);
    for (const std::string& text : options.paths) {
        if (text == "-") continue;
        const fs::path path = path_of(options.folder) / path_of(text);
        if (file_status(path).kind == FileStatus::Kind::missing)
            throw Failure(text, "there is no such file or folder");
        collector.collect(path, options.as.empty() ? prefixed(options, name_of_path(path_of(text))) : options.as);
    }
    return collector;
}

void check_usage(const AddOptions& options) {
    const bool input = std::count(options.paths.begin(), options.paths.end(), "-") > 0;
    if (input && (options.as.empty() || options.paths.size() > 1))
        throw Failure("add", "standard input needs a name; give it with --as, and no other path");
    if (!options.as.empty() && options.paths.size() > 1) throw Failure("add", "--as names one file; give one path");
}

int add(Program& program, const AddOptions& options) {
    check_usage(options);
    Collector collector = collect(options);
    Package package(options.package, Access::write);
    {
        Adding adding(package, options, program.out(), collector);
        options.paths.front() == "-" ? adding.add_input(options.as) : adding.add_all();
    }
    package.close();
    for (const LeftOut& each : collector.left_out) warn(shown_text(each.name) + ": left out: " + each.reason);
    return collector.left_out.empty() ? kDone : kFindings;
}

}  // namespace

void add_add_verb(Program& program) {
    program.add_verb("add", "stores files and whole folders", add, R"(
        vlt add plans.vlt drawings notes.txt
        vlt add --update --exclude '*.bak' plans.vlt drawings
        vlt add -C /srv/plans plans.vlt .
        mysqldump shop | vlt add plans.vlt - --as shop.sql)");
}

}  // namespace tool

// SPDX-License-Identifier: MIT
// vlt salvage
#include <fmt/format.h>
#include <algorithm>
#include <nlohmann/json.hpp>

#include "inspect/recover.h"
#include "inspect/stored_bytes.h"
#include "tool/package.h"
#include "tool/program.h"
#include "tool/sealed.h"

namespace tool {

namespace {

struct SalvageOptions {
    PackageOptions package;
    std::string target;
    bool json = false, quiet = false;

    Parameters parameters() {
        return {{"OLD", &package.path, "the damaged package; it is not changed", {.required = true}},
                {"NEW", &target, "the package to make; must not exist", {.required = true}},
                package.place(),
                json_option(json),
                quiet_option(quiet)};
    }
};

/// What becomes of a file.
struct Rescue {
    std::string name;    // stored form
    std::string result;  // whole, short, doubtful, lost
    std::string why;     // for people
    std::int64_t bytes = 0, size = 0;
    inspect::Entry entry = {};     // its times, and where its chain starts
    const Sum* by_runs = nullptr;  // set: its bytes are read where this sum says that they are
};

std::string old_word(const inspect::Package& package, int field) {
    const inspect::Bytes& run = package.map().header_run();
    std::string word;
    for (int i = inspect::kCredentialSize - 1; i >= 0 && run.size() > inspect::kMap; --i) {
        const auto c =
            static_cast<unsigned char>(~run[static_cast<std::size_t>(field) + static_cast<std::size_t>(i)]);
        if (c == 0) break;
        if (c < ' ') return {};  // no text: the field is damaged
        word += static_cast<char>(c);
    }
    return word;
}

/// Makes the new package, and takes it away again unless it was finished.
class NewPackage {
public:
    NewPackage(const std::string& path, const inspect::Package& old, std::string encoding) : path_(path) {
        if (fs::exists(fs::symlink_status(path_of(path))))
            throw Failure(path, "exists already; salvage writes into a new package only");
        options_.path = path;
        options_.encoding = std::move(encoding);
        options_.words = {old_word(old, inspect::kReadCredential), old_word(old, inspect::kWriteCredential)};
        if (!vlt_package_create(library_path(path_of(path)).c_str(), old.wide(), 0, options_.words.read.c_str(),
                                options_.words.write.c_str()))
            throw Failure(path, "cannot be created; is the folder there and writable, and room on the disk?");
        made_ = true;
        package_.emplace(options_, Access::write);
    }
    ~NewPackage() {
        package_.reset();
        std::error_code ignored;
        if (made_ && !finished_) fs::remove(path_of(path_), ignored);
    }
    NewPackage(const NewPackage&) = delete;
    NewPackage& operator=(const NewPackage&) = delete;

    Package& package() { return *package_; }
    void finish() {
        package_->close();
        finished_ = true;
    }

private:
    std::string path_;
    PackageOptions options_;
    std::optional<Package> package_;
    bool made_ = false, finished_ = false;
};

class Salvage {
public:
    Salvage(Inspected& old, NewPackage& target, const SalvageOptions& options, Output& out)
        : old_(old),
          package_(old.package),
          target_(target.package()),
          options_(options),
          out_(out),
          progress_("salvage", old.package.source().size(), options.quiet) {}

    /// Returns whether every file came back whole.
    bool run() {
        const FoundSums found = find_sums(old_, true, progress_);
        std::optional<SealedFiles> sealed;
        if (found.sums) {
            sealed.emplace(old_, *found.sums, progress_);
            for (const auto& [name, sum] : found.sums->by_name) see_sealed(sum, sealed->compare(sum));
        }
        inspect::ForEachFile(package_, [&](const inspect::FileState& state) {
            const bool proven = sealed && sealed->knows(state.entry) && !changed_.count(state.entry.index);
            if (state.entry.index != found.entry && !proven) see_unsealed(state);
        });
        return all_whole_;
    }

private:
    /// A file with a sum: its bytes prove themselves.
    void see_sealed(const Sum& sum, const SealedFile& file) {
        using State = SealedFile::State;
        if (file.state == State::removed) return;
        if (file.state == State::changed) {
            changed_.insert(file.entry->index);
            return;
        }
        Rescue rescue{
            .name = sum.name, .result = "whole", .why = file.entry_fault, .bytes = sum.size, .size = sum.size};
        if (file.entry) rescue.entry = *file.entry;
        rescue.entry.size = sum.size;
        rescue.entry.written = sum.written;
        if (!file.entry) rescue.entry.created = rescue.entry.accessed = sum.written;
        if (file.in_runs || (file.state == State::damaged && (!file.entry || !file.entry_fault.empty())))
            rescue.by_runs = &sum;
        if (file.state == State::damaged) {
            rescue.result = "doubtful";
            rescue.why = "its bytes are not those that were sealed";
            if (rescue.by_runs && !sum.all_runs) rescue.result = "lost";
        }
        bring(std::move(rescue));
    }

    /// A file without a sum, or written after it was sealed: its chain is all there is to go by.
    void see_unsealed(const inspect::FileState& state) {
        Rescue rescue{.name = old_.stored(state.entry.name),
                      .result = "whole",
                      .why = {},
                      .bytes = state.bytes,
                      .size = state.entry.size,
                      .entry = state.entry};
        if (rescue.name.empty() && state.entry.size <= 0) return;
        if (state.entry.kind != inspect::kStoredFile) {
            rescue.result = "lost", rescue.why = "an entry of another maker, of which only the name is known";
        } else if (state.entry.size < 0 || (state.bytes == 0 && state.entry.size > 0)) {
            rescue.result = "lost", rescue.why = "none of its bytes can be found";
        } else if (state.bytes < state.entry.size) {
            rescue.result = "short";
        } else if (state.shared) {
            rescue.result = "doubtful", rescue.why = "shares blocks with " + owner_name(state.shared_with);
        } else if (state.looks_free) {
            rescue.result = "doubtful", rescue.why = "the map calls its blocks free";
        }
        if (state.shared) shared_bytes_ += state.bytes;
        // Any number of entries can lead to the same blocks: they are not to fill the disk.
        if (shared_bytes_ > std::int64_t{2} * package_.block_count() * inspect::kBlock)
            rescue.result = "lost", rescue.why = "one of too many files that share their blocks";
        bring(std::move(rescue));
    }

    std::string owner_name(int owner) const {
        if (owner == inspect::kHeaderOwner) return "the header";
        if (owner == inspect::kDirectoryOwner) return "the directory";
        return "'" + old_.shown(package_.EntryAt(owner).name) + "'";
    }

    void bring(Rescue rescue) {
        if (rescue.result != "lost") write(rescue);
        all_whole_ = all_whole_ && rescue.result == "whole";
        progress_.clear();
        print(rescue);
    }

    /// The name that the file gets: another where a damaged directory has one name twice.
    std::string free_name(const std::string& name) const {
        std::string free = name.substr(0, VLT_NAME_MAX);
        for (int i = 2; target_.find(free); ++i) free = name.substr(0, VLT_NAME_MAX - 8) + fmt::format("~{}", i);
        return free;
    }

    void write(Rescue& rescue) {
        const std::string name = free_name(rescue.name);
        if (name != rescue.name && rescue.result == "whole")
            rescue.result = "doubtful",
            rescue.why = "its name was cut, or is another's too; it is now " + old_.names().shown(name);
        StoredFile file = target_.open_to_write(name);
        const inspect::Sink sink = [&](const std::uint8_t* bytes, std::size_t count) {
            file.write(bytes, count);
            progress_.advance(count);
        };
        const std::int64_t done = rescue.by_runs ? ReadRuns(package_, rescue.by_runs->runs, rescue.bytes, sink)
                                                 : ReadStored(package_, rescue.entry.start(), rescue.bytes, sink);
        file.close();
        if (done < rescue.bytes) rescue.result = "short";
        rescue.bytes = done;
        Entry times{.name = name,
                    .created = rescue.entry.created,
                    .accessed = rescue.entry.accessed,
                    .written = rescue.entry.written};
        for (double* stamp : {&times.created, &times.accessed, &times.written})
            if (!inspect::IsStamp(*stamp)) *stamp = 0;
        target_.set_times(times);
    }

    void print(const Rescue& rescue) {
        if (options_.json) {
            Json object;
            old_.add_name(object, "name", rescue.name);
            object.update(
                {{"result", rescue.result}, {"bytes", rescue.bytes}, {"size", rescue.size}, {"text", rescue.why}});
            return out_.json(object);
        }
        std::string line = fmt::format("{:9} {}", rescue.result, old_.names().shown(rescue.name));
        if (rescue.result == "short") line += fmt::format(" ({} of {} bytes)", rescue.bytes, rescue.size);
        if (!rescue.why.empty()) line += " (" + rescue.why + ")";
        out_.line(line);
    }

    const Inspected& old_;
    const inspect::Package& package_;
    Package& target_;
    const SalvageOptions& options_;
    Output& out_;
    Progress progress_;
    std::unordered_set<int> changed_;  // entries of files that were written after they were sealed
    std::int64_t shared_bytes_ = 0;
    bool all_whole_ = true;
};

int salvage(Program& program, const SalvageOptions& options) {
    Inspected old(options.package);
    if (old.package.block_count() < 2)
        throw Failure(options.package.path, "too short to be a package; nothing is left of it");
    const inspect::Recovered recovered = inspect::Recover(old.package, inspect::ScanBlocks(old.package));
    old.package.TakeOddKinds();
    old.names_changed(options.package.encoding);
    for (const auto& [guessed, what] : {std::pair(recovered.width, "whether its names are wide"),
                                        std::pair(recovered.header, "blocks of its header"),
                                        std::pair(recovered.directory, "blocks of its directory")})
        if (guessed) warn(fmt::format("{}: {} had to be found by their looks", options.package.path, what));
    if (recovered.missing > 0)
        warn(fmt::format("{}: {} blocks of its header or directory were not found", options.package.path,
                         recovered.missing));
    NewPackage target(options.target, old.package, options.package.encoding);
    const bool all_whole = Salvage(old, target, options, program.out()).run();
    target.finish();
    return all_whole && recovered.missing == 0 ? kDone : kFindings;
}

}  // namespace

void add_salvage_verb(Program& program) {
    program.add_verb("salvage", "brings what can be read of a damaged package into a new one", salvage, R"(
        vlt salvage broken.vlt rescued.vlt
        vlt salvage --json broken.vlt rescued.vlt | jq 'select(.result != "whole")')");
}

}  // namespace tool

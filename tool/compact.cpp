// SPDX-License-Identifier: MIT
// vlt compact: writes a package anew, by docs/package-format.md, because the library alone places no blocks.
#include <algorithm>
#include <cstring>

#include "inspect/stored_bytes.h"
#include "tool/inspected.h"
#include "tool/new_file.h"
#include "tool/package.h"
#include "tool/program.h"
#include "tool/progress.h"
#include "tool/sealed.h"

namespace tool {

namespace {

using inspect::kBlock;
using Bytes = std::vector<std::uint8_t>;

struct CompactOptions {
    PackageOptions package;
    std::string target;
    bool quiet = false;

    Parameters parameters() {
        return {{"OLD", &package.path, "the package; it is not changed", {.required = true}},
                {"NEW", &target, "the new package; must not exist", {.required = true}},
                package.options(Access::read),
                sync_option(package.sync),
                quiet_option(quiet)};
    }
};

template <typename Number>
void put(Bytes& bytes, std::size_t at, Number number) {
    for (std::size_t i = 0; i < sizeof number; ++i) bytes[at + i] = static_cast<std::uint8_t>(number >> (8 * i));
}

void put_stamp(Bytes& bytes, std::size_t at, double stamp) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &stamp, sizeof bits);
    put(bytes, at, bits);
}

/// Where everything lies in the new package: the header in blocks 0, 2, 3 ..., the directory in block 1 and behind
/// the header, then the files, each in one run.
class Layout {
public:
    Layout(std::vector<inspect::Entry> entries, bool wide) : entries_(std::move(entries)), wide_(wide) {
        const auto size = static_cast<std::int64_t>(entries_.size()) * inspect::EntrySize(wide);
        directory_blocks_ = std::max<std::int64_t>(inspect::BlocksFor(size), 1);
        std::int64_t data_blocks = 0;
        for (const inspect::Entry& entry : entries_) data_blocks += entry.blocks();
        // A longer header makes the package longer, which may make the header longer still.
        for (header_blocks_ = 1; header_blocks_ < inspect::HeaderBlocksFor(block_count(data_blocks));)
            ++header_blocks_;
        block_count_ = block_count(data_blocks);
    }

    const std::vector<inspect::Entry>& entries() const { return entries_; }

    /// Calls `visit` with each entry and the block that its file begins in.
    template <typename Visit>
    void for_each_file(Visit visit) const {
        std::int64_t block = header_blocks_ + directory_blocks_;
        for (const inspect::Entry& entry : entries_) {
            visit(entry, block);
            block += entry.blocks();
        }
    }

    /// Header and directory, as the blocks that stand before the files.
    Bytes front(const inspect::Bytes& old_header) const {
        Bytes header(static_cast<std::size_t>(header_blocks_ * kBlock)), directory = directory_run();
        std::copy_n(old_header.begin(), inspect::kMap, header.begin());
        link(header, 0, 2, header_blocks_ - 1);
        link(header, 1, header_blocks_ + 1, directory_blocks_ - 1);
        for_each_file([&](const inspect::Entry& entry, std::int64_t block) {
            if (entry.blocks() > 0) link(header, block, block + 1, entry.blocks() - 1);
        });
        Bytes result(header.begin(), header.begin() + kBlock);
        result.insert(result.end(), directory.begin(), directory.begin() + kBlock);
        result.insert(result.end(), header.begin() + kBlock, header.end());
        result.insert(result.end(), directory.begin() + kBlock, directory.end());
        return result;
    }

private:
    std::int64_t block_count(std::int64_t data_blocks) const {
        return header_blocks_ + directory_blocks_ + data_blocks;
    }

    /// Links a block to `more` blocks that lie one after the other from `next` on.
    static void link(Bytes& header, std::int64_t block, std::int64_t next, std::int64_t more) {
        for (; more >= 0; --more, block = next++) {
            const std::uint32_t number = more > 0 ? static_cast<std::uint32_t>(next + 1) : 0;
            put(header, static_cast<std::size_t>(inspect::kMap + 4 * block), inspect::kUsed | number);
        }
    }

    Bytes directory_run() const {
        Bytes run(static_cast<std::size_t>(directory_blocks_ * kBlock));
        std::size_t at = 0;
        for_each_file([&](const inspect::Entry& entry, std::int64_t block) {
            run[at] = static_cast<std::uint8_t>(entry.kind);
            put(run, at + inspect::kFirstBlock, entry.blocks() > 0 ? static_cast<std::uint32_t>(block + 1) : 0u);
            put(run, at + inspect::kSize, static_cast<std::uint64_t>(entry.size));
            put_stamp(run, at + inspect::kCreated, entry.created);
            put_stamp(run, at + inspect::kAccessed, entry.accessed);
            put_stamp(run, at + inspect::kWritten, entry.written);
            put_name(run, at + inspect::kName, entry.name);
            at += static_cast<std::size_t>(inspect::EntrySize(wide_));
        });
        return run;
    }

    void put_name(Bytes& run, std::size_t at, const std::u16string& name) const {
        for (const char16_t unit : name) {
            if (wide_)
                put(run, at, static_cast<std::uint16_t>(unit));
            else
                run[at] = static_cast<std::uint8_t>(unit);
            at += wide_ ? 2 : 1;
        }
    }

    std::vector<inspect::Entry> entries_;
    bool wide_;
    std::int64_t header_blocks_ = 1, directory_blocks_ = 1, block_count_ = 0;
};

/// What the new package holds: the files of the old one, and of a sealed one the sums made anew, because they name
/// the blocks of each file.
class Contents {
public:
    Contents(const Inspected& old, Progress& progress) : old_(old) {
        const FoundSums found = find_sums(old, false, progress);
        if (found.entry < 0 || !found.sums || found.sums->id.empty()) return;
        sums_ = *found.sums;
        sums_entry_ = found.entry;
    }

    const Inspected& old() const { return old_; }

    /// The sums come last: how long they are moves no other file, save by a longer header.
    Layout lay_out(std::vector<inspect::Entry> entries) {
        const auto sums = std::find_if(entries.begin(), entries.end(),
                                       [&](const inspect::Entry& entry) { return entry.index == sums_entry_; });
        if (sums == entries.end()) return {std::move(entries), old_.package.wide()};
        std::rotate(sums, sums + 1, entries.end());
        // Longer sums move files back, if at all, and higher numbers make sums no shorter: so this ends.
        for (entries.back().size = 0;; entries.back().size = static_cast<std::int64_t>(sums_text_.size())) {
            Layout layout(entries, old_.package.wide());
            place_sums(layout);
            if (static_cast<std::int64_t>(sums_text_.size()) == entries.back().size) return layout;
        }
    }

    /// Reads a file whole; a damaged one is no reason to write half of it.
    void read(const inspect::Entry& entry, const inspect::Sink& sink) const {
        if (entry.index == sums_entry_)
            return sink(reinterpret_cast<const std::uint8_t*>(sums_text_.data()), sums_text_.size());
        if (entry.size >= 0 && ReadStored(old_.package, entry.start(), entry.size, sink) == entry.size) return;
        throw Failure(old_.path(), old_.shown(entry.name) + ": damaged; `vlt salvage` saves what can be read");
    }

private:
    void place_sums(const Layout& layout) {
        for (auto& [name, sum] : sums_.by_name) sum.runs.clear(), sum.all_runs = false;
        layout.for_each_file([&](const inspect::Entry& entry, std::int64_t block) {
            const auto sum = sums_.by_name.find(folded(old_.stored(entry.name)));
            if (sum == sums_.by_name.end() || sum->second.size != entry.size) return;
            sum->second.all_runs = true;
            if (entry.blocks() > 0)
                sum->second.runs = {{static_cast<std::int32_t>(block), static_cast<std::int32_t>(entry.blocks())}};
        });
        sums_text_ = sums_.text();
    }

    const Inspected& old_;
    Sums sums_;
    int sums_entry_ = -1;
    std::string sums_text_;
};

void write(const Contents& contents, const Layout& layout, HostFile& file, Progress& progress) {
    const Bytes front = layout.front(contents.old().package.map().header_run());
    file.write(front.data(), front.size());
    const Bytes zeros(kBlock);
    for (const inspect::Entry& entry : layout.entries()) {
        contents.read(entry, [&](const std::uint8_t* bytes, std::size_t count) {
            file.write(bytes, count);
            progress.advance(count);
        });
        file.write(zeros.data(), static_cast<std::size_t>(entry.blocks() * kBlock - entry.size));
    }
}

/// Compares what was written with what should be, byte for byte, and sees that the library opens it.
void compare(const Contents& contents, const Layout& layout, const PackageOptions& made_options, Progress& progress) {
    const inspect::HostFile made(library_path(path_of(made_options.path)));
    const Inspected& old = contents.old();
    Bytes read;
    layout.for_each_file([&](const inspect::Entry& entry, std::int64_t block) {
        std::uint64_t at = static_cast<std::uint64_t>(block) * kBlock;
        contents.read(entry, [&](const std::uint8_t* bytes, std::size_t count) {
            read.resize(count);
            if (made.Read(at, read.data(), count) != count || !std::equal(read.begin(), read.end(), bytes))
                throw Failure(old.path(), old.shown(entry.name) + ": came out different; is the disk sound?");
            at += count;
            progress.advance(count);
        });
    });
    if (Package(made_options, Access::read).entries().size() != layout.entries().size())
        throw Failure(old.path(), "files are missing in the new package");
}

int compact(Program&, const CompactOptions& options) {
    const fs::path target = path_of(options.target);
    if (fs::exists(fs::symlink_status(target))) throw Failure(options.target, "exists already; give a new name");
    Package(options.package, Access::read).close();  // the words are asked for as by any reader
    const Inspected old(options.package);
    std::vector<inspect::Entry> entries;
    std::uint64_t bytes = 0;
    old.package.ForEachEntry([&](const inspect::Entry& entry) {
        if (!entry.used()) return;
        entries.push_back(entry);
        bytes += static_cast<std::uint64_t>(std::max<std::int64_t>(entry.size, 0));
    });
    Progress progress("compact", 2 * bytes, options.quiet);
    Contents contents(old, progress);
    const Layout layout = contents.lay_out(std::move(entries));
    NewFile made(target.has_parent_path() ? target.parent_path() : fs::path("."));
    write(contents, layout, made.file(), progress);
    made.file().close();
    PackageOptions made_options = options.package;
    made_options.path = text_of(made.path());
    made_options.offset = 0;
    compare(contents, layout, made_options, progress);
    if (options.package.sync) sync_file(made.path());
    made.move_to(target.filename().native(), false);
    return kDone;
}

}  // namespace

void add_compact_verb(Program& program) {
    program.add_verb("compact", "writes a package anew: each file in one piece, no free blocks", compact, R"(
        vlt compact plans.vlt plans-small.vlt)");
}

}  // namespace tool

// SPDX-License-Identifier: MIT
// vlt diff
#include <fmt/format.h>
#include <cstring>
#include <map>
#include <nlohmann/json.hpp>

#include "tool/collector.h"
#include "tool/package.h"
#include "tool/program.h"
#include "tool/progress.h"
#include "tool/stamps.h"
#include "tool/sums.h"

namespace tool {

namespace {

struct DiffOptions {
    PackageOptions package;
    std::string left, right;
    bool json = false, ignore_times = false, quiet = false;

    Parameters parameters() {
        return {{"LEFT", &left, "a package or a folder", {.required = true}},
                {"RIGHT", &right, "a package or a folder", {.required = true}},
                package.options(Access::read),
                {"--ignore-times", &ignore_times, "compare sizes and contents only"},
                json_option(json),
                quiet_option(quiet)};
    }
};

using ReadPiece = std::function<std::size_t(char*, std::size_t)>;

/// A file of either side.
struct Item {
    std::string shown;
    std::int64_t size = 0;
    double written = 0;
    std::function<ReadPiece()> open;
};

/// The files of a side by name, without regard to letter case.
using Items = std::map<std::string, Item>;

Items items_of_folder(const std::string& path) {
    Collector collector;
    collector.collect(path_of(path), "");
    for (const LeftOut& each : collector.left_out)
        warn(shown_text(path + "/" + each.name) + ": not compared: " + each.reason);
    Items items;
    for (const SourceFile& file : collector.files) {
        if (folded(file.name) == kSumsName) continue;
        const auto open = [path = file.path()]() -> ReadPiece {
            auto host = std::make_shared<HostFile>(HostFile::open(path));
            return [host](char* to, std::size_t length) {
                std::size_t done = 0;
                while (const std::size_t got = host->read(to + done, length - done)) done += got;
                return done;
            };
        };
        items[folded(file.name)] = {shown_text(file.name), file.status.size, stamp_of(file.status.written), open};
    }
    return items;
}

Items items_of_package(const std::shared_ptr<Package>& package) {
    Items items;
    package->for_each([&](const Entry& entry) {
        if (entry.of_other_maker || folded(entry.name) == kSumsName) return;
        const auto open = [package, entry]() -> ReadPiece {
            auto file = std::make_shared<StoredFile>(package->open_to_read(entry));
            return [package, file](char* to, std::size_t length) { return file->read(to, length); };
        };
        items[folded(package->names().plain(entry.name))] = {package->names().shown(entry.name), entry.size,
                                                             entry.written, open};
    });
    return items;
}

Items items_of(const std::string& path, const DiffOptions& options) {
    if (fs::is_directory(path_of(path))) return items_of_folder(path);
    PackageOptions package = options.package;
    package.path = path;
    return items_of_package(std::make_shared<Package>(package, Access::read));
}

bool same_content(const Item& left, const Item& right, Progress& progress) {
    constexpr std::size_t piece = 1 << 18;
    std::vector<char> a(piece), b(piece);
    const ReadPiece read_left = left.open(), read_right = right.open();
    for (;;) {
        const std::size_t length = read_left(a.data(), piece);
        if (read_right(b.data(), piece) != length || std::memcmp(a.data(), b.data(), length) != 0) return false;
        progress.advance(length);
        if (length == 0) return true;
    }
}

class Differences {
public:
    Differences(const DiffOptions& options, Output& out) : options_(options), out_(out) {}

    void report(const Item& item, const char* change, const std::vector<std::string>& what) {
        found_ = true;
        if (options_.json) return out_.json({{"name", item.shown}, {"change", change}, {"what", what}});
        const bool added = std::strcmp(change, "added") == 0, removed = std::strcmp(change, "removed") == 0;
        const Colour colour = added ? Colour::green : removed ? Colour::red : Colour::yellow;
        const std::string sign = added ? "+ " : removed ? "- " : "~ ";
        out_.line(out_.coloured(sign + item.shown, colour) +
                  (what.empty() ? "" : fmt::format("  ({})", fmt::join(what, ", "))));
    }

    void compare(const Item& left, const Item& right, Progress& progress) {
        std::vector<std::string> what;
        if (left.size != right.size) what.push_back("size");
        if (left.written != right.written && !options_.ignore_times) what.push_back("time");
        if (left.size != right.size || !same_content(left, right, progress)) what.push_back("content");
        if (!what.empty()) report(right, "changed", what);
    }

    bool found() const { return found_; }

private:
    const DiffOptions& options_;
    Output& out_;
    bool found_ = false;
};

int diff(Program& program, const DiffOptions& options) {
    const Items left = items_of(options.left, options), right = items_of(options.right, options);
    std::uint64_t bytes = 0;
    for (const auto& [name, item] : left) bytes += static_cast<std::uint64_t>(item.size);
    Progress progress("diff", bytes, options.quiet);
    Differences differences(options, program.out());
    auto a = left.begin();
    auto b = right.begin();
    while (a != left.end() || b != right.end()) {
        if (b == right.end() || (a != left.end() && a->first < b->first)) {
            differences.report(a->second, "removed", {});
            ++a;
        } else if (a == left.end() || b->first < a->first) {
            differences.report(b->second, "added", {});
            ++b;
        } else {
            differences.compare(a->second, b->second, progress);
            ++a, ++b;
        }
    }
    return differences.found() ? kFindings : kDone;
}

}  // namespace

void add_diff_verb(Program& program) {
    program.add_verb("diff", "compares packages, or a package and a folder", diff, R"(
        vlt diff yesterday.vlt today.vlt
        vlt diff --ignore-times plans.vlt /srv/plans)");
}

}  // namespace tool

// SPDX-License-Identifier: MIT
// vlt sum, vlt seal, and what keeps a sealed package's sums right.
#include "tool/seal.h"

#include <fmt/format.h>
#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <random>
#include <thread>

#include "inspect/check.h"
#include "tool/patterns.h"
#include "tool/program.h"
#include "tool/sealed.h"
#include "tool/stamps.h"

namespace tool {

namespace {

struct SumOptions {
    PackageOptions package;
    std::vector<std::string> patterns;
    bool json = false, quiet = false;

    Parameters parameters() {
        return {package.inspection(), pattern_arguments(patterns), json_option(json), quiet_option(quiet)};
    }
};

struct SealOptions {
    PackageOptions package;
    bool quiet = false, force = false;

    Parameters parameters() {
        return {package.parameters(Access::write),
                {"-f,--force", &force, "seal files too whose bytes have changed without being written"},
                quiet_option(quiet)};
    }
};

std::uint64_t bytes_of(const inspect::Package& package) {
    std::uint64_t bytes = 0;
    package.ForEachEntry([&](const inspect::Entry& entry) {
        if (entry.kind == inspect::kStoredFile && entry.size > 0) bytes += static_cast<std::uint64_t>(entry.size);
    });
    return bytes;
}

int sum(Program& program, const SumOptions& options) {
    const Inspected inspected(options.package);
    inspected.require_package();
    Selection selection(options.patterns, inspected.names());
    Progress progress("sum", bytes_of(inspected.package), options.quiet);
    bool whole = true;
    inspected.package.ForEachEntry([&](const inspect::Entry& entry) {
        const std::string name = inspected.stored(entry.name);
        if (entry.kind != inspect::kStoredFile || name == kSumsName || !selection.selects(name)) return;
        const Sum sum = sum_of(inspected.package, entry, progress);
        progress.clear();
        if (sum.hash.empty()) {
            warn(inspected.path() + ": " + inspected.shown(entry.name) +
                 ": cannot be read to its end; see `vlt check`");
            whole = false;
        } else if (options.json) {
            Json object{{"hash", sum.hash}, {"size", sum.size}};
            inspected.add_name(object, "name", name);
            program.out().json(object);
        } else {
            program.out().line(sum.hash + "  " + inspected.names().plain(name));
        }
    });
    for (const std::string& pattern : selection.unused())
        warn(inspected.path() + ": nothing is named '" + shown_text(pattern) + "'");
    return whole && selection.unused().empty() ? kDone : kFindings;
}

std::string new_id() {
    std::random_device random;
    return fmt::format("{:08x}{:08x}", random(), random());
}

/// A file that is written again within the second of its sum would bear the same time: so that second must be over.
void wait_until_later_than(double written) {
    for (int tries = 0; tries < 30 && written >= stamp_now() && written < stamp_now() + 2e-6; ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

void store(Package& package, const Sums& sums) {
    const std::string text = sums.text();
    StoredFile file = package.open_to_write(kSumsName);
    file.write(text.data(), text.size());
    file.close();
}

/// What its sum said of a file, if it was not written since.
const Sum* standing_sum(const FoundSums& before, const Sum& sum) {
    if (!before.sums) return nullptr;
    const auto found = before.sums->by_name.find(folded(sum.name));
    const bool stands = found != before.sums->by_name.end() && found->second.written == sum.written;
    return stands ? &found->second : nullptr;
}

/// Sums of all files. Fails where files are damaged: their sums would call the damage right.
Sums sums_of_all(const Inspected& inspected, const FoundSums& before, bool force, Progress& progress) {
    Sums sums{before.sums && !before.sums->id.empty() ? before.sums->id : new_id(),
              before.sums ? before.sums->generation + 1 : 1,
              {}};
    inspected.package.ForEachEntry([&](const inspect::Entry& entry) {
        const std::string name = inspected.stored(entry.name);
        if (entry.kind != inspect::kStoredFile || name == kSumsName) return;
        wait_until_later_than(entry.written);
        Sum sum = sum_of(inspected.package, entry, progress);
        const Sum* old = standing_sum(before, sum);
        if (old && old->hash != sum.hash && !force)
            throw Failure(inspected.path(), inspected.names().shown(name) +
                                                ": its bytes are not those that were sealed; "
                                                "see `vlt check`, or give -f to seal them as they are");
        sums.by_name.insert_or_assign(folded(name), std::move(sum));
    });
    return sums;
}

PackageOptions without_lock(PackageOptions options) {
    options.no_lock = true;
    return options;
}

int seal(Program&, const SealOptions& options) {
    Package package(options.package, Access::write);
    const Inspected inspected(without_lock(options.package));  // the package holds the lock
    inspect::Check(inspected.package, [&](const inspect::Finding& finding) {
        if (inspect::SeverityOf(finding.kind) == inspect::Severity::damage)
            throw Failure(options.package.path,
                          "is damaged; `vlt check` tells where, `vlt salvage` rescues what can be read");
    });
    Progress progress("seal", bytes_of(inspected.package), options.quiet);
    const FoundSums before = find_sums(inspected, false, progress);
    store(package, sums_of_all(inspected, before, options.force, progress));
    package.close();
    return kDone;
}

}  // namespace

void keep_sums(Package& package, const Changes& changes) {
    if (changes.none() || changes.written.count(kSumsName) || !package.find(kSumsName)) return;
    const Inspected inspected(without_lock(package.options()));
    Progress progress("sums", 0, false);
    FoundSums found = find_sums(inspected, false, progress);
    if (!found.sums) return;
    Sums& sums = *found.sums;
    if (sums.id.empty()) sums.id = new_id();
    ++sums.generation;
    for (const std::string& name : changes.removed) sums.by_name.erase(name);
    inspected.package.ForEachEntry([&](const inspect::Entry& entry) {
        const std::string name = folded(inspected.stored(entry.name));
        if (entry.kind != inspect::kStoredFile) return;
        const auto old = sums.by_name.find(name);
        if (changes.written.count(name)) {
            wait_until_later_than(entry.written);
            sums.by_name.insert_or_assign(name, sum_of(inspected.package, entry, progress));
        } else if (changes.retimed.count(name) && old != sums.by_name.end()) {
            old->second.written = entry.written;
        }
    });
    store(package, sums);
}

void add_sum_verbs(Program& program) {
    program.add_verb("sum", "sums of the stored files, as `xxh128sum -c` reads them", sum, R"(
        vlt sum plans.vlt > plans.sums
        vlt extract plans.vlt -C plans && cd plans && xxh128sum -c ../plans.sums)");
    program.add_verb("seal", "keeps sums in the package, so that `vlt check` finds changed bytes", seal, R"(
        vlt seal plans.vlt && vlt check plans.vlt)");
}

}  // namespace tool

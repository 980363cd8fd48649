// SPDX-License-Identifier: MIT
// vlt check
#include "inspect/check.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "inspect/recover.h"
#include "tool/inspected.h"
#include "tool/program.h"
#include "tool/sealed.h"

namespace tool {

namespace {

struct CheckOptions {
    PackageOptions package;
    bool json = false, quiet = false, strict = false, no_sums = false;

    Parameters parameters() {
        return {package.inspection(),
                json_option(json),
                {"--strict", &strict, "status 1 for notes too, not for damage alone"},
                {"--no-sums", &no_sums, "look at the structure only, also where `vlt seal` has kept sums"},
                quiet_option(quiet)};
    }
};

/// Prints findings as they come, and counts them.
class Findings {
public:
    Findings(const Inspected& inspected, Output& out, bool json) : inspected_(inspected), out_(out), json_(json) {}

    void add(const inspect::Finding& finding) {
        const bool damage = inspect::SeverityOf(finding.kind) == inspect::Severity::damage;
        ++(damage ? damage_ : notes_);
        json_ ? print_object(finding, damage) : print_line(finding, damage);
    }
    void summary() const {
        if (json_) return;
        out_.line(damage_ + notes_ == 0 ? "sound" : fmt::format("{} damaged, {} to note", damage_, notes_));
    }
    int damage() const { return damage_; }
    int notes() const { return notes_; }

private:
    static bool names_file(const inspect::Finding& finding) { return finding.entry >= 0 || !finding.file.empty(); }
    void print_object(const inspect::Finding& finding, bool damage) {
        Json object{{"kind", inspect::KindName(finding.kind)}, {"severity", damage ? "damage" : "note"}};
        if (names_file(finding))
            inspected_.add_name(object, "file", inspected_.stored(finding.file));
        else
            object["file"] = nullptr;
        object["block"] = finding.block >= 0 ? Json(finding.block) : Json(nullptr);
        object["blocks"] = finding.block >= 0 ? Json(finding.blocks) : Json(nullptr);
        object["text"] = finding.text;
        out_.json(object);
    }
    void print_line(const inspect::Finding& finding, bool damage) {
        std::string line = damage ? out_.coloured("damage", Colour::red) : out_.coloured("note", Colour::yellow);
        line += damage ? "  " : "    ";
        if (names_file(finding)) line += inspected_.shown(finding.file) + ": ";
        line += finding.text;
        if (finding.block >= 0 && finding.blocks == 1) line += fmt::format(" (block {})", finding.block);
        if (finding.block >= 0 && finding.blocks > 1)
            line += fmt::format(" (blocks {} to {})", finding.block, finding.block + finding.blocks - 1);
        out_.line(line);
    }

    const Inspected& inspected_;
    Output& out_;
    bool json_;
    int damage_ = 0, notes_ = 0;
};

inspect::Finding finding_of(inspect::Kind kind, const std::string& text, const std::u16string& file, int entry = -1) {
    return {.kind = kind, .text = text, .entry = entry, .file = file};
}

void report(const Inspected& inspected, const Sum& sum, const SealedFile& file, Findings& findings) {
    using inspect::Kind;
    const std::u16string name = inspected.package_name(sum.name);
    const auto say = [&](Kind kind, const std::string& text) {
        findings.add(finding_of(kind, text, name, file.entry ? file.entry->index : -1));
    };
    if (file.state == SealedFile::State::changed) say(Kind::changed, "written after it was sealed");
    if (file.state == SealedFile::State::removed) say(Kind::removed, "removed after it was sealed");
    if (file.state == SealedFile::State::damaged) say(Kind::contents, "its bytes are not those that were sealed");
    if (!file.entry_fault.empty())
        say(Kind::entry, file.entry_fault);
    else if (file.in_runs)
        say(Kind::entry, "its bytes are where they were sealed, but nothing leads there");
}

void compare_all(const Inspected& inspected, const FoundSums& found, Findings& findings, Progress& progress) {
    const SealedFiles files(inspected, *found.sums, progress);
    for (const auto& [name, sum] : found.sums->by_name) {
        const SealedFile file = files.compare(sum);
        progress.clear();
        report(inspected, sum, file, findings);
    }
    inspected.package.ForEachEntry([&](const inspect::Entry& entry) {
        if (entry.kind == inspect::kStoredFile && entry.index != found.entry && !files.knows(entry))
            findings.add(finding_of(inspect::Kind::unsealed, "has no sum", entry.name, entry.index));
    });
}

/// Compares the files with their sums, if there are any. Where the header or the directory is damaged, both are put
/// together first.
void check_contents(Inspected& inspected, Findings& findings, bool quiet) {
    Progress progress("check", static_cast<std::uint64_t>(inspected.package.source().size()), quiet);
    if (findings.damage() > 0) inspect::Recover(inspected.package, inspect::ScanBlocks(inspected.package));
    const FoundSums found = find_sums(inspected, findings.damage() + findings.notes() > 0, progress);
    if (found.entry >= 0 && (found.damaged || found.renamed))
        findings.add(finding_of(
            found.damaged ? inspect::Kind::contents : inspect::Kind::entry,
            found.damaged ? "sums are damaged; each stands there twice" : "holds the sums, but bears another name",
            inspected.package.EntryAt(found.entry).name, found.entry));
    if (found.sums) compare_all(inspected, found, findings, progress);
}

int check(Program& program, const CheckOptions& options) {
    Inspected inspected(options.package);
    Findings findings(inspected, program.out(), options.json);
    inspect::Check(inspected.package, [&](const inspect::Finding& finding) { findings.add(finding); });
    if (!options.no_sums) check_contents(inspected, findings, options.quiet);
    findings.summary();
    return findings.damage() > 0 || (options.strict && findings.notes() > 0) ? kFindings : kDone;
}

}  // namespace

void add_check_verb(Program& program) {
    program.add_verb("check", "looks for damage; changes nothing", check, R"(
        vlt check plans.vlt
        vlt check --json plans.vlt | jq 'select(.severity == "damage")')");
}

}  // namespace tool

// SPDX-License-Identifier: MIT
// vlt rm, vlt touch
#include "tool/package.h"
#include "tool/patterns.h"
#include "tool/program.h"
#include "tool/stamps.h"

namespace tool {

namespace {

struct ChangeOptions {
    PackageOptions package;
    std::vector<std::string> patterns;
    bool dry_run = false;

    Parameters parameters() {
        return {package.parameters(Access::write),
                {"NAME", &patterns, "names, or patterns with * ? [a-z]", {.required = true}},
                {"-n,--dry-run", &dry_run, "print the names only; nothing is changed"}};
    }
};

struct RemoveOptions : ChangeOptions {
    bool folders = false;

    Parameters parameters() {
        return {ChangeOptions::parameters(),
                {"-r,--recursive", &folders, "a name stands for everything below it, too"}};
    }
};

struct TouchOptions : ChangeOptions {
    std::string time;
    bool no_create = false;

    Parameters parameters() {
        return {ChangeOptions::parameters(),
                {"-t,--time", &time, "local time, such as 2005-03-21T14:07:09; now if not given"},
                {"-c,--no-create", &no_create, "make no files"}};
    }
};

std::vector<Entry> selected(const Package& package, Selection& selection) {
    std::vector<Entry> entries;
    package.for_each([&](const Entry& entry) {
        if (selection.selects(entry.name)) entries.push_back(entry);
    });
    return entries;
}

void announce(Program& program, const Package& package, const std::vector<Entry>& entries) {
    for (const Entry& entry : entries) program.out().line(package.names().shown(entry.name));
}

int remove(Program& program, const RemoveOptions& options) {
    Package package(options.package, Access::write);
    Selection selection(options.patterns, package.names(), options.folders ? Folders::whole : Folders::none);
    const std::vector<Entry> entries = selected(package, selection);
    if (options.dry_run) announce(program, package, entries);
    bool left = false;
    for (const Entry& entry : entries) {
        if (entry.of_other_maker) {
            warn(package.path() + ": " + package.names().shown(entry.name) +
                 ": not removed: an entry of another maker");
            left = true;
        } else if (!options.dry_run) {
            package.remove(entry.name);
        }
    }
    package.close();
    return selection.report_unused(options.package.path) || left ? kFindings : kDone;
}

void set_times(Package& package, Entry entry, double stamp) {
    entry.accessed = entry.written = stamp;
    package.set_times(entry);
}

/// Names that are not there yet become empty files, patterns do not.
bool make_missing(Program& program, Package& package, const std::string& text, const TouchOptions& options,
                  double stamp) {
    const auto name = package.names().typed(text);
    if (options.no_create || is_pattern(text) || !name) return false;
    if (options.dry_run) return program.out().line(package.names().shown(*name)), true;
    package.open_to_write(*name).close();
    Entry entry = *package.find(*name);
    entry.created = stamp;
    set_times(package, entry, stamp);
    return true;
}

int touch(Program& program, const TouchOptions& options) {
    const auto stamp = options.time.empty() ? stamp_now() : stamp_of_text(options.time);
    if (!stamp) throw Failure(options.time, "not a time; write 2005-03-21 or 2005-03-21T14:07:09");
    Package package(options.package, Access::write);
    Selection selection(options.patterns, package.names(), Folders::none);
    const std::vector<Entry> entries = selected(package, selection);
    if (options.dry_run)
        announce(program, package, entries);
    else
        for (const Entry& entry : entries) set_times(package, entry, *stamp);
    int status = kDone;
    for (const std::string& text : selection.unused()) {
        if (make_missing(program, package, text, options, *stamp)) continue;
        warn(options.package.path + ": nothing is named '" + shown_text(text) + "'");
        status = kFindings;
    }
    package.close();
    return status;
}

}  // namespace

void add_change_verbs(Program& program) {
    program.add_verb("rm", "removes stored files", remove, R"(
        vlt rm plans.vlt notes.txt
        vlt rm --dry-run plans.vlt '*.bak'
        vlt rm -r plans.vlt drawings)");
    program.add_verb("touch", "sets the times of stored files; makes those that are missing", touch, R"(
        vlt touch plans.vlt notes.txt
        vlt touch -t 2005-03-21T14:07:09 plans.vlt 'drawings/*')");
}

}  // namespace tool

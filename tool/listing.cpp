// SPDX-License-Identifier: MIT
// vlt ls
#include <algorithm>
#include <cstring>
#include <nlohmann/json.hpp>

#include "tool/package.h"
#include "tool/patterns.h"
#include "tool/program.h"
#include "tool/stamps.h"

namespace tool {

namespace {

struct ListOptions {
    PackageOptions package;
    std::vector<std::string> patterns;
    std::string sort;
    bool json = false, zero = false, details = false, tree = false, reverse = false;

    Parameters parameters() {
        const Rule keys{.choices = {"name", "size", "written", "created"}};
        return {package.parameters(Access::read),
                pattern_arguments(patterns),
                {"-l,--long", &details, "sizes, blocks, times and kinds"},
                {"--sort", &sort, "name, size, written or created; order of the directory if not given", keys},
                reverse_option(reverse),
                {"--tree", &tree, "names with / as folders"},
                json_option(json),
                {"-0,--null", &zero, "names alone, a zero byte behind each"}};
    }
};

Json json_stamp(double stamp) {
    const std::string text = stamp_text(stamp, 'T');
    return text.empty() ? Json(nullptr) : Json(text);
}

Json json_entry(const Entry& entry, const Names& names) {
    Json object{{"name", names.shown(entry.name)},
                {"size", entry.size},
                {"kind", entry.of_other_maker ? "other" : "file"},
                {"created", json_stamp(entry.created)},
                {"accessed", json_stamp(entry.accessed)},
                {"written", json_stamp(entry.written)}};
    if (!names.is_text(entry.name)) object["name_hex"] = names.hex(entry.name);
    return object;
}

std::int64_t blocks_of(std::int64_t size) {
    return (size + VLT_BLOCK_SIZE - 1) / VLT_BLOCK_SIZE;
}

void print_details(const std::vector<Entry>& entries, const Names& names, Output& out) {
    using Align = Table::Align;
    Table table({{"size", Align::right},
                 {"blocks", Align::right},
                 {"written"},
                 {"created"},
                 {"accessed"},
                 {"kind"},
                 {"name"}});
    const auto time = [](double stamp) {
        const std::string text = stamp_text(stamp, ' ');
        return text.empty() ? std::string("-") : text;
    };
    for (const Entry& entry : entries)
        table.row({std::to_string(entry.size), std::to_string(blocks_of(entry.size)), time(entry.written),
                   time(entry.created), time(entry.accessed), entry.of_other_maker ? "other" : "file",
                   names.shown(entry.name)});
    table.print(out);
}

/// Names with '/' as folders; a folder stands once, above what lies in it.
void print_tree(std::vector<Entry> entries, const Names& names, Output& out) {
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.name < b.name; });
    std::vector<std::string> folders;
    for (const Entry& entry : entries) {
        std::vector<std::string> parts(1);
        for (const char c : names.shown(entry.name))
            if (c == '/')
                parts.emplace_back();
            else
                parts.back() += c;
        std::size_t depth = 0;
        while (depth < folders.size() && depth + 1 < parts.size() && folders[depth] == parts[depth]) ++depth;
        folders.assign(parts.begin(), parts.end() - 1);
        for (; depth < folders.size(); ++depth)
            out.line(std::string(depth * 2, ' ') + out.coloured(folders[depth] + "/", Colour::blue));
        out.line(std::string(depth * 2, ' ') + parts.back());
    }
}

void sort_entries(std::vector<Entry>& entries, const std::string& key, bool reverse) {
    const auto by = [&](auto less) { std::stable_sort(entries.begin(), entries.end(), less); };
    if (key == "name") by([](const Entry& a, const Entry& b) { return folded(a.name) < folded(b.name); });
    if (key == "size") by([](const Entry& a, const Entry& b) { return a.size < b.size; });
    if (key == "written") by([](const Entry& a, const Entry& b) { return a.written < b.written; });
    if (key == "created") by([](const Entry& a, const Entry& b) { return a.created < b.created; });
    if (reverse) std::reverse(entries.begin(), entries.end());
}

void print_names(const std::vector<Entry>& entries, const ListOptions& options, const Names& names, Output& out) {
    for (const Entry& entry : entries) {
        if (options.json)
            out.json(json_entry(entry, names));
        else if (options.zero)
            out.bytes(names.plain(entry.name) + '\0');
        else
            out.line(names.shown(entry.name));
    }
}

int list(Program& program, const ListOptions& options) {
    const Package package(options.package, Access::read);
    Selection selection(options.patterns, package.names());
    std::vector<Entry> entries;
    package.for_each([&](const Entry& entry) {
        if (selection.selects(entry.name)) entries.push_back(entry);
    });
    sort_entries(entries, options.sort, options.reverse);
    Output& out = program.out();
    if (options.tree)
        print_tree(std::move(entries), package.names(), out);
    else if (options.details && !options.json)
        print_details(entries, package.names(), out);
    else
        print_names(entries, options, package.names(), out);
    return selection.report_unused(options.package.path) ? kFindings : kDone;
}

}  // namespace

void add_ls_verb(Program& program) {
    program.add_verb("ls", "names of the stored files", list, R"(
        vlt ls plans.vlt
        vlt ls -l --sort size plans.vlt 'drawings/*.svg'
        vlt ls --json plans.vlt | jq .size)");
}

}  // namespace tool

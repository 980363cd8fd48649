// SPDX-License-Identifier: MIT
// vlt info
#include <fmt/format.h>
#include <algorithm>
#include <nlohmann/json.hpp>

#include "inspect/claims.h"
#include "tool/inspected.h"
#include "tool/program.h"

namespace tool {

namespace {

struct InfoOptions {
    PackageOptions package;
    bool json = false;

    Parameters parameters() { return {package.inspection(), json_option(json)}; }
};

struct Figures {
    std::int64_t used = 0, free = 0, lost = 0, largest_free = 0;
    std::int64_t files = 0, others = 0, bytes = 0, file_blocks = 0, runs = 0;
};

void count_blocks(const inspect::Package& package, const inspect::Claims& claims, Figures& figures) {
    std::int64_t free_run = 0;
    for (std::int32_t block = 0; block < package.block_count(); ++block) {
        const bool used = package.map().Used(block);
        ++(used ? figures.used : figures.free);
        free_run = used ? 0 : free_run + 1;
        figures.largest_free = std::max(figures.largest_free, free_run);
        figures.lost += used && !claims.Held(block);
        // Where a chain does not go on in the block that follows, one of its runs ends.
        if (claims.Held(block) && package.map().Next(block) != block + 1) ++figures.runs;
    }
    for (const inspect::OwnChain* chain : {&package.header(), &package.directory()})
        for (const std::int32_t block : chain->blocks) figures.runs -= package.map().Next(block) != block + 1;
}

Figures count(const inspect::Package& package) {
    Figures figures;
    const inspect::Claims claims(package, [&](const inspect::Claim& claim, const inspect::Entry& entry) {
        if (claim.owner < 0) return;
        ++(entry.kind == inspect::kStoredFile ? figures.files : figures.others);
        figures.bytes += std::clamp<std::int64_t>(entry.size, 0, claim.length * inspect::kBlock);
        figures.file_blocks += claim.length;
    });
    count_blocks(package, claims, figures);
    return figures;
}

bool word_set(const inspect::Package& package, int field) {
    const auto* at = package.map().header_run().data() + field;
    return std::any_of(at, at + inspect::kCredentialSize, [](std::uint8_t byte) { return byte != 0xFF; });
}

Json object_of(const Inspected& inspected, const Figures& figures) {
    const inspect::Package& package = inspected.package;
    return {{"package", shown_text(inspected.path())},
            {"names", package.wide() ? "wide" : "narrow"},
            {"read_word", word_set(package, inspect::kReadCredential)},
            {"write_word", word_set(package, inspect::kWriteCredential)},
            {"host_size", package.source().size()},
            {"offset", package.base()},
            {"blocks", package.block_count()},
            {"used", figures.used},
            {"free", figures.free},
            {"lost", figures.lost},
            {"largest_free", figures.largest_free},
            {"header_blocks", package.header().blocks.size()},
            {"directory_blocks", package.directory().blocks.size()},
            {"places", package.entry_count()},
            {"files", figures.files},
            {"others", figures.others},
            {"bytes", figures.bytes},
            {"runs", figures.runs}};
}

std::string in_blocks(std::int64_t blocks) {
    return fmt::format("{} ({})", blocks, size_text(static_cast<double>(blocks) * inspect::kBlock));
}

void print(const Inspected& inspected, const Figures& figures, Output& out) {
    const inspect::Package& package = inspected.package;
    const auto line = [&](const char* what, const std::string& text) {
        out.line(fmt::format("{:14}{}", what, text));
    };
    const auto set = [&](int field) { return word_set(package, field) ? "set" : "not set"; };
    line("names", package.wide() ? "wide (UTF-16)" : "narrow (bytes)");
    line("words", fmt::format("read {}, write {}", set(inspect::kReadCredential), set(inspect::kWriteCredential)));
    line("host file", fmt::format("{} bytes, package at {}", package.source().size(), package.base()));
    line("blocks", in_blocks(package.block_count()));
    line("  used", in_blocks(figures.used));
    line("  free", in_blocks(figures.free) + ", largest run " + in_blocks(figures.largest_free));
    line("  lost", in_blocks(figures.lost));
    line("header", fmt::format("{} blocks", package.header().blocks.size()));
    line("directory", fmt::format("{} blocks, {} places, {} free", package.directory().blocks.size(),
                                  package.entry_count(), package.entry_count() - figures.files - figures.others));
    line("files", fmt::format("{}, {} bytes ({})", figures.files, figures.bytes,
                              size_text(static_cast<double>(figures.bytes))));
    if (figures.others > 0) line("others", fmt::format("{} entries of other makers", figures.others));
    const auto per_file =
        static_cast<double>(figures.runs) / static_cast<double>(std::max<std::int64_t>(figures.files, 1));
    line("fragments", fmt::format("{} runs, {:.2f} a file", figures.runs, per_file));
}

int info(Program& program, const InfoOptions& options) {
    const Inspected inspected(options.package);
    inspected.require_package();
    const Figures figures = count(inspected.package);
    if (options.json)
        program.out().json(object_of(inspected, figures));
    else
        print(inspected, figures, program.out());
    return kDone;
}

}  // namespace

void add_info_verb(Program& program) {
    program.add_verb("info", "what a package is made of: blocks, files, fragments", info, R"(
        vlt info plans.vlt
        vlt info --json plans.vlt | jq .free)");
}

}  // namespace tool

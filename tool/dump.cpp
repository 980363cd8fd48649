// SPDX-License-Identifier: MIT
// vlt dump: the bytes of a package, in the words of docs/package-format.md.
#include <fmt/format.h>
#include <algorithm>

#include "tool/inspected.h"
#include "tool/program.h"
#include "tool/stamps.h"

namespace tool {

namespace {

struct DumpOptions {
    PackageOptions package;
    bool header = false, map = false;
    std::string chain, entry;
    std::int32_t block = -1;

    Parameters parameters() {
        return {
            package.inspection(),
            {"--header", &header, "the header's fields and the package's own chains; what is shown without options"},
            {"--map", &map, "the block map"},
            {"--chain", &chain, "the blocks of a stored file"},
            {"--entry", &entry, "the directory entry of a stored file"},
            {"--block", &block, "the bytes of a block, by its index"}};
    }
};

std::string hex(const std::uint8_t* bytes, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += fmt::format("{}{:02x}", i > 0 ? " " : "", bytes[i]);
    return text;
}

/// Bytes as 16 a line with their offset in the host file; rows that repeat the one above stand as `*`.
void print_bytes(const std::uint8_t* bytes, std::size_t count, std::uint64_t offset, Output& out) {
    bool repeated = false;
    for (std::size_t at = 0; at < count; at += 16) {
        const std::size_t width = std::min<std::size_t>(16, count - at);
        const bool repeats = at > 0 && width == 16 && std::equal(bytes + at, bytes + at + 16, bytes + at - 16);
        if (repeats && !repeated) out.line("*");
        repeated = repeats;
        if (repeats) continue;
        std::string text;
        for (std::size_t i = at; i < at + width; ++i)
            text += bytes[i] >= ' ' && bytes[i] < 0x7F ? static_cast<char>(bytes[i]) : '.';
        out.line(fmt::format("{:08x}  {:48} |{}|", offset + at, hex(bytes + at, width), text));
    }
}

struct Field {
    int offset, size;
    const char* name;
};

void print_fields(const inspect::Bytes& run, const std::vector<Field>& fields, std::uint64_t host_offset,
                  Output& out) {
    out.line(fmt::format("{:>8}  {:>6}  {:>4}  {:18}  {}", "host", "offset", "size", "field", "bytes"));
    for (const Field& field : fields)
        out.line(fmt::format("{:08x}  {:>6}  {:>4}  {:18}  {}",
                             host_offset + static_cast<std::uint64_t>(field.offset), field.offset, field.size,
                             field.name, hex(run.data() + field.offset, static_cast<std::size_t>(field.size))));
}

void print_chain(const std::vector<std::int32_t>& chain, Output& out) {
    for (std::size_t at = 0; at < chain.size();) {
        std::size_t end = at + 1;
        while (end < chain.size() && chain[end] == chain[end - 1] + 1) ++end;
        out.line(fmt::format("  position {}: {} from block {} on", at,
                             end - at == 1 ? "1 block" : fmt::format("{} blocks", end - at), chain[at]));
        at = end;
    }
}

void print_header(const Inspected& inspected, Output& out) {
    const inspect::Package& package = inspected.package;
    out.line(fmt::format("header of {}, {} blocks, {} map words", shown_text(inspected.path()),
                         package.header().blocks.size(), package.map().word_count()));
    print_fields(package.map().header_run(),
                 {{0, 4, "magic"},
                  {4, 1, "format byte"},
                  {inspect::kReadCredential, inspect::kCredentialSize, "read credential"},
                  {inspect::kWriteCredential, inspect::kCredentialSize, "write credential"},
                  {37, 64, "reserved"}},
                 package.base(), out);
    out.line("header chain");
    print_chain(package.header().blocks, out);
    out.line("directory chain");
    print_chain(package.directory().blocks, out);
}

std::string word_text(const inspect::BlockMap& map, std::int32_t block) {
    const std::uint32_t word = map.Word(block);
    const std::string next =
        map.Next(block) < 0 ? "the last of its chain" : fmt::format("next is block {}", map.Next(block));
    const char* odd = word & inspect::kUnused ? ", bits that mean nothing" : "";
    return fmt::format("{:08x}  {}{}", word, word == 0 ? "free" : map.Used(block) ? next : "free, yet " + next, odd);
}

/// Blocks in a row that lead to the one behind them, or are free, share a line.
void print_map(const inspect::Package& package, Output& out) {
    const inspect::BlockMap& map = package.map();
    const auto same = [&](std::int32_t block) {
        const std::uint32_t word = map.Word(block), before = map.Word(block - 1);
        return word == 0 ? before == 0 : map.Next(block) == block + 1 && word == before + 1;
    };
    for (std::int32_t block = 0; block < package.block_count();) {
        std::int32_t end = block + 1;
        while (end < package.block_count() && same(end)) ++end;
        if (end - block == 1)
            out.line(fmt::format("block {:>9}             {}", block, word_text(map, block)));
        else
            out.line(fmt::format("block {:>9} to {:<9}{}", block, end - 1,
                                 map.Word(block) == 0
                                     ? "00000000  free"
                                     : fmt::format("{:08x}  each leads to the next", map.Word(block))));
        block = end;
    }
}

void print_entry(const Inspected& inspected, const inspect::Entry& entry, Output& out) {
    const inspect::Package& package = inspected.package;
    const auto size = static_cast<std::size_t>(package.entry_size());
    const std::uint64_t position = static_cast<std::uint64_t>(entry.index) * size;
    inspect::Bytes bytes(size);
    package.ReadRun(package.directory(), position, bytes.data(), size);
    const std::int32_t block = package.directory().blocks[static_cast<std::size_t>(position / inspect::kBlock)];
    out.line(
        fmt::format("entry {} of {}: {}", entry.index, shown_text(inspected.path()), inspected.shown(entry.name)));
    out.line(fmt::format("  kind {}, first block {}, {} bytes", entry.kind, entry.start(), entry.size));
    for (const auto& [what, stamp] : {std::pair("made", entry.created), std::pair("accessed", entry.accessed),
                                      std::pair("written", entry.written)})
        out.line(fmt::format("  {:8}  {:<20}  {}", what, stamp, stamp_text(stamp, ' ')));
    const auto name_units = static_cast<int>(std::min<std::size_t>(entry.name.size() + 1, inspect::kNameMax + 1));
    print_fields(bytes,
                 {{0, 1, "kind"},
                  {inspect::kFirstBlock, 4, "first block"},
                  {inspect::kSize, 8, "length"},
                  {inspect::kCreated, 8, "stamp: made"},
                  {inspect::kAccessed, 8, "stamp: accessed"},
                  {inspect::kWritten, 8, "stamp: written"},
                  {inspect::kName, name_units * (package.wide() ? 2 : 1), "name"}},
                 package.OffsetOf(block) + position % inspect::kBlock, out);
}

void print_block(const Inspected& inspected, std::int32_t block, Output& out) {
    const inspect::Package& package = inspected.package;
    if (block >= package.block_count())
        throw Failure(inspected.path(), fmt::format("has {} blocks, counted from 0", package.block_count()));
    std::uint8_t bytes[inspect::kBlock];
    out.line(fmt::format("block {}, map word {}", block, word_text(package.map(), block)));
    if (!package.ReadBlock(block, bytes)) out.line("  (cannot be read whole; zeros stand for what is missing)");
    print_bytes(bytes, sizeof bytes, package.OffsetOf(block), out);
}

int dump(Program& program, const DumpOptions& options) {
    const Inspected inspected(options.package);
    if (inspected.package.block_count() < 2) throw Failure(options.package.path, "too short to be a package");
    Output& out = program.out();
    const bool others = options.map || options.block >= 0 || !options.chain.empty() || !options.entry.empty();
    if (options.header || !others) print_header(inspected, out);
    if (options.map) print_map(inspected.package, out);
    if (!options.entry.empty()) print_entry(inspected, inspected.entry_of_argument(options.entry), out);
    if (!options.chain.empty()) {
        const inspect::Entry entry = inspected.entry_of_argument(options.chain);
        out.line("chain of " + inspected.shown(entry.name));
        print_chain(inspected.package.map().Chain(entry.start()), out);
    }
    if (options.block >= 0) print_block(inspected, options.block, out);
    return kDone;
}

}  // namespace

void add_dump_verb(Program& program) {
    program.add_verb("dump", "the bytes of a package, in the words of its format", dump, R"(
        vlt dump plans.vlt
        vlt dump --map plans.vlt
        vlt dump --entry cover.svg --chain cover.svg plans.vlt
        vlt dump --block 7 plans.vlt)");
}

}  // namespace tool

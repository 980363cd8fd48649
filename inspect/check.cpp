// SPDX-License-Identifier: MIT
#include "inspect/check.h"

#include <algorithm>
#include <iterator>

#include "inspect/claims.h"

namespace inspect {

namespace {

constexpr struct {
    const char* name;
    Severity severity;
} kKinds[] = {
    {"magic", Severity::damage},      {"header", Severity::damage},  {"directory", Severity::damage},
    {"map-word", Severity::damage},   {"chain", Severity::damage},   {"shared", Severity::damage},
    {"free-block", Severity::damage}, {"size", Severity::damage},    {"name", Severity::damage},
    {"contents", Severity::damage},   {"entry", Severity::damage},   {"lost", Severity::note},
    {"surplus", Severity::note},      {"short-map", Severity::note}, {"torn-word", Severity::note},
    {"stamp", Severity::note},        {"changed", Severity::note},   {"removed", Severity::note},
    {"unsealed", Severity::note},
};

std::string Number(std::int64_t value) {
    return std::to_string(value);
}

std::string OwnerName(int owner) {
    if (owner == kHeaderOwner) return "the header";
    if (owner == kDirectoryOwner) return "the directory";
    return "entry " + Number(owner);
}

/// Makes one finding of blocks in a row.
class Gatherer {
public:
    Gatherer(const Report& report, Finding finding) : report_(report), finding_(std::move(finding)) {}

    void Add(std::int32_t block) {
        if (finding_.block >= 0 && block == finding_.block + finding_.blocks) {
            ++finding_.blocks;
            return;
        }
        Flush();
        finding_.block = block;
        finding_.blocks = 1;
    }
    void Flush() {
        if (finding_.block >= 0) report_(finding_);
        finding_.block = -1;
    }

private:
    const Report& report_;
    Finding finding_;
};

class Checker {
public:
    Checker(const Package& package, const Report& report) : package_(package), map_(package.map()), report_(report) {}

    void Run() {
        if (!package_.is_package()) return report_({.kind = Kind::magic, .text = WhyNoPackage()});
        CheckHeaderLength();
        const Claims claims(package_, [&](const Claim& claim, const Entry& entry) { See(claim, entry); });
        for (const Share& share : claims.shares()) SeeShare(share);
        CheckWords(claims);
        CheckDirectoryEnd();
        CheckNames();
    }

private:
    std::string WhyNoPackage() const {
        return package_.block_count() < 2 ? "there are not even two blocks" : "it does not begin like a package";
    }

    void CheckHeaderLength() {
        const std::int64_t found = std::ssize(package_.header().blocks);
        const std::int64_t wanted = HeaderBlocksFor(package_.block_count());
        if (found < wanted && package_.header().end == ChainEnd::last)
            report_({.kind = Kind::short_map,
                     .text = "the header has " + Number(found) + " blocks, not " + Number(wanted)});
    }

    void See(const Claim& claim, const Entry& entry) {
        const bool own = claim.owner < 0;
        Finding finding{.kind = Kind::chain, .text = {}, .entry = own ? -1 : entry.index, .file = entry.name};
        const auto say = [&](Kind kind, std::string text, std::int32_t block = -1) {
            finding.kind = kind;
            finding.text = std::move(text);
            finding.block = block;
            report_(finding);
        };
        const Kind chain = own ? (claim.owner == kHeaderOwner ? Kind::header : Kind::directory) : Kind::chain;
        const std::string whose = own ? "the chain of " + OwnerName(claim.owner) : "its chain";
        if (claim.looks_free >= 0)
            say(Kind::free_block, "the map calls a block of " + whose + " free", claim.looks_free);
        if (claim.torn) say(Kind::torn_word, "a block behind its last byte looks free");
        if (claim.end == ChainEnd::outside) say(chain, whose + " leads out of the package");
        if (claim.end == ChainEnd::longer) say(chain, whose + " has more blocks than the package asks for");
        if (claim.end == ChainEnd::again && own)
            say(chain, whose + " comes to a block that is held", claim.end_block);
        if (own) return;
        if (entry.size < 0) say(Kind::size, "its size is " + Number(entry.size));
        if (entry.name.size() > kNameMax) say(Kind::name, "its name has no end");
        for (const double stamp : {entry.created, entry.accessed, entry.written})
            if (!IsStamp(stamp)) say(Kind::stamp, "one of its times is none: " + std::to_string(stamp));
        if (claim.length > claim.needed)
            say(Kind::surplus, "it holds " + Number(claim.length) + " blocks, not " + Number(claim.needed));
        if (claim.length < claim.needed && claim.end != ChainEnd::again)
            say(Kind::chain, "it holds " + Number(claim.length) + " blocks, not " + Number(claim.needed));
    }

    void SeeShare(const Share& share) {
        Finding finding{.kind = Kind::shared, .text = {}, .block = share.block};
        const auto say = [&](int owner, const std::string& text) {
            finding.entry = std::max(owner, -1);
            finding.file = owner < 0 ? std::u16string() : package_.EntryAt(owner).name;
            finding.text = text;
            report_(finding);
        };
        if (share.owner == share.other) {
            finding.kind = Kind::chain;
            return say(share.owner, "the chain of " + OwnerName(share.owner) + " loops");
        }
        say(share.other, OwnerName(share.other) + " shares blocks with " + OwnerName(share.owner) + " from here on");
        say(share.owner, OwnerName(share.owner) + " shares blocks with " + OwnerName(share.other) + " from here on");
    }

    void CheckWords(const Claims& claims) {
        const std::int32_t blocks = package_.block_count();
        Gatherer odd(report_, {.kind = Kind::map_word, .text = "the map word has bits that mean nothing"});
        Gatherer beyond(report_, {.kind = Kind::map_word, .text = "there is a map word for no block"});
        Gatherer torn(report_, {.kind = Kind::torn_word, .text = "the map word of a free block is not 0"});
        Gatherer lost(report_, {.kind = Kind::lost, .text = "in use, and nobody's"});
        for (std::int32_t block = 0; block < map_.word_count(); ++block) {
            const std::uint32_t word = map_.Word(block);
            const bool used = (word & kUsed) != 0;
            if (word & kUnused) odd.Add(block);
            if (block >= blocks && word != 0) beyond.Add(block);
            if (block < blocks && !used && word != 0) torn.Add(block);
            if (block < blocks && used && !claims.Held(block)) lost.Add(block);
        }
        for (Gatherer* gatherer : {&odd, &beyond, &torn, &lost}) gatherer->Flush();
    }

    void CheckDirectoryEnd() {
        const auto size = static_cast<std::uint64_t>(package_.entry_size());
        const std::uint64_t length = package_.directory().blocks.size() * std::uint64_t{kBlock};
        std::uint8_t rest[kWideEntry];
        const auto count = static_cast<std::size_t>(length % size);
        package_.ReadRun(package_.directory(), length - count, rest, count);
        if (std::any_of(rest, rest + count, [](std::uint8_t byte) { return byte != 0; }))
            report_({.kind = Kind::directory, .text = "there are bytes behind the last directory entry"});
    }

    /// Names are compared by hash first, so that not all of them stand in memory. Entries of other makers may bear
    /// the name of a stored file.
    void CheckNames() {
        std::vector<std::pair<std::size_t, int>> hashes;
        package_.ForEachEntry([&](const Entry& entry) {
            if (entry.kind == kStoredFile)
                hashes.emplace_back(std::hash<std::u16string>()(FoldedName(entry.name)), entry.index);
        });
        std::sort(hashes.begin(), hashes.end());
        for (std::size_t i = 1; i < hashes.size(); ++i) {
            if (hashes[i].first != hashes[i - 1].first) continue;
            const Entry first = package_.EntryAt(hashes[i - 1].second), second = package_.EntryAt(hashes[i].second);
            if (FoldedName(first.name) != FoldedName(second.name)) continue;
            report_({.kind = Kind::name,
                     .text = "entry " + Number(first.index) + " bears the same name",
                     .entry = second.index,
                     .file = second.name});
        }
    }

    const Package& package_;
    const BlockMap& map_;
    const Report& report_;
};

}  // namespace

const char* KindName(Kind kind) {
    return kKinds[static_cast<int>(kind)].name;
}

Severity SeverityOf(Kind kind) {
    return kKinds[static_cast<int>(kind)].severity;
}

void Check(const Package& package, const Report& report) {
    Checker(package, report).Run();
}

}  // namespace inspect

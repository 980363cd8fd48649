// SPDX-License-Identifier: MIT
// Damage: named patches to good packages, and every byte of the header and the directory changed. The package opens
// or is refused; every operation is safe and changes nothing but the file it is for; files beside the damage are
// intact, and are brought back without the library.
#include <functional>
#include <limits>
#include <set>

#include "inspect/claims.h"
#include "inspect/recover.h"
#include "inspect/stored_bytes.h"
#include "tests/faults/world.h"

namespace {

/// A good package in the making of a bad one. Blocks are named by index.
struct Patient {
    PackageImage good;
    Bytes host;

    int block(const char* file, std::size_t position) const { return good.ChainOf(file).at(position); }
    std::uint32_t number(const char* file) const { return static_cast<std::uint32_t>(block(file, 0)) + 1; }
    std::uint32_t count() const { return static_cast<std::uint32_t>(good.block_count); }
    std::uint32_t free_block() const {
        int block = 0;
        while (good.Word(block) != 0) ++block;
        return static_cast<std::uint32_t>(block);
    }
    void SetWord(int block, std::uint32_t word) {
        StoreAt(host, good.HostOffset(good.header_chain, 101 + 4 * static_cast<std::size_t>(block)), word);
    }
    /// Makes a block of a chain lead to a block number.
    void Link(int block, std::uint32_t number) { SetWord(block, 0x80000000 | number); }
    void SetField(const char* file, std::size_t field, std::uint64_t value, std::size_t size) {
        const auto entry = static_cast<std::size_t>(good.Find(file)->index * good.entry_size);
        for (std::size_t i = 0; i < size; ++i)
            host[good.HostOffset(good.directory_chain, entry + field + i)] =
                static_cast<std::uint8_t>(value >> (8 * (i % 8)));
    }
    void SetKind(std::uint64_t kind) { SetField("victim", 0, kind, 1); }
    void SetFirst(std::uint64_t number) { SetField("victim", 1, number, 4); }
    void SetSize(std::int64_t size) { SetField("victim", 5, static_cast<std::uint64_t>(size), 8); }
    void Cut(std::size_t length) { host.resize(length); }
};

struct Patch {
    const char* name;
    void (*apply)(Patient&);
};

// Patches that also mean something to a header of several blocks.
const Patch kHeaderPatches[] = {
    {"header links to itself", [](Patient& p) { p.Link(0, 1); }},
    {"header links to the directory", [](Patient& p) { p.Link(0, 2); }},
    {"header links outside", [](Patient& p) { p.Link(0, p.count() + 1); }},
    {"header links far outside", [](Patient& p) { p.Link(0, 0x0FFFFFFF); }},
    {"header links to a file", [](Patient& p) { p.Link(0, p.number("victim")); }},
    {"header ends early", [](Patient& p) { p.Link(0, 0); }},
    {"header looks free", [](Patient& p) { p.SetWord(0, 0); }},
    {"end of the header links back", [](Patient& p) { p.Link(p.good.header_chain.back(), 1); }},
    {"end of the header links on", [](Patient& p) { p.Link(p.good.header_chain.back(), p.free_block() + 1); }},
    {"directory links to itself", [](Patient& p) { p.Link(1, 2); }},
    {"directory links to the header", [](Patient& p) { p.Link(1, 1); }},
    {"directory links outside", [](Patient& p) { p.Link(1, p.count() + 1); }},
    {"directory links to a file", [](Patient& p) { p.Link(1, p.number("other")); }},
    {"directory links to a free block of zeros",
     [](Patient& p) {
         p.Link(1, p.free_block() + 1);
         std::fill_n(p.host.begin() + std::ptrdiff_t{4096} * p.free_block(), 4096, 0);
     }},
    {"directory ends early", [](Patient& p) { p.Link(1, 0); }},
    {"directory looks free", [](Patient& p) { p.SetWord(1, 0); }},
    {"end of the directory links back", [](Patient& p) { p.Link(p.good.directory_chain.back(), 2); }},
    {"end of the directory links to a free block",
     [](Patient& p) { p.Link(p.good.directory_chain.back(), p.free_block() + 1); }},
};

const Patch kPatches[] = {
    {"magic", [](Patient& p) { p.host[0] = 'V'; }},
    {"magic of the other kind", [](Patient& p) { std::copy_n("wvlt", 4, p.host.begin()); }},
    {"byte after the magic", [](Patient& p) { p.host[3] = 0xFF; }},
    {"format byte", [](Patient& p) { p.host[4] = 0xFF; }},
    {"read credential", [](Patient& p) { p.host[20] = 0; }},
    {"write credential", [](Patient& p) { p.host[36] = 0; }},
    {"reserved bytes", [](Patient& p) { std::fill_n(p.host.begin() + 37, 64, 0xFF); }},
    {"chain links to itself", [](Patient& p) { p.Link(p.block("victim", 1), p.number("victim") + 3); }},
    {"chain links to its start", [](Patient& p) { p.Link(p.block("victim", 2), p.number("victim")); }},
    {"chain links to another file", [](Patient& p) { p.Link(p.block("victim", 1), p.number("other")); }},
    {"chain links outside", [](Patient& p) { p.Link(p.block("victim", 1), p.count() + 1); }},
    {"chain links far outside", [](Patient& p) { p.Link(p.block("victim", 1), 0x0FFFFFFF); }},
    {"chain links to block 0", [](Patient& p) { p.Link(p.block("victim", 1), 1); }},
    {"chain links to block 1", [](Patient& p) { p.Link(p.block("victim", 1), 2); }},
    {"chain links to the directory",
     [](Patient& p) { p.Link(p.block("victim", 1), static_cast<std::uint32_t>(p.good.directory_chain.back()) + 1); }},
    {"chain links to a free block", [](Patient& p) { p.Link(p.block("victim", 1), p.free_block() + 1); }},
    {"chain ends early", [](Patient& p) { p.Link(p.block("victim", 1), 0); }},
    {"free block in a chain", [](Patient& p) { p.SetWord(p.block("victim", 1), 0); }},
    {"chain starts in a free block", [](Patient& p) { p.SetWord(p.block("victim", 0), 0); }},
    {"map word with every bit", [](Patient& p) { p.SetWord(p.block("victim", 1), 0xFFFFFFFF); }},
    {"chain of free blocks with links",
     [](Patient& p) {
         for (const int block : p.good.ChainOf("victim")) p.SetWord(block, p.good.Word(block) & 0x7FFFFFFF);
     }},
    {"chain links to the end of another file",
     [](Patient& p) { p.Link(p.block("victim", 2), static_cast<std::uint32_t>(p.block("other", 2)) + 1); }},
    {"chain links to the block after the next one outside",
     [](Patient& p) { p.Link(p.block("victim", 1), p.count() + 2); }},
    {"every free block in use",
     [](Patient& p) {
         for (int block = 0; block < p.good.block_count; ++block)
             if (p.good.Word(block) == 0) p.Link(block, p.number("other"));
     }},
    {"everything looks free",
     [](Patient& p) {
         for (int block = 0; block < p.good.block_count; ++block) p.SetWord(block, 0);
     }},
    {"size -1", [](Patient& p) { p.SetSize(-1); }},
    {"lowest size", [](Patient& p) { p.SetSize(std::numeric_limits<std::int64_t>::min()); }},
    {"highest size", [](Patient& p) { p.SetSize(std::numeric_limits<std::int64_t>::max()); }},
    {"size beyond the chain", [](Patient& p) { p.SetSize(1 << 20); }},
    {"size 0 with a chain", [](Patient& p) { p.SetSize(0); }},
    {"no first block", [](Patient& p) { p.SetFirst(0); }},
    {"first block 0", [](Patient& p) { p.SetFirst(1); }},
    {"first block 1", [](Patient& p) { p.SetFirst(2); }},
    {"first block outside", [](Patient& p) { p.SetFirst(p.count() + 1); }},
    {"first block after the next one outside", [](Patient& p) { p.SetFirst(p.count() + 2); }},
    {"first block where the next header block comes", [](Patient& p) { p.SetFirst(999); }},
    {"first block in the end of another file",
     [](Patient& p) { p.SetFirst(static_cast<std::uint32_t>(p.block("other", 2)) + 1); }},
    {"first block with every bit", [](Patient& p) { p.SetFirst(0xFFFFFFFF); }},
    {"first block of another file", [](Patient& p) { p.SetFirst(p.number("other")); }},
    {"first block free", [](Patient& p) { p.SetFirst(p.free_block() + 1); }},
    {"entry of another maker", [](Patient& p) { p.SetKind(2); }},
    {"entry of no kind", [](Patient& p) { p.SetKind(255); }},
    {"name without end", [](Patient& p) { p.SetField("victim", 37, 0x4141414141414141, 513); }},
    {"name of another file", [](Patient& p) { p.SetField("victim", 37, 0x726568746F, 8); }},  // "other"
    {"stamps that are no numbers", [](Patient& p) { p.SetField("victim", 13, ~std::uint64_t{0}, 24); }},
    {"no host bytes", [](Patient& p) { p.Cut(0); }},
    {"host of a part of a block", [](Patient& p) { p.Cut(4095); }},
    {"host of one block", [](Patient& p) { p.Cut(4096); }},
    {"host of two blocks less a byte", [](Patient& p) { p.Cut(8191); }},
    {"host of two blocks", [](Patient& p) { p.Cut(8192); }},
    {"host cut in the directory",
     [](Patient& p) { p.Cut(static_cast<std::size_t>(p.good.directory_chain.back()) * 4096 + 10); }},
    {"host cut in a file", [](Patient& p) { p.Cut(static_cast<std::size_t>(p.block("victim", 2)) * 4096 + 10); }},
    {"host cut by a byte", [](Patient& p) { p.Cut(p.host.size() - 1); }},
    {"host with a part of a block more", [](Patient& p) { p.Cut(p.host.size() + 100); }},
    {"host longer than the map", [](Patient& p) { p.Cut(1100 * 4096); }},
    {"host much longer than the map", [](Patient& p) { p.Cut(2300 * 4096); }},
};

// ---- What must hold ----------------------------------------------------------------------------------------------

/// The files that the damage left alone: sound, and as they were.
Model Intact(const PackageState& state, const PackageImage& good, const PackageImage& bad) {
    std::map<std::u16string, Bytes> sound = SoundFiles(bad);
    Model intact;
    for (const auto& [name, bytes] : state.files)
        if (sound.count({name.begin(), name.end()}) && sound[{name.begin(), name.end()}] == bytes &&
            bad.ChainOf(name) == good.ChainOf(name))
            intact[name] = bytes;
    return intact;
}

/// What an operation on a file changed that is not the file's: blocks of others, their words and entries, the header
/// fields. Empty when there is nothing.
std::string Strays(const PackageImage& before, const PackageImage& after, const std::string& name) {
    std::string strays;
    const auto compare = [&](const char* what, int number, const Bytes& was, const Bytes& is, int size) {
        const auto at = std::ptrdiff_t{number} * size;
        if (!std::equal(was.begin() + at, was.begin() + at + size, is.begin() + at))
            strays += what + std::to_string(number) + ";";
    };
    std::set<int> own(before.header_chain.begin(), before.header_chain.end());
    own.insert(before.directory_chain.begin(), before.directory_chain.end());
    for (const ImageEntry& entry : before.entries) {
        if (!entry.used()) continue;
        const std::vector<int> chain = before.Chain(entry.start());
        if (std::equal(entry.name.begin(), entry.name.end(), name.begin(), name.end()))
            own.insert(chain.begin(), chain.end());
        else
            compare("entry ", entry.index, before.directory, after.directory, before.entry_size);
    }
    compare("header ", 0, before.header, after.header, 101);
    for (int block = 0; block < before.block_count; ++block) {
        if (own.count(block) || !(before.Word(block) & 0x80000000)) continue;
        compare("block ", block, before.host, after.host, 4096);
        if (before.Word(block) != after.Word(block)) strays += "word " + std::to_string(block) + ";";
    }
    return strays;
}

void ReadAbout(const World& world, const std::string& name) {
    const std::uint32_t file = OpenFile(world.package(), name, VLT_MODE_READ);
    ReadFrom(file, 40000);
    vlt_file_set_pos(file, std::numeric_limits<std::int64_t>::max() - 10);
    ReadFrom(file, 40000);
    vlt_file_close(file);
}

void WriteAbout(const World& world, const std::string& name, std::uint32_t mode, bool truncate) {
    const std::uint32_t file = OpenFile(world.package(), name, mode, {.truncate = truncate});
    WriteTo(file, Pattern("front", 5000));
    vlt_file_set_pos_eof(file);
    WriteTo(file, Pattern("back", 9000));
    vlt_file_set_pos(file, 4096 * 3);
    WriteTo(file, Pattern("inside", 10));
    vlt_file_close(file);
}

/// Everything that can be done to a file, one thing after the other.
void UseFile(const World& world, const std::string& name) {
    const std::function<void()> uses[] = {
        [&] { ReadAbout(world, name); },
        [&] { WriteAbout(world, name, VLT_MODE_WRITE, false); },
        [&] { WriteAbout(world, name, VLT_MODE_APPEND, false); },
        [&] { SetTime(world.package(), name, 1, 2, 3); },
        [&] { WriteAbout(world, name, VLT_MODE_WRITE, true); },
        [&] { Delete(world.package(), name); },
        [&] { WriteAbout(world, name, VLT_MODE_APPEND, false); },
    };
    for (std::size_t i = 0; i < std::size(uses); ++i) {
        const PackageImage before = world.Image();
        uses[i]();
        EXPECT_EQ(Strays(before, world.Image(), name), "") << "by use " << i << " of " << name;
    }
}

void ExpectIntact(const World& world, const Model& intact) {
    for (const auto& [name, bytes] : intact) EXPECT_TRUE(world.Stored(name) == bytes) << name << " has changed";
}

/// Uses a damaged file that stays open while sound files are made, grow and go, and deletes it in the end.
void UseBesideSoundFiles(const World& world, const std::string& name, Model intact) {
    const std::uint32_t reader = OpenFile(world.package(), name, VLT_MODE_READ);
    const std::uint32_t writer = OpenFile(world.package(), name, VLT_MODE_WRITE);
    ReadFrom(reader, 40000);
    const auto overwrite = [&] {
        for (std::int64_t at = 0; at < 5; ++at) {
            vlt_file_set_pos(writer, at * 4096);
            WriteTo(writer, Pattern("over", 4096));
        }
        ExpectIntact(world, intact);
    };
    for (int i = 0; i < 12; ++i) world.Put(intact, "made" + std::to_string(i), i % 2 == 0 ? 0 : 6000);
    overwrite();
    const Model old = intact;
    for (const auto& file : old) world.Put(intact, file.first, 5000);
    vlt_file_set_pos_eof(writer);
    WriteTo(writer, Pattern("back", 9000));
    overwrite();
    vlt_file_close(writer);
    vlt_file_close(reader);
    vlt_file_close(OpenFile(world.package(), name, VLT_MODE_WRITE, {.truncate = true}));
    for (const auto& file : old) world.Put(intact, file.first, 5000);
    ExpectIntact(world, intact);
    Delete(world.package(), name);
    for (int i = 0; i < 5; ++i) world.Put(intact, "last" + std::to_string(i), 6000, true);
    ExpectIntact(world, intact);
}

/// Does everything with one damaged file after the other, and then with sound ones beside each.
void UseEach(const PackageState& bad, const Model& intact) {
    for (const auto& [name, bytes] : bad.files) {
        if (intact.count(name)) continue;
        World world(bad);
        UseBesideSoundFiles(world, name, intact);
    }
}

// ---- Recovery ----------------------------------------------------------------------------------------------------

/// The files of which no byte was damaged: of their entries, their map words, their contents. A block that the host
/// file has lost in part counts as lost.
Model Untouched(const PackageState& state, const PackageImage& good, const Bytes& host) {
    const auto same = [&](const std::vector<int>& chain, std::size_t from, std::size_t count) {
        for (std::size_t at = from, piece = 0; at < from + count; at += piece) {
            piece = std::min(from + count - at, 4096 - at % 4096);
            const std::size_t offset = good.HostOffset(chain, at);
            if (offset / 4096 >= host.size() / 4096 ||
                !std::equal(&host[offset], &host[offset] + piece, &good.host[offset]))
                return false;
        }
        return true;
    };
    Model untouched;
    for (const auto& [name, bytes] : state.files) {
        const ImageEntry& entry = *good.Find(name);
        const auto size = static_cast<std::size_t>(good.entry_size);
        const std::vector<int> chain = good.Chain(entry.start());
        bool whole = same(good.directory_chain, static_cast<std::size_t>(entry.index) * size, size) &&
                     same(chain, 0, bytes.size());
        for (const int block : chain)
            whole = whole && same(good.header_chain, 101 + 4 * static_cast<std::size_t>(block), 4);
        if (whole) untouched[name] = bytes;
    }
    return untouched;
}

/// The bytes of a stored file, as the program brings them back.
Bytes BroughtBack(const inspect::Package& package, const ImageEntry& entry) {
    Bytes bytes;
    inspect::ReadStored(package, entry.start(), entry.size, [&](const std::uint8_t* at, std::size_t count) {
        bytes.insert(bytes.end(), at, at + count);
    });
    return bytes;
}

/// Puts a damaged package together without the library. Each file that was not touched comes back whole, and is
/// doubted only where a damaged one reaches into it, or short where a damaged link makes its last, nearly empty block
/// one of the directory. What is whole beyond doubt holds the bytes of a file as it was, unless its length was
/// damaged: where its blocks suffice for that, nothing tells.
void ExpectRecovered(const PackageState& state, const PackageImage& good, const Bytes& host) {
    const PackageImage bad(host);
    const inspect::Memory source(host);
    inspect::Package package(source);
    const inspect::Recovered recovered = inspect::Recover(package, inspect::ScanBlocks(package));
    const bool guessed = recovered.header || recovered.directory || recovered.missing > 0;
    EXPECT_TRUE(!guessed || bad.header_chain != good.header_chain || bad.directory_chain != good.directory_chain);
    package.TakeOddKinds();

    const Model untouched = Untouched(state, good, host);
    Model missing = untouched;
    const auto find = [&](const ImageEntry& entry) {
        return untouched.find(std::string(entry.name.begin(), entry.name.end()));
    };
    inspect::ForEachFile(package, [&](const inspect::FileState& file) {
        if (!file.whole()) return;
        const Bytes bytes = BroughtBack(package, file.entry);
        const bool doubted = file.shared || file.looks_free;
        const bool tied =
            file.shared && file.shared_with >= 0 && find(package.EntryAt(file.shared_with)) == untouched.end();
        const auto original = find(file.entry);
        if (original != untouched.end() && original->second == bytes && (!doubted || tied))
            missing.erase(original->first);
        bool as_it_was = false, as_long = false;
        for (const auto& known : state.files) {
            as_long = as_long || known.second.size() == bytes.size();
            as_it_was = as_it_was || known.second == bytes;
        }
        EXPECT_TRUE(doubted || as_it_was || !as_long) << file.entry.index << " is called whole";
    });
    const std::vector<int>& directory = package.directory().blocks;
    for (const auto& file : missing) {
        const std::vector<int> chain = good.ChainOf(file.first);
        const auto lost = std::find_first_of(chain.begin(), chain.end(), directory.begin(), directory.end());
        EXPECT_TRUE(lost != chain.end() && lost + 1 == chain.end()) << file.first << " does not come back";
    }
}

/// Opens a damaged package and does everything with it.
void Examine(const PackageState& state, const PackageImage& good, Bytes host) {
    Count("patches tried");
    ExpectRecovered(state, good, host);
    PackageState bad = state;
    bad.host = std::move(host);
    std::int32_t error = 0;
    World world(bad, &error);
    if (!world.package()) {
        EXPECT_TRUE(error == VLT_OPEN_NOT_A_PACKAGE || error == VLT_OPEN_CREDENTIALS) << error;
        return;
    }
    const Model intact = Intact(state, good, world.Image());
    ExpectIntact(world, intact);
    for (const auto& file : state.files)
        if (!intact.count(file.first)) UseFile(world, file.first);
    UseFile(world, "new");
    ExpectIntact(world, intact);
    world.Close();
    ASSERT_TRUE(world.Open()) << "it does not open again";
    ExpectIntact(world, intact);
    for (const auto& file : intact) EXPECT_TRUE(OpenFile(world.package(), file.first, VLT_MODE_READ)) << file.first;
    world.Close();
    UseEach(bad, intact);
}

template <std::size_t N>
void TryPatches(const PackageState& state, const Patch (&patches)[N]) {
    const PackageImage good(state.host);
    for (const Patch& patch : patches) {
        SCOPED_TRACE(patch.name);
        Patient patient{good, state.host};
        patch.apply(patient);
        Examine(state, good, std::move(patient.host));
    }
}

TEST(Damage, OfEveryKindIsSafe) {
    for (const char* name : {"whole", "whole_wide"}) {
        TryPatches(StateNamed(name), kHeaderPatches);
        TryPatches(StateNamed(name), kPatches);
    }
}

TEST(Damage, OfALongHeaderIsSafe) {
    TryPatches(StateNamed("long_header"), kHeaderPatches);
}

/// A stored package looks like a part of the one that it lies in, and lies before the end of its directory.
TEST(Damage, OfAPackageThatHoldsAnotherIsSafe) {
    PackageState state = StateNamed("growing");
    for (const bool outer : {false, true}) {
        const Bytes inner = state.host;
        state = StateNamed("growing");
        World world(state);
        if (outer) {
            ASSERT_TRUE(WriteTo(OpenFile(world.package(), "inner", VLT_MODE_APPEND), inner));
            state.files["inner"] = inner;
        }
        for (const char* name : {"a", "b", "c", "d", "e", "f"}) world.Put(state.files, name, outer ? 20 : 10);
        world.Drop(state.files, "tiny");
        state.host = world.Image().host;
    }
    TryPatches(state, kHeaderPatches);
}

/// Every byte that means something, wrong in two ways.
TEST(Damage, OfEveryByteIsSafe) {
    const PackageState& state = StateNamed("whole");
    const PackageImage good(state.host);
    std::vector<std::size_t> offsets;
    for (std::size_t i = 0; i < 101 + 4 * static_cast<std::size_t>(good.block_count); ++i) offsets.push_back(i);
    for (const ImageEntry& entry : good.entries)
        for (std::size_t i = 0; i < 40; ++i)
            offsets.push_back(
                good.HostOffset(good.directory_chain, static_cast<std::size_t>(entry.index * good.entry_size) + i));
    for (const std::size_t offset : offsets) {
        for (const int flip : {0x01, 0x80}) {
            SCOPED_TRACE(testing::Message() << "byte " << offset << " with bits " << flip);
            Bytes host = state.host;
            host[offset] = static_cast<std::uint8_t>(host[offset] ^ flip);
            Examine(state, good, std::move(host));
            if (HasFailure()) return;
        }
    }
}

/// Two files share the end of one chain, or all of it: deleting either leaves the other whole, and lets no new file
/// have its blocks.
TEST(Damage, ThatTiesTwoFilesFreesNoBlockOfTheOther) {
    for (const bool whole_chain : {false, true}) {
        for (const char* deleted : {"victim", "other"}) {
            SCOPED_TRACE(testing::Message() << deleted << (whole_chain ? ", the whole chain" : ", its end"));
            PackageState state = StateNamed("whole");
            Patient patient{PackageImage(state.host), state.host};
            if (whole_chain) patient.SetFirst(patient.number("other"));
            if (!whole_chain)
                patient.Link(patient.block("victim", 0), static_cast<std::uint32_t>(patient.block("other", 1)) + 1);
            state.host = patient.host;
            World world(state);
            const std::string left = deleted[0] == 'v' ? "other" : "victim";
            const std::optional<Bytes> bytes = world.Stored(left);
            Model made;
            for (int i = 0; i < 2; ++i) {
                EXPECT_EQ(Delete(world.package(), deleted), i == 0 ? 1 : 0);
                world.Put(made, "made", 40 * 4096, true);
                EXPECT_TRUE(world.Stored(left) == bytes && world.Stored("made") == made["made"]);
                world.Close();
                ASSERT_TRUE(world.Open());
            }
            EXPECT_EQ(Delete(world.package(), left), 1);
            EXPECT_EQ(Faults(world.Image(), {.leaked_blocks = true}), "");
        }
    }
}

/// A file ends in the middle of another's chain, at a block that looks free or is a third one's. Growing cuts that
/// block off, and whoever had followed the chain to it before goes where one goes who opens the package anew.
TEST(Damage, ThatTiesTwoFilesLeavesNoneOnAChainThatTheOtherCut) {
    for (const bool looks_free : {false, true}) {
        for (const bool reopened : {false, true}) {
            SCOPED_TRACE(testing::Message()
                         << (looks_free ? "looks free" : "a third") << (reopened ? ", reopened" : ""));
            PackageState state = StateNamed("whole");
            Patient patient{PackageImage(state.host), state.host};
            const int cut_off = patient.block("victim", 2);
            patient.SetSize(2 * 4096);
            patient.Link(patient.block("other", 0), static_cast<std::uint32_t>(patient.block("victim", 1)) + 1);
            if (looks_free) patient.SetWord(cut_off, 0);
            if (!looks_free) patient.SetField("tiny", 1, static_cast<std::uint64_t>(cut_off) + 1, 4);
            state.host = patient.host;
            World world(state);
            std::uint32_t other = OpenFile(world.package(), "other", VLT_MODE_WRITE);
            EXPECT_EQ(ReadFrom(other, 9000).size(), 4097u * 2);

            Model files;
            const Bytes grown = Pattern("grown", 4096), over = Pattern("over", 4096);
            EXPECT_TRUE(WriteTo(OpenFile(world.package(), "victim", VLT_MODE_APPEND), grown));
            EXPECT_EQ(Delete(world.package(), "tiny"), 1);
            if (reopened) {
                world.Close();
                ASSERT_TRUE(world.Open());
                other = OpenFile(world.package(), "other", VLT_MODE_WRITE);
            }
            world.Put(files, "made", 40 * 4096);  // every free block is in it
            vlt_file_set_pos(other, 2 * 4096);
            EXPECT_EQ(ReadFrom(other, 99), Bytes(grown.begin(), grown.begin() + 2));
            EXPECT_TRUE(vlt_file_set_pos(other, 2 * 4096) && WriteTo(other, over));
            EXPECT_TRUE(world.Stored("made") == files["made"]) << "a new file has changed";
            const Bytes ends = world.Stored("victim").value();
            EXPECT_TRUE(std::equal(ends.begin() + 2 * 4096, ends.end(), over.begin(), over.end()));
        }
    }
}

/// A host file that lost its end grows again: blocks that a file still names are not given to another.
TEST(Damage, OfALostEndKeepsItsBlocksWhenThePackageGrows) {
    PackageState state = StateNamed("four_blocks");
    state.host.resize(3 * 4096);
    World world(state);
    for (const std::size_t length : {8192u, 4097u}) {
        Model files;
        world.Put(files, "new", length, true);
        EXPECT_EQ(SoundFiles(world.Image()).count(u"new"), 1u);
        const std::uint32_t victim = OpenFile(world.package(), "victim", VLT_MODE_WRITE);
        EXPECT_TRUE(WriteTo(victim, Pattern("other", 4 * 4096)));
        EXPECT_TRUE(world.Stored("new") == files["new"]);
        world.Close();
        EXPECT_TRUE(world.Open());
    }
}

}  // namespace

// SPDX-License-Identifier: MIT
// The n-th host call fails, the n-th allocation fails, the process ends at the n-th change of the host file: every
// operation in every state of a package. After each the documented result, the other files as they were, nothing
// held, a sound package, and success when it is tried again or the package is used on.
#include <cstdio>
#include <tuple>

#include "tests/faults/world.h"

namespace {

/// What may be left of an operation that a host file failed: blocks of nobody, blocks more than a file needs. When
/// memory runs out, at most the package has grown.
Leniency LeniencyAfter(const FaultKind& kind, const PackageState& state) {
    if (!kind.of_system()) return kCutOff;
    return {.longer_chains = state.longer, .leaked_blocks = false, .short_header = true, .unfinished_ends = false};
}

/// What a failure left is sound, and the target as it may be; the model of it.
Model ExpectLeft(World& world, const Operation& operation, const FaultKind& kind, Model files) {
    world.Close();
    EXPECT_EQ(Faults(world.Image(), LeniencyAfter(kind, world.state)), "");
    EXPECT_TRUE(world.Open());
    world.ExpectFiles(files, operation.target);
    const std::optional<Bytes> now = world.Stored(operation.target), before = Find(files, operation.target);
    EXPECT_TRUE(kind.of_system() ? now == before : Plausible(operation, before, now)) << "the target is damaged";
    files.erase(operation.target);
    if (now) files[operation.target] = *now;
    return files;
}

/// What an operation needs open, and the model with it: opening may make the file.
std::uint32_t Prepare(const World& world, const Operation& operation, Model& files) {
    const std::uint32_t file = operation.Prepare(world);
    if (file && !files.count(operation.target)) files[operation.target];
    return file;
}

/// The operation once more, without a fault, on a package that it failed on; the model it leads to.
Model Repeat(World& world, const Operation& operation, std::uint32_t file, const Model& files) {
    if (operation.effect == Effect::deletes && !world.Stored(operation.target)) {
        // Its last step is what failed: the file is gone for this session, and comes back empty in the next.
        world.Close();
        EXPECT_TRUE(world.Open());
        EXPECT_EQ(world.Stored(operation.target).value_or(Bytes()), Bytes());
        if (!world.Stored(operation.target)) return After(operation, files);
    }
    EXPECT_TRUE(operation.Act(world, file)) << "it fails again";
    return After(operation, files);
}

/// Checks what a failure left, and tries again: in the same session, or after the package was closed and opened.
Model ExpectMended(World& world, const Operation& operation, const FaultKind& kind, std::uint32_t file, Model files,
                   bool reopen) {
    if (!world.package()) {
        EXPECT_TRUE(world.Open());
    }
    if (reopen) {
        files = ExpectLeft(world, operation, kind, files);
        if (operation.target == "victim" && !files.count("victim")) return files;
        file = Prepare(world, operation, files);
        return Repeat(world, operation, file, files);
    }
    world.ExpectFiles(files, operation.target);
    world.Put(files, "bystander", 9000);  // it must not get blocks that the operation left in the host file
    EXPECT_EQ(Faults(world.Image(), LeniencyAfter(kind, world.state)), "");
    return Repeat(world, operation, file, files);
}

/// One operation, one fault. False when the operation ended before the fault came.
bool Try(const PackageState& state, const Operation& operation, const FaultKind& kind, int nth, bool reopen) {
    World world(state);
    Model files = state.files;
    const std::uint32_t file = Prepare(world, operation, files);
    bool done, hit;
    {
        const Fault fault = kind.At(nth);
        done = operation.Act(world, file);
        hit = fault.hit();
    }
    EXPECT_EQ(HeldNow().locks, 0);
    EXPECT_TRUE(done || hit) << "it fails without a fault";
    files = done ? After(operation, files) : ExpectMended(world, operation, kind, file, files, reopen);
    world.ExpectKept(files, LeniencyAfter(kind, state));
    world.Close();
    EXPECT_TRUE(HeldNow() == HeldResources()) << "something is still held";
    return hit;
}

using Case = std::tuple<std::string, Operation>;  // state

class OperationMeetsFaults : public testing::TestWithParam<Case> {};

TEST_P(OperationMeetsFaults, AndFailsAsDocumentedAndSucceedsAgain) {
    const std::string& state_name = std::get<0>(GetParam());
    const Operation& operation = std::get<1>(GetParam());
    // That state takes long to make, and differs in nothing but how the package grows.
    if (state_name == "map_full" && (operation.effect != Effect::writes || operation.position > 0)) return;
    const PackageState& state = StateNamed(state_name);
    if (operation.target == "victim" && !state.files.count("victim")) return;
    for (const bool reopen : {false, true}) {
        SCOPED_TRACE(reopen ? "reopened" : "");
        TryFaults(kFaultKinds, "faults injected",
                  [&](const FaultKind& kind, int nth) { return Try(state, operation, kind, nth, reopen); });
    }
}

const std::string kStates[] = {"fresh",      "growing",        "map_full",   "directory_full", "directory_full_wide",
                               "fragmented", "shared_handles", "behind_data"};

INSTANTIATE_TEST_SUITE_P(, OperationMeetsFaults,
                         testing::Combine(testing::ValuesIn(kStates), testing::ValuesIn(kOperations)),
                         [](const auto& made) {
                             return std::get<0>(made.param) + "_" + std::get<1>(made.param).name;
                         });

/// Creation over an existing package: it succeeds, or leaves no file; an existing one only where it was not reached.
TEST(CreationMeetsFaults, AndLeavesNoFile) {
    const char* path = "created.pkg";
    const Bytes old = Pattern("old", 100);
    TryFaults(kFaultKinds, "faults injected", [&](const FaultKind& kind, int nth) {
        WriteHostFile(path, old);
        const Fault fault = kind.At(nth);
        const bool done = vlt_package_create(path, 1, 5, "r", "w") == 1;
        const Bytes left = ReadHostFile(path);
        EXPECT_TRUE(done ? Faults(PackageImage(left)).empty() : left.empty() || left == old);
        EXPECT_TRUE(done || fault.hit());
        EXPECT_TRUE(HeldNow() == HeldResources());
        return fault.hit();
    });
    std::remove(path);
}

TEST(MemoryForCallers, IsRefusedWhenItRunsOut) {
    Fault fault(kFaultMemory, 1);
    EXPECT_EQ(vlt_alloc_mem(10), nullptr);
}

/// A host file that refuses an entry, and then everything: only a file that the host file may not have cannot be
/// opened for writing.
TEST(RefusedEntry, KeepsNoOtherFileFromBeingOpened) {
    World world(StateNamed("growing"));
    {
        const Fault fault(kFaultWrite, 1, FaultManner::cleanly, true);
        EXPECT_EQ(SetTime(world.package(), "victim", 1, 2, 3), 0);
        for (const char* name : {"other", "victim"})
            for (const std::uint32_t mode : {VLT_MODE_WRITE, VLT_MODE_APPEND})
                EXPECT_EQ(OpenError(world.package(), name, mode), VLT_FILE_OK) << name;
        for (int attempt = 0; attempt < 2; ++attempt)
            EXPECT_EQ(OpenError(world.package(), "new", VLT_MODE_WRITE), VLT_FILE_NOT_FOUND);
        EXPECT_EQ(OpenError(world.package(), "other", VLT_MODE_WRITE, {.truncate = true}), VLT_FILE_NO_SLOT);
    }
    for (const char* name : {"victim", "new"})
        EXPECT_TRUE(WriteTo(OpenFile(world.package(), name, VLT_MODE_APPEND), {'a'})) << name;
    world.Close();
    EXPECT_EQ(world.Image().Find("victim")->created, 1);
    EXPECT_EQ(world.Image().Find("new")->size, 1);
}

/// What could not be written shows for the rest of the session.
TEST(RefusedEntry, IsKnownToTheSessionAlone) {
    World world(StateNamed("growing"));
    {
        const Fault fault(kFaultWrite, 1, FaultManner::cleanly, true);
        EXPECT_EQ(SetTime(world.package(), "victim", 1, 2, 3), 0);
        EXPECT_EQ(OpenError(world.package(), "new", VLT_MODE_WRITE), VLT_FILE_NOT_FOUND);
    }
    FileInfo info;
    EXPECT_EQ(GetInfo(world.package(), "victim", &info), 1);
    EXPECT_EQ(info.written, 3);
    EXPECT_EQ(GetInfo(world.package(), "new", &info), 1);
    EXPECT_EQ(info.size, 0);
    world.Close();
    EXPECT_TRUE(world.Open());
    EXPECT_EQ(GetInfo(world.package(), "victim", &info), 1);
    EXPECT_NE(info.written, 3);
    EXPECT_EQ(GetInfo(world.package(), "new", &info), 0);
}

// ---- The process ends --------------------------------------------------------------------------------------------

/// Uses a package on after it was cut off: appends to the file that was being changed, fills what is free and grows,
/// deletes, and fills again.
void UseOn(World& world, const Operation& operation, Model files) {
    if (files.count(operation.target)) world.Put(files, operation.target, 9000);
    const PackageImage image = world.Image();
    world.Put(files, "later", static_cast<std::size_t>(image.block_count - image.UsedBlocks() + 3) * 4096, true);
    if (files.count("other")) world.Drop(files, "other");
    world.Put(files, "last", 20000, true);
    world.ExpectKept(files, kCutOff);
}

/// Ends the process at a change of the host file, and uses on what is left of the package. False when the operation
/// ended before; then `after` is the state it leads to.
bool CutOffAt(const PackageState& before, PackageState& after, const Operation& operation, const FaultKind& kind,
              int nth) {
    World world(before);
    bool hit;
    {
        const Fault fault = kind.At(nth);
        const bool done = operation.Act(world, operation.Prepare(world));
        world.Close();
        hit = fault.hit();
        EXPECT_TRUE(done || hit) << "it fails without a fault";
    }
    if (!hit) {
        after.host = ReadHostFile(world.path);
        after.files = After(operation, before.files);
    }
    const Model left = ExpectLeft(world, operation, kind, before.files);
    EXPECT_TRUE(hit || left == after.files);
    if (!testing::Test::HasFailure()) UseOn(world, operation, left);
    return hit;
}

struct Scenario {
    std::string state;
    std::vector<const char*> operations;
};

void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.state;
}

const Scenario kScenarios[] = {
    {"fresh", {"make_file", "first_write", "first_write"}},
    {"growing", {"append_little", "first_write", "overwrite", "truncate", "append_much", "set_time", "delete"}},
    {"map_full", {"append_little", "delete", "append_much"}},
    {"directory_full", {"make_file", "append_little", "first_write", "delete", "first_write", "truncate"}},
    {"directory_full_wide", {"first_write", "append_much", "delete", "first_write"}},
    {"fragmented", {"append_much", "truncate", "append_little", "first_write", "delete"}},
    {"shared_handles", {"append_much", "delete", "first_write"}},
    {"behind_data", {"append_little", "make_file", "delete", "first_write"}},
};

class CutOff : public testing::TestWithParam<Scenario> {};

TEST_P(CutOff, LeavesAPackageThatCanBeUsedOn) {
    PackageState state = StateNamed(GetParam().state);
    for (const char* name : GetParam().operations) {
        SCOPED_TRACE(name);
        const PackageState before = state;
        TryFaults(kEnds, "prefixes opened", [&](const FaultKind& kind, int nth) {
            return CutOffAt(before, state, OperationNamed(name), kind, nth);
        });
    }
}

INSTANTIATE_TEST_SUITE_P(, CutOff, testing::ValuesIn(kScenarios), [](const auto& made) { return made.param.state; });

/// The host file grows before the header does; what it has too much must never be more than the next growth can mend.
TEST(WriteOfManyBlocks, LetsThePackageGrowAfterItWasCutOff) {
    const Operation write{"append_huge",  "victim",        nullptr,
                          Effect::writes, VLT_MODE_APPEND, Pattern("huge", 2100 * 4096)};
    PackageState state = StateNamed("growing");
    const PackageState before = state;
    const FaultKind between_calls[] = {kEnds[0]};
    TryFaults(between_calls, "prefixes opened",
              [&](const FaultKind& kind, int nth) { return CutOffAt(before, state, write, kind, nth); });
}

/// A number of which only some bytes were written can name a block of another file: beyond the stored bytes of a
/// file, or as the first block of an empty one.
TEST(NumberWrittenInPart, TiesNoTwoFilesTogether) {
    const PackageState& whole = StateNamed("fragmented");
    const PackageImage image(whole.host);
    const std::vector<int> victim = image.ChainOf("victim"), other = image.ChainOf("other");
    PackageState by_link = whole, by_entry = whole;
    StoreAt(by_link.host, 101 + 4 * static_cast<std::size_t>(victim.back()),
            0x80000000u | static_cast<std::uint32_t>(other[2] + 1));
    StoreAt(by_entry.host, 4096 + 1, static_cast<std::uint32_t>(other[0] + 1));
    StoreAt(by_entry.host, 4096 + 5, std::uint64_t{0});
    by_entry.files["victim"].clear();
    ASSERT_EQ(image.Find("victim")->index, 0);
    for (const PackageState& state : {by_link, by_entry}) {
        for (const char* name : {"append_little", "truncate", "delete"}) {
            SCOPED_TRACE(name);
            World world(state);
            const Operation& operation = OperationNamed(name);
            EXPECT_TRUE(operation.Act(world, operation.Prepare(world)));
            EXPECT_EQ(Faults(world.Image(), kCutOff), "");
            Model files = After(operation, state.files);
            world.Put(files, "new", 40 * 4096);
            world.ExpectFiles(files);
        }
    }
}

}  // namespace

// SPDX-License-Identifier: MIT
// The n-th host call fails, the n-th allocation fails: every operation in every state of a package. After each the
// documented result, the other files as they were, nothing held, a sound package, and success when it is tried again.
#include <cstdio>
#include <tuple>

#include "tests/faults/world.h"

namespace {

struct FaultKind {
    const char* name;
    unsigned calls;
    FaultManner manner;
    bool from_then_on;

    bool of_system() const { return (calls & kFaultSystem) != 0; }
};

constexpr FaultKind kKinds[] = {
    {"a host call fails", kFaultHost, FaultManner::cleanly, false},
    {"host calls fail from then on", kFaultHost, FaultManner::cleanly, true},
    {"a host call is cut short", kFaultHost, FaultManner::cut_short, false},
    {"the reply of a host call is lost", kFaultHost, FaultManner::lost_reply, false},
    {"the disk is full", kFaultWrite + kFaultExtend, FaultManner::cut_short, true},
    {"memory runs out once", kFaultSystem, FaultManner::cleanly, false},
    {"memory runs out", kFaultSystem, FaultManner::cleanly, true},
};

int faults_injected = 0;

/// What may be left of an operation that a host file failed: blocks of nobody, blocks more than a file needs. When
/// memory runs out, at most the package has grown. The map-full package has a file of too many blocks from the start.
Leniency LeniencyAfter(const FaultKind& kind, const PackageState& state) {
    Leniency leniency;
    leniency.short_header = true;
    leniency.longer_chains = state.name == "map_full";
    if (!kind.of_system()) leniency.longer_chains = leniency.leaked_blocks = leniency.unfinished_ends = true;
    return leniency;
}

std::optional<Bytes> TargetIn(const Operation& operation, const Model& files) {
    const auto found = files.find(operation.target);
    return found == files.end() ? std::nullopt : std::optional(found->second);
}

/// The operation once more, without a fault, on a package that it failed on; the model it leads to.
Model Repeat(World& world, const Operation& operation, std::uint32_t file, const Model& files) {
    if (operation.name == "delete" && !world.Stored(operation.target)) {
        // Its last step is what failed: the file is gone for this session, and comes back empty in the next.
        world.Close();
        EXPECT_TRUE(world.Open());
        EXPECT_EQ(world.Stored(operation.target).value_or(Bytes()), Bytes());
        if (!world.Stored(operation.target)) return After(operation, files);
    }
    EXPECT_TRUE(operation.act(world, file)) << "it fails again";
    return After(operation, files);
}

/// Checks what a failure left, and tries again: in the same session, or after the package was closed and opened.
Model ExpectMended(World& world, const Operation& operation, const FaultKind& kind, std::uint32_t file, Model files,
                   bool reopen) {
    if (!world.package()) {
        EXPECT_TRUE(world.Open());
    }
    world.ExpectFiles(files, operation.target);
    if (!reopen) {  // another file takes blocks first: it must not get any that the operation left in the host file
        const std::uint32_t bystander = OpenFile(world.package(), "bystander", VLT_MODE_WRITE);
        EXPECT_TRUE(WriteTo(bystander, files["bystander"] = Pattern("bystander", 9000)));
        vlt_file_close(bystander);
        EXPECT_EQ(Faults(world.Image(), LeniencyAfter(kind, world.state)), "");
        return Repeat(world, operation, file, files);
    }

    world.Close();
    EXPECT_EQ(Faults(world.Image(), LeniencyAfter(kind, world.state)), "");
    EXPECT_TRUE(world.Open());
    const std::optional<Bytes> now = world.Stored(operation.target), before = TargetIn(operation, files);
    EXPECT_TRUE(kind.of_system() ? now == before : Plausible(operation, before, now)) << "the target is damaged";
    if (now) files[operation.target] = *now;
    if (!now) files.erase(operation.target);
    if (operation.needs_target && !now) return files;
    file = operation.prepare(world);
    if (!operation.target.empty() && world.Stored(operation.target)) files[operation.target];
    return Repeat(world, operation, file, files);
}

/// One operation, one fault. False when the operation ended before the fault came.
bool Try(const PackageState& state, const Operation& operation, const FaultKind& kind, int nth, bool reopen) {
    SCOPED_TRACE(testing::Message() << kind.name << ", call " << nth << (reopen ? ", reopened" : ""));
    World world(state);
    Model files = state.files;
    const std::uint32_t file = operation.prepare(world);
    if (!operation.target.empty() && world.Stored(operation.target)) files[operation.target];
    bool done, hit;
    {
        Fault fault(kind.calls, nth, kind.manner, kind.from_then_on);
        done = operation.act(world, file);
        hit = fault.hit();
    }
    EXPECT_EQ(HeldNow().locks, 0);
    EXPECT_TRUE(done || hit) << "it fails without a fault";
    files = done ? After(operation, files) : ExpectMended(world, operation, kind, file, files, reopen);
    world.ExpectFiles(files);
    world.Close();
    EXPECT_EQ(Faults(world.Image(), LeniencyAfter(kind, world.state)), "");
    EXPECT_TRUE(world.Open());
    world.ExpectFiles(files);
    world.Close();
    EXPECT_TRUE(HeldNow() == HeldResources()) << "something is still held";
    faults_injected += hit;
    return hit;
}

using Case = std::tuple<std::string, std::string>;  // state, operation

class OperationMeetsFaults : public testing::TestWithParam<Case> {
protected:
    static void TearDownTestSuite() { std::printf("%d faults injected\n", faults_injected); }
};

TEST_P(OperationMeetsFaults, AndFailsAsDocumentedAndSucceedsAgain) {
    const PackageState& state = StateNamed(std::get<0>(GetParam()));
    const Operation& operation = OperationNamed(std::get<1>(GetParam()));
    if (operation.needs_target && !state.files.count("victim")) return;
    // That state takes long to make, and differs in nothing but how the package grows.
    const bool grows = operation.effect && !operation.may_empty && operation.name != "overwrite";
    if (state.name == "map_full" && !grows) return;
    for (const FaultKind& kind : kKinds)
        for (const bool reopen : {false, true})
            for (int nth = 1; !HasFailure() && Try(state, operation, kind, nth, reopen); ++nth) {
            }
}

std::vector<std::string> StateNames() {
    return {"fresh",      "growing",        "map_full",   "directory_full", "directory_full_wide",
            "fragmented", "shared_handles", "behind_data"};
}

std::vector<std::string> OperationNames() {
    std::vector<std::string> names;
    for (const Operation& operation : Operations()) names.push_back(operation.name);
    return names;
}

INSTANTIATE_TEST_SUITE_P(, OperationMeetsFaults,
                         testing::Combine(testing::ValuesIn(StateNames()), testing::ValuesIn(OperationNames())),
                         [](const auto& made) { return std::get<0>(made.param) + "_" + std::get<1>(made.param); });

/// Creation over an existing package: it succeeds, or leaves no file; an existing one only where it was not reached.
TEST(CreationMeetsFaults, AndLeavesNoFile) {
    const char* path = "created.pkg";
    for (const FaultKind& kind : kKinds) {
        for (int nth = 1, hit = 1; hit; ++nth) {
            SCOPED_TRACE(testing::Message() << kind.name << ", call " << nth);
            const Bytes old = Pattern("old", 100);
            WriteHostFile(path, old);
            bool done;
            {
                Fault fault(kind.calls, nth, kind.manner, kind.from_then_on);
                done = vlt_package_create(path, 1, 5, "r", "w") == 1;
                hit = fault.hit();
            }
            const Bytes left = ReadHostFile(path);
            EXPECT_TRUE(done ? Faults(PackageImage(left)).empty() : left.empty() || left == old);
            EXPECT_TRUE(done || hit);
            EXPECT_TRUE(HeldNow() == HeldResources());
            faults_injected += hit;
        }
    }
    std::remove(path);
}

TEST(MemoryForCallers, IsRefusedWhenItRunsOut) {
    Fault fault(kFaultMemory, 1);
    EXPECT_EQ(vlt_alloc_mem(10), nullptr);
}

}  // namespace

// SPDX-License-Identifier: MIT
// Stop after n writes: what the host file holds after every change that an operation makes to it, and after half of
// the change, opens; files that were not being changed are intact; and use that goes on ties no two files together.
#include <cstdio>

#include "tests/faults/world.h"

namespace {

struct Scenario {
    const char* state;
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

int prefixes_opened = 0;

constexpr Leniency kCutOff = {
    .longer_chains = true, .leaked_blocks = true, .short_header = true, .unfinished_ends = true};

void WriteNew(World& world, Model& files, const std::string& name, std::size_t length) {
    const std::uint32_t file = OpenFile(world.package(), name, VLT_MODE_WRITE, {.truncate = true});
    files[name] = Pattern(name, length);
    EXPECT_TRUE(WriteTo(file, files[name])) << name;
    vlt_file_close(file);
}

void Append(World& world, Model& files, const std::string& name) {
    const std::uint32_t file = OpenFile(world.package(), name, VLT_MODE_APPEND);
    const Bytes more = Pattern("more", 9000);
    EXPECT_TRUE(WriteTo(file, more)) << name;
    vlt_file_close(file);
    files[name].insert(files[name].end(), more.begin(), more.end());
}

/// Uses a package on after it was cut off: appends to the file that was being changed, fills what is free and grows,
/// deletes, and fills again.
void UseOn(World& world, const Operation& operation, Model files) {
    if (const std::optional<Bytes> target = world.Stored(operation.target)) {
        files[operation.target] = *target;
        Append(world, files, operation.target);
    } else {
        files.erase(operation.target);
    }
    const PackageImage image = world.Image();
    WriteNew(world, files, "later", static_cast<std::size_t>(image.block_count - image.UsedBlocks() + 3) * 4096);
    if (files.erase("other")) {
        EXPECT_EQ(Delete(world.package(), "other"), 1);
    }
    WriteNew(world, files, "last", 20000);
    world.ExpectFiles(files);
    world.Close();
    EXPECT_EQ(Faults(world.Image(), kCutOff), "");
    EXPECT_TRUE(world.Open());
    world.ExpectFiles(files);
}

/// Opens what was left when an operation was cut off.
void OpenPrefix(const PackageState& before, const Operation& operation, Bytes host) {
    PackageState left = before;
    left.host = std::move(host);
    World world(left);
    const auto found = before.files.find(operation.target);
    const auto target = found == before.files.end() ? std::nullopt : std::optional(found->second);
    world.ExpectFiles(before.files, operation.target);
    EXPECT_TRUE(Plausible(operation, target, world.Stored(operation.target))) << "the target is damaged";
    EXPECT_EQ(Faults(world.Image(), kCutOff), "");
    if (!testing::Test::HasFailure()) UseOn(world, operation, before.files);
    ++prefixes_opened;
}

/// Runs an operation on a package; the changes of its host file. `state` is what it leads to.
std::vector<HostChange> Record(PackageState& state, const Operation& operation) {
    World world(state);
    HostRecording recording;
    EXPECT_TRUE(operation.act(world, operation.prepare(world)));
    world.Close();
    state.host = ReadHostFile(world.path);
    state.files = After(operation, state.files);
    return recording.changes();
}

class CutOff : public testing::TestWithParam<Scenario> {
protected:
    static void TearDownTestSuite() { std::printf("%d prefixes opened\n", prefixes_opened); }
};

TEST_P(CutOff, LeavesAPackageThatCanBeUsedOn) {
    PackageState state = StateNamed(GetParam().state);
    for (const char* name : GetParam().operations) {
        const Operation& operation = OperationNamed(name);
        const PackageState before = state;
        const std::vector<HostChange> changes = Record(state, operation);
        Bytes host = before.host;
        for (std::size_t done = 0; done < changes.size() && !HasFailure(); ++done) {
            SCOPED_TRACE(testing::Message() << name << " after " << done << " of " << changes.size() << " writes");
            Bytes torn = host;
            ApplyChange(torn, changes[done], true);
            OpenPrefix(before, operation, torn);
            ApplyChange(host, changes[done], false);
            OpenPrefix(before, operation, host);
        }
        ASSERT_EQ(host == state.host, true) << "the recording misses a change";
    }
}

INSTANTIATE_TEST_SUITE_P(, CutOff, testing::ValuesIn(kScenarios),
                         [](const auto& made) { return std::string(made.param.state); });

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
            EXPECT_TRUE(operation.act(world, *name == 'a' ? operation.prepare(world) : 0));
            EXPECT_EQ(Faults(world.Image(), kCutOff), "");
            Model files = After(operation, state.files);
            WriteNew(world, files, "new", 40 * 4096);
            world.ExpectFiles(files);
        }
    }
}

}  // namespace

// SPDX-License-Identifier: MIT
#include "tests/faults/world.h"

#include <cstdio>

namespace {

void Put(std::int32_t package, PackageState& state, const std::string& name, std::size_t length) {
    const std::uint32_t file = OpenFile(package, name, VLT_MODE_APPEND);
    const Bytes bytes = Pattern(name + std::to_string(state.files[name].size()), length);
    EXPECT_TRUE(file != 0 && (bytes.empty() || WriteTo(file, bytes))) << name;
    vlt_file_close(file);
    state.files[name].insert(state.files[name].end(), bytes.begin(), bytes.end());
}

void Drop(std::int32_t package, PackageState& state, const std::string& name) {
    EXPECT_EQ(Delete(package, name), 1);
    state.files.erase(name);
}

/// Two files with a block of each in turn, and holes of one block.
void Fragment(std::int32_t package, PackageState& state) {
    for (int i = 0; i < 5; ++i) {
        Put(package, state, "victim", 4096);
        Put(package, state, "hole" + std::to_string(i % 2), 4096);
        Put(package, state, "other", 4096);
    }
    Put(package, state, "victim", 100);
    Drop(package, state, "hole0");
    Drop(package, state, "hole1");
}

PackageState MakeState(const std::string& name, bool wide, std::int32_t size_mb,
                       void (*fill)(std::int32_t, PackageState&)) {
    PackageState state;
    state.name = name;
    const char* path = "state.pkg";
    EXPECT_EQ(vlt_package_create(path, wide, size_mb, nullptr, nullptr), 1);
    const std::int32_t package = vlt_package_open(path, 0, 0, nullptr, nullptr, nullptr, nullptr);
    fill(package, state);
    vlt_package_close(package);
    state.host = ReadHostFile(path);
    EXPECT_EQ(Faults(PackageImage(state.host)), "");
    std::remove(path);
    return state;
}

void FillSmall(std::int32_t package, PackageState& state) {
    Put(package, state, "victim", 5000);
    Put(package, state, "other", 10000);
    Put(package, state, "tiny", 10);
}

void FillDirectory(std::int32_t package, PackageState& state) {
    FillSmall(package, state);
    for (const char* name : {"d", "e", "f", "g"}) Put(package, state, name, 0);
}

void FillMap(std::int32_t package, PackageState& state) {
    FillDirectory(package, state);
    Drop(package, state, "d");
    Put(package, state, "filler", (998 - 2 - 6) * 4096);
}

/// Leaves a file its blocks but only a few bytes of its length: comparing four megabytes again and again takes long.
void KeepBlocksOnly(PackageState& state, const std::string& name) {
    const PackageImage image(state.host);
    const auto entry = static_cast<std::size_t>(image.Find(name)->index * image.entry_size);
    StoreAt(state.host, image.HostOffset(image.directory_chain, entry + 5), std::uint64_t{10});
    state.files[name].resize(10);
}

std::vector<PackageState> MakeStates() {
    std::vector<PackageState> states;
    states.push_back(MakeState("fresh", false, 0, [](std::int32_t, PackageState&) {}));
    states.push_back(MakeState("growing", false, 0, FillSmall));
    states.push_back(MakeState("map_full", false, 3, FillMap));
    states.push_back(MakeState("directory_full", false, 0, FillDirectory));
    states.push_back(MakeState("directory_full_wide", true, 0, FillSmall));
    states.push_back(MakeState("fragmented", false, 1, Fragment));
    EXPECT_EQ(PackageImage(states[2].host).block_count, 998);  // as many as one header block has words for
    KeepBlocksOnly(states[2], "filler");
    PackageState shared = states[5];
    shared.name = "shared_handles";
    shared.shared = true;
    states.push_back(shared);
    PackageState behind = states[1];  // after other data, and with a part of a block at the end
    behind.name = "behind_data";
    behind.base = 12345;
    behind.host.insert(behind.host.begin(), 12345, 'x');
    behind.host.insert(behind.host.end(), 1000, 'x');
    states.push_back(behind);
    return states;
}

}  // namespace

const std::vector<PackageState>& PackageStates() {
    static const std::vector<PackageState> states = MakeStates();
    return states;
}

const PackageState& StateNamed(const std::string& name) {
    for (const PackageState& state : PackageStates())
        if (state.name == name) return state;
    std::abort();
}

World::World(const PackageState& of, std::int32_t* error) : state(of) {
    WriteHostFile(path, state.host);
    Open(error);
}

World::World(const PackageState& of) : World(of, nullptr) {
    EXPECT_NE(package_, 0);
}

World::~World() {
    Close();
    std::remove(path.c_str());
}

bool World::Open(std::int32_t* error) {
    const auto open = [&](std::int32_t read_only) {
        return vlt_package_open_ex(path.c_str(), 0, static_cast<std::uint32_t>(state.base), 0, read_only, 0, nullptr,
                                   nullptr, nullptr, error);
    };
    if (state.shared && open(1) == 0) return false;
    return (package_ = open(0)) != 0;
}

void World::Close() {
    vlt_package_close_all();
    package_ = 0;
}

Bytes World::Read(const std::string& name) const {
    FileInfo info;
    if (!GetInfo(package_, name, &info)) return {};
    const std::uint32_t file = OpenFile(package_, name, VLT_MODE_READ);
    const Bytes bytes = ReadFrom(file, static_cast<std::int32_t>(info.size + 1));
    vlt_file_close(file);
    return bytes;
}

std::optional<Bytes> World::Stored(const std::string& name) const {
    FileInfo info;
    return GetInfo(package_, name, &info) ? std::optional(Read(name)) : std::nullopt;
}

void World::ExpectFiles(const Model& files, const std::string& except) const {
    FileInfo info;
    for (std::int32_t cursor = 0; (cursor = Enumerate(package_, cursor, &info)) != 0;)
        EXPECT_TRUE(info.name == except || files.count(info.name)) << "there is a file \"" << info.name << "\"";
    for (const auto& [name, bytes] : files) {
        if (name == except) continue;
        EXPECT_EQ(GetInfo(package_, name, &info), 1) << name << " is gone";
        EXPECT_TRUE(Read(name) == bytes) << name << " has changed";
    }
}

// ---- Operations --------------------------------------------------------------------------------------------------

namespace {

const Bytes kLittle = Pattern("little", 6000), kMuch = Pattern("much", 40 * 4096 + 7), kOver = Pattern("over", 4500);
constexpr std::int64_t kOverAt = 100;

/// Opens a file with a failure that is one of the documented ones.
std::uint32_t TryOpen(World& world, const char* name, std::uint32_t mode, OpenHow how = {}) {
    std::uint32_t error = 99;
    const std::uint32_t file = OpenFile(world.package(), name, mode, how, &error);
    if (file != 0)
        EXPECT_EQ(error, 0u);
    else
        EXPECT_TRUE(error == VLT_FILE_NO_SLOT || error == VLT_FILE_NOT_FOUND) << error;
    return file;
}

bool OpensAndCloses(std::uint32_t file) {
    return file != 0 && vlt_file_close(file) == 1;
}

/// Writes; a failure leaves the position.
bool TryWrite(std::uint32_t file, const Bytes& bytes) {
    const std::int64_t position = PositionOf(file);
    const bool written = WriteTo(file, bytes);
    EXPECT_EQ(PositionOf(file), position + (written ? static_cast<std::int64_t>(bytes.size()) : 0));
    return written;
}

bool TryRead(std::uint32_t file) {
    const std::int64_t position = PositionOf(file);
    const Bytes bytes = ReadFrom(file, 4500);
    EXPECT_EQ(PositionOf(file), position + static_cast<std::int64_t>(bytes.size()));
    vlt_file_set_pos_bof(file);
    return bytes.size() == 4500;
}

void AddTo(std::optional<Bytes>& file, const Bytes& bytes) {
    if (!file) file = Bytes();
    file->insert(file->end(), bytes.begin(), bytes.end());
}

std::uint32_t Nothing(World&) {
    return 0;
}

std::uint32_t VictimToAppend(World& world) {
    return OpenFile(world.package(), "victim", VLT_MODE_APPEND);
}

std::uint32_t VictimToRead(World& world) {
    return OpenFile(world.package(), "victim", VLT_MODE_READ);
}

std::uint32_t VictimToWriteInside(World& world) {
    const std::uint32_t file = OpenFile(world.package(), "victim", VLT_MODE_WRITE);
    vlt_file_set_pos(file, kOverAt);
    return file;
}

std::uint32_t NewToAppend(World& world) {
    return OpenFile(world.package(), "new", VLT_MODE_APPEND);
}

bool OpenPackage(World& world, std::uint32_t) {
    std::int32_t error = 0;
    world.Close();
    const HeldResources none = HeldNow();
    if (world.Open(&error)) return true;
    EXPECT_TRUE(error == VLT_OPEN_NOT_A_PACKAGE || error == VLT_OPEN_NO_FILE || error == VLT_OPEN_ACCESS) << error;
    world.Close();
    EXPECT_TRUE(HeldNow() == none);
    return false;
}

bool OpenShare(World& world, std::uint32_t) {
    return vlt_package_close(vlt_package_open(world.path.c_str(), 0, 0, nullptr, nullptr, nullptr, nullptr));
}

bool Inform(World& world, std::uint32_t) {
    FileInfo info;
    return GetInfo(world.package(), "victim", &info) == 1 && Enumerate(world.package(), 0, &info) != 0;
}

/// A failure of the very last step leaves the file gone here, and empty in the package.
bool DeleteVictim(World& world, std::uint32_t) {
    return Delete(world.package(), "victim") == 1;
}

std::vector<Operation> MakeOperations() {
    return {
        {"open_package", "", false, Nothing, OpenPackage},
        {"open_share", "", false, Nothing, OpenShare},
        {"information", "", true, Nothing, Inform},
        {"open_to_read", "", true, Nothing,
         [](World& world, std::uint32_t) { return OpensAndCloses(TryOpen(world, "victim", VLT_MODE_READ)); }},
        {"read", "", true, VictimToRead, [](World&, std::uint32_t file) { return TryRead(file); }},
        {"set_time", "", true, Nothing,
         [](World& world, std::uint32_t) { return SetTime(world.package(), "victim", 1, 2, 3) == 1; }},
        {"make_file", "new", false, Nothing,
         [](World& world, std::uint32_t) { return OpensAndCloses(TryOpen(world, "new", VLT_MODE_WRITE)); },
         [](std::optional<Bytes>& file) { AddTo(file, {}); }},
        {"first_write", "new", false, NewToAppend, [](World&, std::uint32_t file) { return TryWrite(file, kLittle); },
         [](std::optional<Bytes>& file) { AddTo(file, kLittle); }},
        {"overwrite", "victim", true, VictimToWriteInside,
         [](World&, std::uint32_t file) {
             const bool written = TryWrite(file, kOver);
             vlt_file_set_pos(file, kOverAt);
             return written;
         },
         [](std::optional<Bytes>& file) { std::copy(kOver.begin(), kOver.end(), file->begin() + kOverAt); }},
        {"append_little", "victim", true, VictimToAppend,
         [](World&, std::uint32_t file) { return TryWrite(file, kLittle); },
         [](std::optional<Bytes>& file) { AddTo(file, kLittle); }},
        {"append_much", "victim", true, VictimToAppend,
         [](World&, std::uint32_t file) { return TryWrite(file, kMuch); },
         [](std::optional<Bytes>& file) { AddTo(file, kMuch); }},
        {"truncate", "victim", true, Nothing,
         [](World& world, std::uint32_t) {
             return OpensAndCloses(TryOpen(world, "victim", VLT_MODE_WRITE, {.truncate = true}));
         },
         [](std::optional<Bytes>& file) { file = Bytes(); }, true},
        {"delete", "victim", true, Nothing, DeleteVictim, [](std::optional<Bytes>& file) { file.reset(); }, true},
    };
}

std::optional<Bytes> Find(const Model& files, const std::string& name) {
    const auto found = files.find(name);
    return found == files.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

const std::vector<Operation>& Operations() {
    static const std::vector<Operation> operations = MakeOperations();
    return operations;
}

const Operation& OperationNamed(const std::string& name) {
    for (const Operation& operation : Operations())
        if (operation.name == name) return operation;
    std::abort();
}

Model After(const Operation& operation, Model files) {
    if (!operation.effect) return files;
    std::optional<Bytes> target = Find(files, operation.target);
    operation.effect(target);
    files.erase(operation.target);
    if (target) files[operation.target] = *target;
    return files;
}

bool Plausible(const Operation& operation, const std::optional<Bytes>& before, const std::optional<Bytes>& now) {
    std::optional<Bytes> after = before;
    if (operation.effect) operation.effect(after);
    if (now == before || now == after || (now && now->empty() && (operation.may_empty || !before))) return true;
    if (!now || !before || !after || now->size() != after->size()) return false;
    for (std::size_t i = 0; i < now->size(); ++i)
        if ((*now)[i] != (*after)[i] && (i >= before->size() || (*now)[i] != (*before)[i])) return false;
    return true;
}

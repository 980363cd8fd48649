// SPDX-License-Identifier: MIT
#include "tests/faults/world.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace {

Steps Joined(std::initializer_list<Steps> parts) {
    Steps joined;
    for (const Steps& part : parts) joined.insert(joined.end(), part.begin(), part.end());
    return joined;
}

const Steps kSmall = {{"victim", 5000}, {"other", 10000}, {"tiny", 10}};
const Steps kManyNames = Joined({kSmall, {{"d", 0}, {"e", 0}, {"f", 0}, {"g", 0}}});
const Steps kFull = Joined({kManyNames, {{"d", kDrop}, {"filler", (998 - 2 - 6) * 4096}}});
// Two files with a block of each in turn, and holes of one block.
const Steps kTurn = {{"victim", 4096}, {"hole", 4096}, {"other", 4096}};
const Steps kPieces = Joined({kTurn, kTurn, kTurn, kTurn, kTurn, {{"victim", 100}, {"hole", kDrop}}});
// A directory of two blocks, files in pieces, and free blocks at the end.
const Steps kWhole = {{"victim", 4096}, {"other", 4097}, {"tiny", 10}, {"victim", 4096}, {"other", 4097},
                      {"d", 0},         {"e", 0},        {"f", 0},     {"g", 0},         {"h", 0},
                      {"victim", 4096}, {"d", 3 * 4096}, {"d", kDrop}};

PackageState states[] = {
    {"fresh", false, 0, {}},
    {"growing", false, 0, kSmall},
    {"map_full", false, 3, kFull, 0, false, true},
    {"directory_full", false, 0, kManyNames},
    {"directory_full_wide", true, 0, kSmall},
    {"fragmented", false, 1, kPieces},
    {"shared_handles", false, 1, kPieces, 0, true},
    {"behind_data", false, 0, kSmall, 12345},
    {"whole", false, 0, kWhole},
    {"whole_wide", true, 0, kWhole},
    {"long_header", false, 4, kWhole},
    {"four_blocks", false, 0, {{"victim", 4 * 4096}}},
};

/// Leaves a file its blocks but only a few bytes of its length: comparing four megabytes again and again takes long.
void KeepBlocksOnly(PackageState& state, const std::string& name) {
    const PackageImage image(state.host);
    EXPECT_EQ(image.block_count, 998);  // as many as one header block has words for
    const auto entry = static_cast<std::size_t>(image.Find(name)->index * image.entry_size);
    StoreAt(state.host, image.HostOffset(image.directory_chain, entry + 5), std::uint64_t{10});
    state.files[name].resize(10);
}

void Make(PackageState& state) {
    EXPECT_EQ(vlt_package_create("state.pkg", state.wide, state.size_mb, nullptr, nullptr), 1);
    state.host = ReadHostFile("state.pkg");
    std::remove("state.pkg");
    const PackageState empty = {"empty", state.wide, 0, {}, 0, false, false, state.host};
    World world(empty);
    for (const auto& [name, bytes] : state.steps)
        bytes == kDrop ? world.Drop(state.files, name)
                       : world.Put(state.files, name, static_cast<std::size_t>(bytes));
    world.Close();
    EXPECT_EQ(Faults(world.Image()), "");
    state.host = ReadHostFile(world.path);
    if (state.longer) KeepBlocksOnly(state, "filler");
    if (state.base == 0) return;
    state.host.insert(state.host.begin(), static_cast<std::size_t>(state.base), 'x');
    state.host.insert(state.host.end(), 1000, 'x');  // and a part of a block at the end
}

}  // namespace

std::optional<Bytes> Find(const Model& files, const std::string& name) {
    const auto found = files.find(name);
    return found == files.end() ? std::nullopt : std::optional(found->second);
}

const PackageState& StateNamed(const std::string& name) {
    PackageState* state = states;
    while (state != std::end(states) && state->name != name) ++state;
    if (state == std::end(states)) std::abort();
    if (state->host.empty()) Make(*state);
    return *state;
}

World::World(const PackageState& of, std::int32_t* error) : state(of) {
    WriteHostFile(path, state.host);
    EXPECT_TRUE(Open(error) || error);
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

std::optional<Bytes> World::Stored(const std::string& name) const {
    FileInfo info;
    if (!GetInfo(package_, name, &info)) return std::nullopt;
    const std::uint32_t file = OpenFile(package_, name, VLT_MODE_READ);
    const Bytes bytes = ReadFrom(file, static_cast<std::int32_t>(info.size + 1));
    vlt_file_close(file);
    return bytes;
}

void World::Put(Model& files, const std::string& name, std::size_t length, bool anew) const {
    const std::uint32_t file = OpenFile(package_, name, anew ? VLT_MODE_WRITE : VLT_MODE_APPEND, {.truncate = anew});
    if (anew) files[name].clear();
    const Bytes bytes = Pattern(name + std::to_string(files[name].size()), length);
    EXPECT_TRUE(file != 0 && (bytes.empty() || WriteTo(file, bytes))) << name;
    vlt_file_close(file);
    files[name].insert(files[name].end(), bytes.begin(), bytes.end());
}

void World::Drop(Model& files, const std::string& name) const {
    EXPECT_EQ(Delete(package_, name), 1);
    files.erase(name);
}

void World::ExpectFiles(const Model& files, const std::string& except) const {
    FileInfo info;
    for (std::int32_t cursor = 0; (cursor = Enumerate(package_, cursor, &info)) != 0;)
        EXPECT_TRUE(info.name == except || files.count(info.name)) << "there is a file \"" << info.name << "\"";
    for (const auto& [name, bytes] : files) {
        if (name == except) continue;
        EXPECT_TRUE(Stored(name) == bytes) << name << " is gone or has changed";
    }
}

void World::ExpectKept(const Model& files, const Leniency& leniency) {
    ExpectFiles(files);
    Close();
    EXPECT_EQ(Faults(Image(), leniency), "");
    EXPECT_TRUE(Open());
    ExpectFiles(files);
}

// ---- Operations --------------------------------------------------------------------------------------------------

namespace {

/// Opens a file and closes it, or fails as documented.
bool Opens(const World& world, const char* name, std::uint32_t mode, OpenHow how = {}) {
    std::uint32_t error = 99;
    const std::uint32_t file = OpenFile(world.package(), name, mode, how, &error);
    EXPECT_TRUE(file ? error == 0 : error == VLT_FILE_NO_SLOT || error == VLT_FILE_NOT_FOUND) << error;
    return file != 0 && vlt_file_close(file) == 1;
}

/// Writes; a failure leaves the position.
bool TryWrite(std::uint32_t file, const Bytes& bytes) {
    const std::int64_t position = PositionOf(file);
    const bool written = WriteTo(file, bytes);
    EXPECT_EQ(PositionOf(file), position + (written ? static_cast<std::int64_t>(bytes.size()) : 0));
    return written;
}

bool TryRead(World&, std::uint32_t file) {
    const std::int64_t position = PositionOf(file);
    const Bytes bytes = ReadFrom(file, 4500);
    EXPECT_EQ(PositionOf(file), position + static_cast<std::int64_t>(bytes.size()));
    vlt_file_set_pos_bof(file);
    return bytes.size() == 4500;
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

}  // namespace

const std::vector<Operation> kOperations = {
    {"open_package", "", OpenPackage},
    {"open_share", "",
     [](World& world, std::uint32_t) {
         return vlt_package_close(vlt_package_open(world.path.c_str(), 0, 0, nullptr, nullptr, nullptr, nullptr)) ==
                1;
     }},
    {"information", "victim",
     [](World& world, std::uint32_t) {
         FileInfo info;
         return GetInfo(world.package(), "victim", &info) == 1 && Enumerate(world.package(), 0, &info) != 0;
     }},
    {"open_to_read", "victim", [](World& world, std::uint32_t) { return Opens(world, "victim", VLT_MODE_READ); }},
    {"read", "victim", TryRead, Effect::nothing, VLT_MODE_READ},
    {"set_time", "victim",
     [](World& world, std::uint32_t) { return SetTime(world.package(), "victim", 1, 2, 3) == 1; }},
    {"make_file", "new", [](World& world, std::uint32_t) { return Opens(world, "new", VLT_MODE_WRITE); },
     Effect::writes},
    {"first_write", "new", nullptr, Effect::writes, VLT_MODE_APPEND, Pattern("little", 6000)},
    {"overwrite", "victim", nullptr, Effect::writes, VLT_MODE_WRITE, Pattern("over", 4500), 100},
    {"append_little", "victim", nullptr, Effect::writes, VLT_MODE_APPEND, Pattern("little", 6000)},
    {"append_much", "victim", nullptr, Effect::writes, VLT_MODE_APPEND, Pattern("much", 40 * 4096 + 7)},
    {"truncate", "victim",
     [](World& world, std::uint32_t) { return Opens(world, "victim", VLT_MODE_WRITE, {.truncate = true}); },
     Effect::empties},
    // A failure of the very last step leaves the file gone here, and empty in the package.
    {"delete", "victim", [](World& world, std::uint32_t) { return Delete(world.package(), "victim") == 1; },
     Effect::deletes},
};

std::uint32_t Operation::Prepare(const World& world) const {
    if (mode == kNotOpened) return 0;
    const std::uint32_t file = OpenFile(world.package(), target, mode);
    if (position > 0) vlt_file_set_pos(file, static_cast<std::int64_t>(position));
    return file;
}

bool Operation::Act(World& world, std::uint32_t file) const {
    return act ? act(world, file) : TryWrite(file, bytes);
}

std::optional<Bytes> Operation::Applied(std::optional<Bytes> file) const {
    if (effect == Effect::nothing) return file;
    if (effect == Effect::deletes) return std::nullopt;
    if (effect == Effect::empties || !file) file = Bytes();
    const std::size_t at = mode == VLT_MODE_WRITE ? position : file->size();
    file->resize(std::max(file->size(), at + bytes.size()));
    std::copy(bytes.begin(), bytes.end(), file->begin() + static_cast<std::ptrdiff_t>(at));
    return file;
}

const Operation& OperationNamed(const std::string& name) {
    const auto found =
        std::find_if(kOperations.begin(), kOperations.end(), [&](auto& one) { return one.name == name; });
    if (found == kOperations.end()) std::abort();
    return *found;
}

Model After(const Operation& operation, Model files) {
    const std::optional<Bytes> target = operation.Applied(Find(files, operation.target));
    files.erase(operation.target);
    if (target) files[operation.target] = *target;
    return files;
}

bool Plausible(const Operation& operation, const std::optional<Bytes>& before, const std::optional<Bytes>& now) {
    const std::optional<Bytes> after = operation.Applied(before);
    const bool may_empty = operation.effect == Effect::empties || operation.effect == Effect::deletes || !before;
    if (now == before || now == after || (may_empty && now == Bytes())) return true;
    if (!now || !before || !after || now->size() != after->size()) return false;
    for (std::size_t i = 0; i < now->size(); ++i)
        if ((*now)[i] != (*after)[i] && (i >= before->size() || (*now)[i] != (*before)[i])) return false;
    return true;
}

void Count(const char* what) {
    static struct Figures {
        std::map<std::string, int> of;
        ~Figures() {
            for (const auto& [name, count] : of) std::printf("%d %s\n", count, name.c_str());
        }
    } figures;
    ++figures.of[what];
}

// SPDX-License-Identifier: MIT
// Packages in states where an operation meets what it rarely meets, the operations that are tried on them, and the
// faults that they meet.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/host_faults.h"
#include "tests/support/store_calls.h"

/// The stored files of a package, by name.
using Model = std::map<std::string, Bytes>;

std::optional<Bytes> Find(const Model& files, const std::string& name);

/// Names of files with the bytes that each is given more, or kDrop for one that is deleted.
using Steps = std::vector<std::pair<const char*, int>>;
constexpr int kDrop = -1;

/// How a package is made, and what it is then.
struct PackageState {
    std::string name;
    bool wide;
    std::int32_t size_mb;
    Steps steps;
    std::int64_t base = 0;  // where the package lies in its host file
    bool shared = false;    // used through a second handle, beside a read-only one
    bool longer = false;    // a file has more blocks than its length needs
    Bytes host = {};
    Model files = {};
};

/// Fresh, growing, map_full, directory_full, fragmented, ...; each made once.
const PackageState& StateNamed(const std::string& name);

/// A package of one state in a host file of its own, open; closed and removed at the end of its scope.
class World {
public:
    /// A package that may not open is given a place for an open code, which tells why.
    explicit World(const PackageState& state, std::int32_t* error = nullptr);
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    /// Opens the package, or says why not with an open code in `error`.
    bool Open(std::int32_t* error = nullptr);
    void Close();
    std::int32_t package() const { return package_; }

    /// The file as it is stored now; nothing when there is none.
    std::optional<Bytes> Stored(const std::string& name) const;
    /// Adds bytes to a file, which is made or emptied first where that is asked for, and to the model of it.
    void Put(Model& files, const std::string& name, std::size_t length, bool anew = false) const;
    void Drop(Model& files, const std::string& name) const;
    /// Every file but one reads back as the model has it, and the directory lists no other.
    void ExpectFiles(const Model& files, const std::string& except = "") const;
    /// So they do now and when the package was closed, and opened again; it is sound.
    void ExpectKept(const Model& files, const Leniency& leniency);
    PackageImage Image() const { return PackageImage(ReadHostFile(path), static_cast<std::size_t>(state.base)); }

    const PackageState& state;
    const std::string path = "world.pkg";

private:
    std::int32_t package_ = 0;
};

/// What an operation makes of its target.
enum class Effect { nothing, writes, empties, deletes };

/// One exported operation that touches the host file or the heap.
struct Operation {
    const char* name;
    std::string target;                  // the file that it is for, if it is for one
    bool (*act)(World&, std::uint32_t);  // false for failure, in the documented manner; null for a plain write
    Effect effect = Effect::nothing;     // when it succeeds
    std::uint32_t mode = kNotOpened;     // how the target is opened before
    Bytes bytes = {};                    // what is written
    std::size_t position = 0;            // and where in a file that is not appended to

    static constexpr std::uint32_t kNotOpened = 99;
    /// Opens the target; 0 for an operation that needs no file handle.
    std::uint32_t Prepare(const World& world) const;
    bool Act(World& world, std::uint32_t file) const;
    std::optional<Bytes> Applied(std::optional<Bytes> file) const;
};

extern const std::vector<Operation> kOperations;
const Operation& OperationNamed(const std::string& name);

/// The model after an operation on it.
Model After(const Operation& operation, Model files);

/// Whether a file may look like this after an operation on it was cut off: as before, as after, or partly written.
bool Plausible(const Operation& operation, const std::optional<Bytes>& before, const std::optional<Bytes>& now);

/// Adds one to a figure that is printed at the end of the program.
void Count(const char* what);

struct FaultKind {
    const char* name;
    unsigned calls;
    FaultManner manner;
    bool from_then_on;

    bool of_system() const { return (calls & kFaultSystem) != 0; }
    Fault At(int nth) const { return {calls, nth, manner, from_then_on}; }
};

constexpr FaultKind kFaultKinds[] = {
    {"a host call fails", kFaultHost, FaultManner::cleanly, false},
    {"host calls fail from then on", kFaultHost, FaultManner::cleanly, true},
    {"a host call is cut short", kFaultHost, FaultManner::cut_short, false},
    {"the reply of a host call is lost", kFaultHost, FaultManner::lost_reply, false},
    {"the disk is full", kFaultWrite + kFaultExtend, FaultManner::cut_short, true},
    {"disk streams are cut short", kFaultDisk, FaultManner::cut_short, true},
    {"memory runs out once", kFaultSystem, FaultManner::cleanly, false},
    {"memory runs out", kFaultSystem, FaultManner::cleanly, true},
};

/// A process that ends, between two changes of the host file or in the middle of one.
constexpr FaultKind kEnds[] = {
    {"ends", kFaultWrite + kFaultExtend, FaultManner::cleanly, true},
    {"ends in the middle", kFaultWrite + kFaultExtend, FaultManner::stops, true},
};

/// What a package may show after one of them.
constexpr Leniency kCutOff = {
    .longer_chains = true, .leaked_blocks = true, .short_header = true, .unfinished_ends = true};

/// Lets each kind of fault come at the first call, the second, ..., as long as `attempt` says that it came.
template <std::size_t N, typename Attempt>
void TryFaults(const FaultKind (&kinds)[N], const char* counted, Attempt attempt) {
    for (const FaultKind& kind : kinds) {
        for (int nth = 1; !testing::Test::HasFailure(); ++nth) {
            SCOPED_TRACE(testing::Message() << kind.name << ", call " << nth);
            if (!attempt(kind, nth)) break;
            Count(counted);
        }
    }
}

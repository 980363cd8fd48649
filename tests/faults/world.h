// SPDX-License-Identifier: MIT
// Packages in states where an operation meets what it rarely meets, and the operations that are tried on them.
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

struct PackageState {
    std::string name;
    Bytes host;
    Model files;
    std::int64_t base = 0;  // where the package lies in its host file
    bool shared = false;    // used through a second handle, beside a read-only one
};

/// Fresh, growing, map full, directory full, fragmented, ...; made once.
const std::vector<PackageState>& PackageStates();
const PackageState& StateNamed(const std::string& name);

/// A package of one state in a host file of its own, open; closed and removed at the end of its scope.
class World {
public:
    explicit World(const PackageState& state);
    /// The same with a package that may not open; `error` tells why.
    World(const PackageState& state, std::int32_t* error);
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    /// Opens the package, or says why not with an open code in `error`.
    bool Open(std::int32_t* error = nullptr);
    void Close();
    std::int32_t package() const { return package_; }

    Bytes Read(const std::string& name) const;
    /// The file as it is stored now; nothing when there is none.
    std::optional<Bytes> Stored(const std::string& name) const;
    /// Every file but one reads back as the model has it, and the directory lists no other.
    void ExpectFiles(const Model& files, const std::string& except = "") const;
    PackageImage Image() const { return PackageImage(ReadHostFile(path), static_cast<std::size_t>(state.base)); }

    const PackageState& state;
    const std::string path = "world.pkg";

private:
    std::int32_t package_ = 0;
};

/// One exported operation that touches the host file or the heap.
struct Operation {
    std::string name;
    std::string target;                               // the file that it changes, if it changes one
    bool needs_target;                                // it is not tried where there is no such file
    std::uint32_t (*prepare)(World&);                 // what it needs open, a file handle or 0
    bool (*act)(World&, std::uint32_t);               // false for failure, in the documented manner
    void (*effect)(std::optional<Bytes>&) = nullptr;  // on the target, when it succeeds
    bool may_empty = false;                           // a failure half way may leave the target empty
};

const std::vector<Operation>& Operations();
const Operation& OperationNamed(const std::string& name);

/// The model after an operation on it.
Model After(const Operation& operation, Model files);

/// Whether a file may look like this after an operation on it was cut off: as before, as after, or partly written.
bool Plausible(const Operation& operation, const std::optional<Bytes>& before, const std::optional<Bytes>& now);

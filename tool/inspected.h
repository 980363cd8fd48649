// SPDX-License-Identifier: MIT
// A package looked at byte by byte, without the library, so that damage is no reason to stop.
#pragma once

#include "inspect/package.h"
#include "tool/names.h"
#include "tool/options.h"
#include "tool/output.h"
#include "tool/system.h"

namespace tool {

/// The stored form of a name as inspect/ has it, see names.h.
std::string stored_name(const std::u16string& name, bool wide);

class Inspected {
public:
    /// Locks the host file for reading. Fails with `Failure` when there is none, not when it is no package.
    explicit Inspected(const PackageOptions& options);

    const std::string& path() const { return path_; }
    const Names& names() const { return names_; }
    std::string stored(const std::u16string& name) const { return stored_name(name, package.wide()); }
    /// A stored name as inspect/ has it.
    std::u16string package_name(const std::string& stored) const;
    std::string shown(const std::u16string& name) const { return names_.shown(stored(name)); }
    /// Adds a name under a key, and its bytes where it is no text.
    void add_name(Json& object, const char* key, const std::string& stored) const;

    /// To be called when the package has been taken for one with names of another width.
    void names_changed(const std::string& encoding) { names_ = Names(package.wide(), encoding); }

    /// Fails with `Failure` when the host file does not begin like a package.
    void require_package() const;
    /// The stored file that an argument names; fails when there is none.
    inspect::Entry entry_of_argument(const std::string& text) const;

private:
    std::string path_;
    std::unique_ptr<HostLock> lock_;
    inspect::HostFile host_;

public:
    inspect::Package package;

private:
    Names names_;
};

}  // namespace tool

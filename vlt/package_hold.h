// SPDX-License-Identifier: MIT
// Holding a package for one operation on its files.
#pragma once

#include "platform/mutex.h"
#include "vlt/package_table.h"

namespace vlt {

/// Locks the mutex of a slot's package for the length of a scope.
class PackageHold {
public:
    explicit PackageHold(vlt_package& slot);
    ~PackageHold();
    PackageHold(const PackageHold&) = delete;
    PackageHold& operator=(const PackageHold&) = delete;

    Store& store() { return *base_.store; }

    /// The base slot may not write: stamps of reading stay in memory.
    bool base_read_only() const { return base_.read_only != 0; }

private:
    vlt_package& base_;
    MutexHold hold_;
};

}  // namespace vlt

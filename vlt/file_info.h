// SPDX-License-Identifier: MIT
// What is reported of a stored file.
#pragma once

#include <cstdint>

#include "vlt/format.h"

namespace vlt {

/// Where the caller wants the parts of a file's information; null ones are skipped.
struct InfoOut {
    std::uint32_t* kind;
    std::int64_t* size;
    double* created;
    double* accessed;
    double* written;

    void fill(const vlt_dir_entry& entry) const;
};

}  // namespace vlt

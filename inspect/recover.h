// SPDX-License-Identifier: MIT
// Putting a package together whose magic, header or directory is damaged: from what the scan found, where its own
// links do not tell. The host file is not touched.
#pragma once

#include "inspect/scan.h"

namespace inspect {

/// What had to be guessed.
struct Recovered {
    bool width = false;      // whether names are narrow or wide
    bool header = false;     // where blocks of the header lie
    bool directory = false;  // where blocks of the directory lie
    int missing = 0;         // blocks of the two that were not found
};

Recovered Recover(Package& package, const Scan& scan);

}  // namespace inspect

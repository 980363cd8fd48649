// SPDX-License-Identifier: MIT
// The form of an input of the package target: a package, patches of its bytes up to kPatchEnd, and then calls as
// tests/support/store_script.h tells. The package and each patch begin with one of these.
#pragma once

#include <cstdint>

enum Base : std::uint8_t {
    kBaseNarrow,  // a few files, fragmented
    kBaseWide,    // the same with wide names
    kBaseBehind,  // the same behind other bytes
    kBaseZeros,   // 16 blocks of zeros, for the patches to fill
    kBaseFull,    // the block map has no room left
};

enum Patch : std::uint8_t {
    kPatchEnd,
    kPatchWord,    // block: 1 byte; its word: 4 bytes
    kPatchEntry,   // entry: 1 byte; field: 1 byte; value: 1 byte, see PatchEntry
    kPatchBytes,   // offset: 3 bytes; count: 1 byte; the bytes
    kPatchLength,  // the host file's length: 3 bytes
    kPatchCount
};

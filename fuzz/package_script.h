// SPDX-License-Identifier: MIT
// The form of an input of the package target: a package, patches of its bytes, calls. Each begins with one of these.
#pragma once

#include <cstdint>

/// The package to begin with; then the patches, up to kPatchEnd.
enum Base : std::uint8_t {
    kBaseNarrow,       // a few files, fragmented
    kBaseWide,         // the same with wide names
    kBaseCredentials,  // the same at an offset, with credentials "r" and "w"
    kBaseZeros,        // 16 blocks of zeros, for the patches to fill
    kBaseFull,         // the block map has no room left
    kBaseCount
};

enum Patch : std::uint8_t {
    kPatchEnd,     //
    kPatchWord,    // block: 1 byte; next block: 1 byte; 1 byte: 0 free, 1 in use, more: the word's upper byte
    kPatchEntry,   // entry: 1 byte; field: 1 byte; value: 1 byte, see PatchEntry
    kPatchBytes,   // offset: 3 bytes; count: 1 byte; the bytes
    kPatchLength,  // the host file's length: 3 bytes
    kPatchCount
};

/// What is done with a package, with the arguments that follow. Handles are picked among those opened.
enum Call : std::uint8_t {
    kOpenPackage,   // how: 1 byte, see OpenPackage
    kClosePackage,  // package
    kReopen,        //
    kOpenFile,      // package, name, mode and flags: 1 byte
    kCloseFile,     // file
    kRead,          // file, length: 2 bytes
    kWrite,         // file, length: 2 bytes
    kSeek,          // file, where: 1 byte, position: 3 bytes
    kAsk,           // file
    kInfo,          // package, name
    kSetTime,       // package, name
    kDelete,        // package, name
    kEnumerate,     // package
    kTick,          // seconds: 1 byte
    kFillDisk,      // blocks that still fit: 1 byte
    kAnyHandle,     // a handle: 4 bytes
    kCallCount
};

// SPDX-License-Identifier: MIT
// A script of calls on one package, taken from bytes: random ones, or those of a fuzzer. As long as the package is
// sound and the disk has room, the plain reference runs beside the library: every result and every listing is the
// same, and after each call every byte of the host file. Of a damaged package: the results are among the documented
// ones, listings end, and every file that was sound at first or was made since holds what the script wrote, byte for
// byte, whatever it does to the others. With a full disk so do the files that are not being changed.
#pragma once

#include <functional>

#include "tests/support/input.h"
#include "tests/support/store_calls.h"

/// The first byte of a call; up to the next number it is the same call: random ones write often and seldom close a
/// package. Every call has 7 bytes: this one, a handle, a name, how, and a number of 3 bytes.
enum Call : std::uint8_t {
    kOpenPackage = 0,
    kClosePackage = 5,
    kOpenFile = 8,
    kCloseFile = 30,
    kWrite = 44,
    kRead = 64,
    kSeek = 74,
    kDelete = 86,
    kInfo = 92,
    kSetTime = 96,
    kReopen = 100,    // closes all packages and opens one, if the handle is below 64
    kTick = 101,      // so many seconds pass
    kFillDisk = 102,  // so many blocks still fit
    kCallEnd = 103
};
// Handle: one of those that were opened; from 250 on, any number. Name: which file, and how it is spelled.
// How, to open a file: its mode, 0x3C for an exclusive open, 0x40 of its upper two bits to truncate. See
// store_script.cpp for the others.

struct StoreScript {
    std::string path;                  // of the host file
    std::size_t base;                  // where in it the package begins; its credentials are "r" and "w"
    std::uint8_t read_only_base;       // of the opening that the script begins with
    std::uint32_t files;               // different names
    std::uint32_t largest;             // bytes of the largest write
    std::function<std::time_t()> now;  // the present second

    // What a fuzz target can do besides.
    std::function<void(int)> tick = {};        // lets seconds pass
    std::function<void(int)> fill_disk = {};   // lets the host file grow so many blocks and no more
    std::function<bool()> disk_was_full = {};  // since then

    /// Runs at most so many calls; says what was wrong, nothing if all was well.
    std::string Run(Input input, int calls) const;
};

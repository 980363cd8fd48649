// SPDX-License-Identifier: MIT
// What the fuzz targets share: a property that must hold, a folder for the files of one input, a clock, a character
// set and a disk that are set. Inputs are taken apart with Input.
#pragma once

#include <cstdint>
#include <string>

#include "tests/support/input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the run when a property does not hold.
void Require(bool holds, const char* file = __builtin_FILE(), int line = __builtin_LINE());
/// The same for a list of faults, which is printed.
void RequireNone(const std::string& faults, const char* file = __builtin_FILE(), int line = __builtin_LINE());

/// The path of a file in the scratch folder, which this process alone has; it goes when the process ends, but after
/// a finding it is left as it was.
std::string Scratch(const std::string& name);

/// To be called at the end of each input: nothing may be held, the scratch folder is emptied, and disk, clock and
/// character set are as they were at first.
void ResetHost();

void TickClock(int seconds);
/// Bytes from 0x81 on lead a character of two bytes, whose second byte may be any but zero.
void UseDoubleBytes(bool on);

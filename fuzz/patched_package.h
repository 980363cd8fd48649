// SPDX-License-Identifier: MIT
// The package that an input of the targets `package` and `inspect` begins with, see package_script.h.
#pragma once

#include <string>

#include "tests/support/input.h"
#include "tests/support/package_image.h"

/// Takes a package and patches of it from the input. Returns the host file, and where the package begins in it.
Bytes PatchedPackage(Input& input, const std::string& scratch, std::size_t* base);

// SPDX-License-Identifier: MIT
// The store's functions for tests that do not care about the width of names: each call goes to the narrow or the wide
// twin, as the package asks. Names given here are ASCII.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>

#include "tests/support/package_image.h"
#include "vlt.h"

using WideName = std::basic_string<vlt_wchar>;

inline WideName Widen(const std::string& name) {
    return WideName(name.begin(), name.end());
}

/// What the library reports of a stored file; `name` only when it is enumerated.
struct FileInfo {
    std::uint32_t kind = 99;
    std::int64_t size = -99;
    double created = -1, accessed = -1, written = -1;
    std::string name;

    bool operator==(const FileInfo&) const = default;
};

struct OpenHow {
    bool exclusive = false;
    bool truncate = false;
};

/// A file handle, 0 for failure.
std::uint32_t OpenFile(std::int32_t package, const std::string& name, std::uint32_t mode, OpenHow how = {},
                       std::uint32_t* error = nullptr);
/// The error code of an open that fails, 0 after one that succeeds; the file is closed again.
std::uint32_t OpenError(std::int32_t package, const std::string& name, std::uint32_t mode, OpenHow how = {});
std::int32_t GetInfo(std::int32_t package, const std::string& name, FileInfo* info);
std::int32_t SetTime(std::int32_t package, const std::string& name, double created, double accessed, double written);
std::int32_t Delete(std::int32_t package, const std::string& name);
std::int32_t Enumerate(std::int32_t package, std::int32_t cursor, FileInfo* info);

bool WriteTo(std::uint32_t file, const Bytes& bytes);
/// Up to `length` bytes from the position on.
Bytes ReadFrom(std::uint32_t file, std::int32_t length);
std::int64_t PositionOf(std::uint32_t file);

/// `length` bytes that differ from one seed to the next.
Bytes Pattern(const std::string& seed, std::size_t length);

/// The stamp of a second.
double StampOf(std::time_t second);

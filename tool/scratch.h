// SPDX-License-Identifier: MIT
// Results are made beside the place where they belong and brought there when they are whole.
#pragma once

#include <string>
#include <string_view>

#include "tool/system.h"

namespace tool {

/// A folder of our own with a new name, which goes with everything in it when the object goes.
class ScratchFolder {
public:
    /// Makes it in `parent`, so that what it holds can be moved to a place there. Fails with `Failure`.
    explicit ScratchFolder(const fs::path& parent);
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const fs::path& path() const { return path_; }
    fs::path operator/(const std::string& name) const { return path_ / path_of(name); }

private:
    fs::path path_;
};

/// The folder that a file or folder of this path stands in.
fs::path folder_of(const fs::path& path);

/// A folder for files that are needed for a while only.
fs::path temporary_folder();

void make_folder(const fs::path& path);

/// The bytes of a whole file; "-" is standard input. Fails with `Failure`, as do the functions below.
std::string whole_file(const std::string& path);

void write_file(const fs::path& path, std::string_view bytes);

/// Fails with `Failure` when something stands there.
void check_free(const fs::path& path);

}  // namespace tool

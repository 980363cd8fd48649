// SPDX-License-Identifier: MIT
// What the files of a package hold that a script knows all of: those that were sound at first, and those that it
// made. Names are folded. Of any other file nothing is said, and nothing is wrong.
#pragma once

#include <map>

#include "tests/support/store_calls.h"

class KnownFiles {
public:
    explicit KnownFiles(const PackageImage& image) : files_(SoundFiles(image)) {}

    bool Knows(const std::u16string& name) const { return files_.count(name) != 0; }
    /// Whether a size may be reported of a file.
    bool MayHaveSize(const std::u16string& name, std::int64_t size) const;
    /// Whether a read of up to `wanted` bytes may bring the first `count` of `bytes` and end at a position.
    bool MayRead(const std::u16string& name, std::int64_t wanted, const Bytes& bytes, std::int64_t count,
                 std::int64_t end) const;

    void Make(const std::u16string& name) { files_[name].clear(); }
    void Empty(const std::u16string& name);
    /// Bytes were written, up to a position.
    void Write(const std::u16string& name, const Bytes& bytes, std::int64_t end);
    void Forget(const std::u16string& name) { files_.erase(name); }
    /// Forgets the files whose names a listing has twice.
    void ForgetTwins(const std::vector<FileInfo>& listing);

    /// With no file open: what is not in the host file, or does not read back through a package handle, as it was.
    std::string Fault(const PackageImage& image, std::int32_t package) const;

private:
    std::map<std::u16string, Bytes> files_;
};

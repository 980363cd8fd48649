// SPDX-License-Identifier: MIT
#include "tests/support/known_files.h"

#include <algorithm>

namespace {

/// What the host file holds of a stored file, past the library.
Bytes BytesOf(const PackageImage& image, const std::u16string& name) {
    for (const ImageEntry& entry : image.entries)
        if (entry.kind == VLT_ENTRY_FILE && FoldedName(entry.name) == name)
            return entry.first_block != 0 ? image.FileBytes(entry) : Bytes();
    return {0};
}

std::uint32_t OpenToRead(const PackageImage& image, std::int32_t package, const std::u16string& name) {
    const WideName wide(name.begin(), name.end());
    const std::string narrow(name.begin(), name.end());
    return static_cast<std::uint32_t>(image.wide
                                          ? vltw_file_open(package, wide.c_str(), VLT_MODE_READ, 0, 0, nullptr)
                                          : vlt_file_open(package, narrow.c_str(), VLT_MODE_READ, 0, 0, nullptr));
}

}  // namespace

bool KnownFiles::MayHaveSize(const std::u16string& name, std::int64_t size) const {
    const auto file = files_.find(name);
    return file == files_.end() || size == std::ssize(file->second);
}

bool KnownFiles::MayRead(const std::u16string& name, std::int64_t wanted, const Bytes& bytes, std::int64_t count,
                         std::int64_t end) const {
    const auto file = files_.find(name);
    if (file == files_.end()) return true;
    const std::int64_t from = end - count, left = std::max<std::int64_t>(std::ssize(file->second) - from, 0);
    return from >= 0 && count == std::min(wanted, left) &&
           std::equal(bytes.data(), bytes.data() + count, file->second.data() + (count ? from : 0));
}

void KnownFiles::Empty(const std::u16string& name) {
    if (Knows(name)) Make(name);
}

void KnownFiles::Write(const std::u16string& name, const Bytes& bytes, std::int64_t end) {
    const auto file = files_.find(name);
    if (file == files_.end() || bytes.empty()) return;
    file->second.resize(std::max(file->second.size(), static_cast<std::size_t>(end)));
    std::copy(bytes.begin(), bytes.end(), file->second.data() + (end - std::ssize(bytes)));
}

void KnownFiles::ForgetTwins(const std::vector<FileInfo>& listing) {
    std::map<std::u16string, int> bearers;
    for (const FileInfo& info : listing)
        if (++bearers[FoldedName(info.name)] > 1) Forget(FoldedName(info.name));
}

std::string KnownFiles::Fault(const PackageImage& image, std::int32_t package) const {
    for (const auto& [name, bytes] : files_) {
        if (BytesOf(image, name) != bytes) return "a file that has changed";
        const std::uint32_t file = OpenToRead(image, package, name);
        const Bytes read = ReadFrom(file, static_cast<std::int32_t>(bytes.size()) + 1);
        if (package != 0 && (file == 0 || read != bytes)) return "a file that does not read back";
    }
    return "";
}

// SPDX-License-Identifier: MIT
#include "inspect/source.h"

#include <stdio.h>  // fseeko, which takes offsets beyond 32 bits on every system

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace inspect {

static_assert(sizeof(off_t) == 8, "packages may be longer than 32 bits tell");

HostFile::HostFile(const std::string& path) : file_(std::fopen(path.c_str(), "rb")) {
    if (!file_ || fseeko(file_.get(), 0, SEEK_END) != 0)
        throw std::system_error(errno, std::generic_category(), path);
    std::setvbuf(file_.get(), nullptr, _IONBF, 0);  // callers read in large pieces
    const off_t end = ftello(file_.get());
    if (end < 0) throw std::system_error(errno, std::generic_category(), path);
    size_ = static_cast<std::uint64_t>(end);
}

std::size_t HostFile::Read(std::uint64_t offset, std::uint8_t* to, std::size_t count) const {
    if (offset >= size_ || fseeko(file_.get(), static_cast<off_t>(offset), SEEK_SET) != 0) return 0;
    return std::fread(to, 1, count, file_.get());
}

std::size_t Memory::Read(std::uint64_t offset, std::uint8_t* to, std::size_t count) const {
    if (offset >= bytes_.size()) return 0;
    const auto from = static_cast<std::size_t>(offset);
    const std::size_t there = std::min(count, bytes_.size() - from);
    std::copy_n(bytes_.data() + from, there, to);
    return there;
}

}  // namespace inspect

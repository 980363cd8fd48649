// SPDX-License-Identifier: MIT
// Where the bytes of a host file come from: the file itself, never held in memory as a whole, or bytes in memory.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace inspect {

using Bytes = std::vector<std::uint8_t>;

class Source {
public:
    virtual ~Source() = default;
    virtual std::uint64_t size() const = 0;
    /// Reads bytes from an offset. Returns how many could be read; fewer than asked at the end of the file, and where
    /// the device fails.
    virtual std::size_t Read(std::uint64_t offset, std::uint8_t* to, std::size_t count) const = 0;
};

/// A host file or a block device, opened for reading only.
class HostFile : public Source {
public:
    /// Throws std::system_error when the file cannot be opened.
    explicit HostFile(const std::string& path);
    std::uint64_t size() const override { return size_; }
    std::size_t Read(std::uint64_t offset, std::uint8_t* to, std::size_t count) const override;

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Close> file_;
    std::uint64_t size_ = 0;
};

/// Bytes that somebody else keeps.
class Memory : public Source {
public:
    explicit Memory(const Bytes& bytes) : bytes_(bytes) {}
    std::uint64_t size() const override { return bytes_.size(); }
    std::size_t Read(std::uint64_t offset, std::uint8_t* to, std::size_t count) const override;

private:
    const Bytes& bytes_;
};

}  // namespace inspect

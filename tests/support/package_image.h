// SPDX-License-Identifier: MIT
// What the tests ask of a package's bytes, as inspect/ reads them: fields, chains, entries, and what must hold in
// every package.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "inspect/package.h"

using Bytes = inspect::Bytes;
using ImageEntry = inspect::Entry;
using inspect::FoldedName;

/// The whole host file; empty when there is none.
Bytes ReadHostFile(const std::string& path);
void WriteHostFile(const std::string& path, const Bytes& bytes);
/// Where a host file is not as wanted, to a piece; -1 when it is.
std::int64_t FirstDifference(const std::string& path, const Bytes& wanted);

template <typename T>
T LoadAt(const Bytes& bytes, std::size_t offset) {
    T value = 0;
    for (std::size_t i = sizeof(T); i-- > 0;) value = static_cast<T>(value << 8 | bytes.at(offset + i));
    return value;
}
template <typename T>
void StoreAt(Bytes& bytes, std::size_t offset, T value) {
    for (std::size_t i = 0; i < sizeof(T); ++i)
        bytes.at(offset + i) = static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * i));
}
double LoadStamp(const Bytes& bytes, std::size_t offset);
void StoreStamp(Bytes& bytes, std::size_t offset, double stamp);

/// Reverses and inverts a credential, as its field holds it.
Bytes EncodedCredential(const std::string& credential);

class PackageImage {
public:
    explicit PackageImage(Bytes host, std::size_t base_offset = 0);

    bool is_package() const { return is_package_; }

    std::uint32_t Word(int block) const { return map_.Word(block); }
    std::vector<int> Chain(int start) const { return map_.Chain(start); }
    Bytes ChainBytes(int start) const;

    const ImageEntry* Find(const std::string& name) const;
    std::vector<int> ChainOf(const std::string& name) const;
    /// The stored bytes of a file, as far as its chain goes.
    Bytes FileBytes(const ImageEntry& entry) const;
    Bytes FileBytes(const std::string& name) const;
    int UsedBlocks() const;

    /// Offset in the host file of a byte of the header or directory run.
    std::size_t HostOffset(const std::vector<int>& chain, std::size_t run_offset) const;

    Bytes host;
    std::size_t base = 0;
    bool wide = false;
    int block_count = 0;
    int entry_size = 0;
    std::vector<int> header_chain;
    std::vector<int> directory_chain;
    Bytes header;     // the header run
    Bytes directory;  // the directory run
    std::vector<ImageEntry> entries;

private:
    bool is_package_ = false;
    inspect::BlockMap map_;
};

/// What a package may show after an operation was cut off or failed half way.
struct Leniency {
    bool longer_chains = false;  // a file may own more blocks than its length needs
    bool leaked_blocks = false;  // blocks may be in use that no chain holds
    bool short_header = false;   // the host file may be longer than the map has words for
    bool unfinished_ends =
        false;  // the blocks that a file has too many may look free, and free words be half written
};

/// Every broken rule of the package, one a line; empty when it is sound.
std::string Faults(const PackageImage& image, const Leniency& leniency = {});

/// The files of a package that hold all their bytes in blocks of their own, by the folded name that is theirs alone:
/// whatever else is damaged, these read back until they are changed.
std::map<std::u16string, Bytes> SoundFiles(const PackageImage& image);
/// A narrow name, folded, as images hold it.
std::u16string FoldedName(const std::string& narrow);

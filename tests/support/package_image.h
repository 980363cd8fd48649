// SPDX-License-Identifier: MIT
// The bytes of a package in its host file, read without the library: fields, chains, entries, and one checker of
// what must hold in every package.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

/// The whole host file; empty when there is none.
Bytes ReadHostFile(const std::string& path);
void WriteHostFile(const std::string& path, const Bytes& bytes);

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

struct ImageEntry {
    int index = 0;
    int kind = 0;
    std::uint32_t first_block = 0;  // block number
    std::int64_t size = 0;
    double created = 0, accessed = 0, written = 0;
    std::u16string name;  // narrow names: one unit a byte

    bool used() const { return kind == 1 || kind == 2; }
    /// Index of the first block; -1 for none, or a number that can be none's.
    int start() const { return first_block <= 0x0FFFFFFF ? static_cast<int>(first_block) - 1 : -1; }
};

class PackageImage {
public:
    explicit PackageImage(Bytes host, std::size_t base_offset = 0);

    bool is_package() const { return block_count >= 2 && !unknown_magic_; }

    std::uint32_t Word(int block) const;  // 0 beyond the map
    /// Blocks of the chain that starts at a block index. Ends where a link leads out of the package or back.
    std::vector<int> Chain(int start) const;
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
    void ReadHeader();
    void ReadEntries();
    bool unknown_magic_ = false;
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
/// The letters A to Z made small, as names are compared.
std::u16string FoldedName(std::u16string name);
/// The same of a narrow name, as images hold it.
std::u16string FoldedName(const std::string& narrow);

// SPDX-License-Identifier: MIT
#include "tests/support/package_image.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <sstream>

namespace {

constexpr int kBlock = 4096;
constexpr int kMap = 101;
constexpr std::uint32_t kUsed = 0x80000000, kNext = 0x0FFFFFFF, kUnused = 0x70000000;

}  // namespace

Bytes ReadHostFile(const std::string& path) {
    Bytes bytes;
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) return bytes;
    std::fseek(file, 0, SEEK_END);
    bytes.resize(static_cast<std::size_t>(std::ftell(file)));
    std::rewind(file);
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    std::fclose(file);
    return bytes;
}

void WriteHostFile(const std::string& path, const Bytes& bytes) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) return;
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
}

double LoadStamp(const Bytes& bytes, std::size_t offset) {
    double stamp;
    std::memcpy(&stamp, bytes.data() + offset, sizeof stamp);
    return stamp;
}

void StoreStamp(Bytes& bytes, std::size_t offset, double stamp) {
    std::memcpy(bytes.data() + offset, &stamp, sizeof stamp);
}

Bytes EncodedCredential(const std::string& credential) {
    Bytes field(16, 0xFF);
    for (std::size_t i = 0; i < credential.size(); ++i)
        field[15 - i] = static_cast<std::uint8_t>(~static_cast<unsigned char>(credential[i]));
    return field;
}

PackageImage::PackageImage(Bytes host_bytes, std::size_t base_offset)
    : host(std::move(host_bytes)), base(base_offset) {
    block_count = host.size() < base ? 0 : static_cast<int>((host.size() - base) / kBlock);
    if (block_count < 2) return;
    wide = std::memcmp(host.data() + base, "wvlt", 4) == 0;
    unknown_magic_ = !wide && std::memcmp(host.data() + base, "vlt", 3) != 0;
    entry_size = wide ? 1063 : 550;
    ReadHeader();
    directory_chain = Chain(1);
    directory = ChainBytes(1);
    ReadEntries();
}

void PackageImage::ReadHeader() {
    for (int block = 0; block >= 0;) {
        header_chain.push_back(block);
        const auto at = host.begin() + static_cast<std::ptrdiff_t>(base) + std::ptrdiff_t{block} * kBlock;
        header.insert(header.end(), at, at + kBlock);
        block = static_cast<int>(Word(block) & kNext) - 1;
        const bool seen = std::find(header_chain.begin(), header_chain.end(), block) != header_chain.end();
        if (block >= block_count || seen) break;
    }
}

void PackageImage::ReadEntries() {
    const int unit = wide ? 2 : 1;
    for (std::size_t at = 0; at + static_cast<std::size_t>(entry_size) <= directory.size();
         at += static_cast<std::size_t>(entry_size)) {
        ImageEntry entry;
        entry.index = static_cast<int>(entries.size());
        entry.kind = directory[at];
        entry.first_block = LoadAt<std::uint32_t>(directory, at + 1);
        entry.size = static_cast<std::int64_t>(LoadAt<std::uint64_t>(directory, at + 5));
        entry.created = LoadStamp(directory, at + 13);
        entry.accessed = LoadStamp(directory, at + 21);
        entry.written = LoadStamp(directory, at + 29);
        for (std::size_t i = at + 37; i < at + static_cast<std::size_t>(entry_size);
             i += static_cast<std::size_t>(unit)) {
            const auto c = static_cast<char16_t>(wide ? LoadAt<std::uint16_t>(directory, i) : directory[i]);
            if (c == 0) break;
            entry.name += c;
        }
        entries.push_back(entry);
    }
}

std::uint32_t PackageImage::Word(int block) const {
    const std::size_t at = kMap + 4 * static_cast<std::size_t>(block);
    return block >= 0 && at + 4 <= header.size() ? LoadAt<std::uint32_t>(header, at) : 0;
}

std::vector<int> PackageImage::Chain(int start) const {
    std::vector<int> chain;
    std::vector<bool> seen(static_cast<std::size_t>(std::max(block_count, 0)));
    for (int block = start; block >= 0 && block < block_count && !seen[static_cast<std::size_t>(block)];
         block = static_cast<int>(Word(block) & kNext) - 1) {
        seen[static_cast<std::size_t>(block)] = true;
        chain.push_back(block);
    }
    return chain;
}

Bytes PackageImage::ChainBytes(int start) const {
    Bytes bytes;
    for (const int block : Chain(start)) {
        const auto at = host.begin() + static_cast<std::ptrdiff_t>(base) + std::ptrdiff_t{block} * kBlock;
        bytes.insert(bytes.end(), at, at + kBlock);
    }
    return bytes;
}

const ImageEntry* PackageImage::Find(const std::string& name) const {
    const std::u16string wanted(name.begin(), name.end());
    for (const ImageEntry& entry : entries)
        if (entry.used() && entry.name == wanted) return &entry;
    return nullptr;
}

std::vector<int> PackageImage::ChainOf(const std::string& name) const {
    const ImageEntry* entry = Find(name);
    return entry && entry->first_block > 0 ? Chain(entry->start()) : std::vector<int>{};
}

Bytes PackageImage::FileBytes(const ImageEntry& entry) const {
    Bytes bytes = ChainBytes(entry.start());
    if (entry.size >= 0 && static_cast<std::uint64_t>(entry.size) < bytes.size())
        bytes.resize(static_cast<std::size_t>(entry.size));
    return bytes;
}

Bytes PackageImage::FileBytes(const std::string& name) const {
    const ImageEntry* entry = Find(name);
    return entry && entry->first_block != 0 ? FileBytes(*entry) : Bytes();
}

int PackageImage::UsedBlocks() const {
    int used = 0;
    for (int block = 0; block < block_count; ++block) used += (Word(block) & kUsed) != 0;
    return used;
}

std::size_t PackageImage::HostOffset(const std::vector<int>& chain, std::size_t run_offset) const {
    return base + static_cast<std::size_t>(chain.at(run_offset / kBlock)) * kBlock + run_offset % kBlock;
}

// ---- The checker -------------------------------------------------------------------------------------------------

namespace {

class Checker {
public:
    Checker(const PackageImage& image, const Leniency& leniency)
        : image_(image), leniency_(leniency), owner_(static_cast<std::size_t>(std::max(image.block_count, 0))) {}

    std::string Run() {
        if (!image_.is_package()) return "not a package\n";
        CheckHeaderLength();
        Claim("the header", 0, image_.header_chain.size());
        Claim("the directory", 1, image_.directory_chain.size());
        for (const ImageEntry& entry : image_.entries)
            if (entry.used()) CheckFile(entry);
        CheckWords();
        CheckDirectoryEnd();
        return faults_.str();
    }

private:
    void CheckHeaderLength() {
        const auto wanted = (kMap + 4 * static_cast<std::size_t>(image_.block_count) + kBlock - 1) / kBlock;
        const std::size_t found = image_.header_chain.size();
        if (found > wanted || (found < wanted && !leniency_.short_header))
            faults_ << "the header has " << found << " blocks, not " << wanted << "\n";
    }

    /// Gives the blocks of a chain to an owner; says how many there are.
    std::size_t Claim(const std::string& owner, int start, std::size_t needed) {
        const std::vector<int> chain = image_.Chain(start);
        for (std::size_t i = 0; i < chain.size(); ++i) {
            const int block = chain[i];
            std::string& held = owner_[static_cast<std::size_t>(block)];
            const bool looks_free = !(image_.Word(block) & kUsed);
            if (!held.empty()) faults_ << "block " << block << " belongs to " << held << " and to " << owner << "\n";
            if (looks_free && leniency_.unfinished_ends && i >= needed) return i;
            if (looks_free) faults_ << "block " << block << " of " << owner << " looks free\n";
            held = owner;
        }
        if (chain.empty() || (image_.Word(chain.back()) & kNext) != 0)
            faults_ << "the chain of " << owner << " loops or leads out of the package\n";
        return chain.size();
    }

    void CheckFile(const ImageEntry& entry) {
        const std::string owner = "entry " + std::to_string(entry.index);
        if (entry.size < 0) faults_ << owner << " has a negative size\n";
        const auto needed = static_cast<std::size_t>(entry.size / kBlock + (entry.size % kBlock > 0 ? 1 : 0));
        const std::size_t held = entry.first_block == 0 ? 0 : Claim(owner, entry.start(), needed);
        if (held < needed || (held > needed && !leniency_.longer_chains))
            faults_ << owner << " holds " << held << " blocks, not " << needed << "\n";
    }

    void CheckWords() {
        for (int block = 0; kMap + 4 * static_cast<std::size_t>(block) + 4 <= image_.header.size(); ++block) {
            const std::uint32_t word = image_.Word(block);
            if (word & kUnused) faults_ << "the word of block " << block << " has bits that mean nothing\n";
            if (block >= image_.block_count && word != 0) faults_ << "there is a word for block " << block << "\n";
            if (!(word & kUsed) && word != 0 && !leniency_.unfinished_ends)
                faults_ << "the word of free block " << block << " is not 0\n";
            if (block < image_.block_count && (word & kUsed) && owner_[static_cast<std::size_t>(block)].empty() &&
                !leniency_.leaked_blocks)
                faults_ << "block " << block << " is in use and nobody's\n";
        }
    }

    void CheckDirectoryEnd() {
        const std::size_t whole = image_.entries.size() * static_cast<std::size_t>(image_.entry_size);
        const auto end = image_.directory.begin() + static_cast<std::ptrdiff_t>(whole);
        if (std::any_of(end, image_.directory.end(), [](std::uint8_t b) { return b != 0; }))
            faults_ << "there are bytes after the last directory entry\n";
    }

    const PackageImage& image_;
    const Leniency leniency_;
    std::vector<std::string> owner_;
    std::ostringstream faults_;
};

}  // namespace

std::string Faults(const PackageImage& image, const Leniency& leniency) {
    return Checker(image, leniency).Run();
}

// ---- Files beside damage -----------------------------------------------------------------------------------------

std::u16string FoldedName(std::u16string name) {
    for (char16_t& c : name)
        if (c >= 'A' && c <= 'Z') c = static_cast<char16_t>(c - 'A' + 'a');
    return name;
}

std::u16string FoldedName(const std::string& narrow) {
    std::u16string name;
    for (const char c : narrow) name += static_cast<unsigned char>(c);
    return FoldedName(std::move(name));
}

std::map<std::u16string, Bytes> SoundFiles(const PackageImage& image) {
    std::vector<int> owners(static_cast<std::size_t>(std::max(image.block_count, 0)));
    std::map<std::u16string, int> bearers;
    const auto own = [&](const std::vector<int>& chain) {
        for (const int block : chain) ++owners[static_cast<std::size_t>(block)];
    };
    own(image.header_chain);
    own(image.directory_chain);
    for (const ImageEntry& entry : image.entries) {
        if (!entry.used()) continue;
        own(image.Chain(entry.start()));
        ++bearers[FoldedName(entry.name)];
    }
    std::map<std::u16string, Bytes> files;
    for (const ImageEntry& entry : image.entries) {
        const std::u16string name = FoldedName(entry.name);
        std::vector<int> chain = image.Chain(entry.start());
        const auto needed = static_cast<std::uint64_t>(entry.size / kBlock + (entry.size % kBlock > 0 ? 1 : 0));
        const bool whole = entry.size >= 0 && needed <= chain.size();
        if (entry.kind != 1 || name.size() > 512 || bearers[name] != 1 || !whole) continue;
        chain.resize(static_cast<std::size_t>(needed));
        const bool unshared = std::all_of(chain.begin(), chain.end(), [&](int block) {
            return owners[static_cast<std::size_t>(block)] == 1 && (image.Word(block) & kUsed) != 0;
        });
        if (unshared) files[name] = image.FileBytes(entry);
    }
    return files;
}

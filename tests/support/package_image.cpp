// SPDX-License-Identifier: MIT
#include "tests/support/package_image.h"

#include <cstdio>
#include <cstring>

#include "inspect/check.h"
#include "inspect/claims.h"

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

// Piece by piece: fresh memory for the whole of it, call by call, would take most of the time.
std::int64_t FirstDifference(const std::string& path, const Bytes& wanted) {
    static std::uint8_t piece[1 << 12];
    std::FILE* file = std::fopen(path.c_str(), "rb");
    std::size_t at = 0, count = 0;
    while ((count = std::fread(piece, 1, sizeof piece, file)) > 0 && count <= wanted.size() - at &&
           std::memcmp(piece, wanted.data() + at, count) == 0)
        at += count;
    std::fclose(file);
    return count == 0 && at == wanted.size() ? -1 : static_cast<std::int64_t>(at);
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
    const inspect::Memory source(host);
    const inspect::Package package(source, base);
    is_package_ = package.is_package();
    wide = package.wide();
    block_count = package.block_count();
    entry_size = package.entry_size();
    map_ = package.map();
    header_chain = package.header().blocks;
    directory_chain = package.directory().blocks;
    header = map_.header_run();
    directory.resize(directory_chain.size() * inspect::kBlock);
    package.ReadRun(package.directory(), 0, directory.data(), directory.size());
    package.ForEachEntry([&](const ImageEntry& entry) { entries.push_back(entry); });
}

Bytes PackageImage::ChainBytes(int start) const {
    const std::vector<int> chain = Chain(start);
    Bytes bytes;
    for (const int block : chain) {
        const auto at = host.begin() + static_cast<std::ptrdiff_t>(HostOffset({block}, 0));
        bytes.insert(bytes.end(), at, at + inspect::kBlock);
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
    return entry ? Chain(entry->start()) : std::vector<int>{};
}

Bytes PackageImage::FileBytes(const ImageEntry& entry) const {
    Bytes bytes = ChainBytes(entry.start());
    if (entry.size >= 0 && static_cast<std::uint64_t>(entry.size) < bytes.size())
        bytes.resize(static_cast<std::size_t>(entry.size));
    return bytes;
}

Bytes PackageImage::FileBytes(const std::string& name) const {
    const ImageEntry* entry = Find(name);
    return entry ? FileBytes(*entry) : Bytes();
}

int PackageImage::UsedBlocks() const {
    int used = 0;
    for (int block = 0; block < block_count; ++block) used += map_.Used(block);
    return used;
}

std::size_t PackageImage::HostOffset(const std::vector<int>& chain, std::size_t run_offset) const {
    const auto block = static_cast<std::size_t>(chain.at(run_offset / inspect::kBlock));
    return base + block * inspect::kBlock + run_offset % inspect::kBlock;
}

std::string Faults(const PackageImage& image, const Leniency& leniency) {
    using inspect::Kind;
    const inspect::Memory source(image.host);
    const std::pair<Kind, bool> allowed[] = {{Kind::surplus, leniency.longer_chains},
                                             {Kind::lost, leniency.leaked_blocks},
                                             {Kind::short_map, leniency.short_header},
                                             {Kind::torn_word, leniency.unfinished_ends},
                                             {Kind::stamp, true}};
    std::string faults;
    inspect::Check(inspect::Package(source, image.base), [&](const inspect::Finding& finding) {
        for (const auto& [kind, is_allowed] : allowed)
            if (kind == finding.kind && is_allowed) return;
        faults += std::string(inspect::KindName(finding.kind)) + ", entry " + std::to_string(finding.entry) +
                  ", block " + std::to_string(finding.block) + ": " + finding.text + "\n";
    });
    return faults;
}

std::u16string FoldedName(const std::string& narrow) {
    std::u16string name;
    for (const char c : narrow) name += static_cast<unsigned char>(c);
    return FoldedName(std::move(name));
}

std::map<std::u16string, Bytes> SoundFiles(const PackageImage& image) {
    const inspect::Memory source(image.host);
    std::map<std::u16string, int> bearers;
    std::map<std::u16string, Bytes> files;
    inspect::ForEachFile(inspect::Package(source, image.base), [&](const inspect::FileState& file) {
        const std::u16string name = FoldedName(file.entry.name);
        const bool twice = ++bearers[name] > 1;
        const bool own = file.whole() && !file.shared && !file.looks_free && name.size() <= inspect::kNameMax;
        if (twice) files.erase(name);
        if (!twice && own && file.entry.kind == inspect::kStoredFile) files[name] = image.FileBytes(file.entry);
    });
    return files;
}

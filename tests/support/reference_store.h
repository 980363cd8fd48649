// SPDX-License-Identifier: MIT
// The store written down plainly, as one sound package in memory with its handles and open files: every word is
// looked up in the map, every changed word and entry is written by itself, and nothing is derived or kept beside the
// images. What the library leaves in the host file must be the bytes that this leaves, call by call.
#pragma once

#include "tests/support/store_calls.h"

/// How a package is opened; its path is always the one of the package.
struct PackageOpening {
    std::int32_t read_only = 0;
    bool read_only_file = false;
    bool exclusive = false;
    std::int64_t offset = 0;
    std::string read_credential, write_credential;
};

class ReferenceStore {
public:
    ReferenceStore(Bytes host_file, std::size_t base_offset);

    double now = 0;  // the stamp of the calls that follow
    Bytes host;

    // The calls of the library that are compared, with its results.
    std::int32_t Open(const PackageOpening& how, std::int32_t* error);
    std::int32_t Close(std::int32_t package);
    void CloseAll() { slots_.clear(); }
    std::uint32_t OpenFile(std::int32_t package, const std::string& name, std::uint32_t mode, OpenHow how,
                           std::uint32_t* error);
    std::int32_t CloseFile(std::uint32_t file);
    std::int32_t Read(std::uint32_t file, std::uint8_t* buffer, std::int32_t length);
    std::int32_t Write(std::uint32_t file, const std::uint8_t* buffer, std::int32_t length);
    std::int32_t SetPos(std::uint32_t file, std::int64_t position);
    std::int32_t SetPosBof(std::uint32_t file);
    std::int32_t SetPosEof(std::uint32_t file) { return SetPos(file, -1); }
    std::int32_t GetPos(std::uint32_t file, std::int64_t* position);
    std::int32_t IsEof(std::uint32_t file);
    std::int32_t IsBof(std::uint32_t file);
    std::int32_t GetInfo(std::int32_t package, const std::string& name, FileInfo* info);
    std::int32_t SetTime(std::int32_t package, const std::string& name, double created, double accessed,
                         double written);
    std::int32_t Delete(std::int32_t package, const std::string& name);
    std::int32_t Enumerate(std::int32_t package, std::int32_t cursor, FileInfo* info);

private:
    using Chain = std::vector<std::int32_t>;
    struct File {
        std::uint32_t mode = 0;
        bool exclusive = false;
        std::int64_t append_floor = 0, position = 0;
        std::int32_t entry_number = 0;
    };
    struct Slot {
        bool used = false, read_only = false, exclusive = false;
        std::int32_t base_slot = 0;
        std::vector<File> files;
    };

    // Blocks.
    static std::size_t WordAt(std::int32_t block) { return 101 + 4 * static_cast<std::size_t>(block); }
    std::uint32_t Word(std::int32_t block) const { return LoadAt<std::uint32_t>(header_, WordAt(block)); }
    void PutWord(std::int32_t block, std::uint32_t word);
    Chain ChainFrom(std::int32_t block) const;
    std::uint8_t& HostByte(const Chain& chain, std::int64_t position);
    void PutBytes(std::int32_t start, std::int64_t position, const std::uint8_t* bytes, std::size_t count);
    std::int32_t FindFree() const;
    void Grow();
    void TakeBlock(std::int32_t block, std::int32_t last);
    void ExtendDirectory();

    // The directory.
    std::size_t EntrySize() const { return wide_ ? 1063 : 550; }
    std::size_t At(std::int32_t index) const { return static_cast<std::size_t>(index) * EntrySize(); }
    std::int32_t EntryCount() const { return static_cast<std::int32_t>(directory_.size() / EntrySize()); }
    std::int32_t FirstBlock(std::int32_t index) const;
    std::int64_t Size(std::int32_t index) const { return LoadAt<std::int64_t>(directory_, At(index) + 5); }
    void Stamp(std::int32_t index, bool written);
    std::u16string NameOf(std::int32_t index) const;
    bool InUse(std::int32_t index) const { return directory_[At(index)] == VLT_ENTRY_FILE; }
    void FillInfo(std::int32_t index, FileInfo* info) const;
    std::int32_t Find(std::int32_t package, const std::string& name) const;  // entry number
    std::int32_t Add(const std::string& name);                               // entry number
    bool PutEntry(std::int32_t index);
    bool Empty(std::int32_t index);

    // Handles and open files.
    const Slot* SlotOf(std::int32_t package) const;
    bool Grants(std::size_t field, const std::string& credential) const;
    File* FileOf(std::uint32_t file, bool open);
    bool MayShare(std::int32_t entry_number, std::uint32_t mode, bool exclusive) const;
    void Reserve(const File& file, std::int32_t length);

    std::size_t base_;
    bool wide_;
    bool read_only_file_ = false;
    std::int32_t block_count_;
    Bytes header_, directory_;
    std::vector<Slot> slots_;
};

/// The library, with the interface of the reference.
struct LibraryStore {
    std::string path;

    std::int32_t Open(const PackageOpening& how, std::int32_t* error) const {
        return vlt_package_open_ex(path.c_str(), how.read_only_file, static_cast<std::uint32_t>(how.offset),
                                   static_cast<std::int32_t>(how.offset >> 32), how.read_only, how.exclusive,
                                   how.read_credential.c_str(), how.write_credential.c_str(), nullptr, error);
    }
    static constexpr auto Close = vlt_package_close;
    static constexpr auto OpenFile = ::OpenFile;
    static constexpr auto CloseFile = vlt_file_close;
    static constexpr auto Read = vlt_file_read;
    static constexpr auto Write = vlt_file_write;
    static constexpr auto SetPos = vlt_file_set_pos;
    static constexpr auto SetPosBof = vlt_file_set_pos_bof;
    static constexpr auto SetPosEof = vlt_file_set_pos_eof;
    static constexpr auto GetPos = vlt_file_get_pos;
    static constexpr auto IsEof = vlt_file_is_eof;
    static constexpr auto IsBof = vlt_file_is_bof;
    static constexpr auto GetInfo = ::GetInfo;
    static constexpr auto SetTime = ::SetTime;
    static constexpr auto Delete = ::Delete;
    static constexpr auto Enumerate = ::Enumerate;
};

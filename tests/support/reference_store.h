// SPDX-License-Identifier: MIT
// The store written down plainly, as one package in memory with its handles and open files: every word is looked up
// in the map, every changed word and entry is written by itself, and nothing is derived or kept beside the images.
// What the library leaves in the host file must be the bytes that this leaves, call by call.
#pragma once

#include "tests/support/store_calls.h"

class ReferenceStore {
public:
    ReferenceStore(Bytes host_file, std::size_t base_offset);

    double now = 0;  // the stamp of the calls that follow
    Bytes host;

    // The calls of the library that are compared, with its results.
    std::int32_t Open(std::int32_t read_only);
    std::int32_t Close(std::int32_t package);
    std::uint32_t OpenFile(std::int32_t package, const std::string& name, std::uint32_t mode, OpenHow how,
                           std::uint32_t* error);
    std::int32_t CloseFile(std::uint32_t file);
    std::int32_t Read(std::uint32_t file, std::uint8_t* buffer, std::int32_t length);
    std::int32_t Write(std::uint32_t file, const std::uint8_t* buffer, std::int32_t length);
    std::int32_t SetPos(std::uint32_t file, std::int64_t position);
    std::int32_t GetPos(std::uint32_t file, std::int64_t* position);
    std::int32_t IsEof(std::uint32_t file);
    std::int32_t IsBof(std::uint32_t file);
    std::int32_t GetInfo(std::int32_t package, const std::string& name, FileInfo* info);
    std::int32_t SetTime(std::int32_t package, const std::string& name, double created, double accessed,
                         double written);
    std::int32_t Delete(std::int32_t package, const std::string& name);
    std::int32_t Enumerate(std::int32_t package, std::int32_t cursor, FileInfo* info);

private:
    struct File {
        std::uint32_t mode = 0;
        bool exclusive = false;
        std::int64_t append_floor = 0, position = 0;
        std::int32_t entry_number = 0;
    };
    struct Slot {
        bool used = false, read_only = false;
        std::int32_t base_slot = 0;
        std::vector<File> files;
    };

    // Blocks.
    std::uint32_t Word(std::int32_t block) const { return LoadAt<std::uint32_t>(header_, WordAt(block)); }
    static std::size_t WordAt(std::int32_t block) { return 101 + 4 * static_cast<std::size_t>(block); }
    bool PutWord(std::int32_t block, std::uint32_t word);
    template <typename Move>
    bool Transfer(std::int32_t b, std::int64_t p, std::int32_t length, Move move) const;
    bool ChainRead(std::int32_t start, std::int64_t offset, std::uint8_t* buffer, std::int32_t length);
    bool ChainWrite(std::int32_t start, std::int64_t offset, const std::uint8_t* data, std::int32_t length);
    std::int32_t FindFree(std::int32_t start) const;
    std::int32_t Grow();
    bool ExtendDirectory();
    std::int32_t LastOf(std::int32_t block) const;

    // The directory.
    std::size_t EntrySize() const { return wide_ ? 1063 : 550; }
    std::size_t At(std::int32_t index) const { return static_cast<std::size_t>(index) * EntrySize(); }
    std::int32_t EntryCount() const { return static_cast<std::int32_t>(directory_.size() / EntrySize()); }
    std::int64_t Size(std::int32_t index) const;
    void SetSize(std::int32_t index, std::int64_t size);
    std::uint32_t FirstBlock(std::int32_t index) const;
    void Stamp(std::int32_t index, bool created, bool accessed, bool written);
    std::string NameOf(std::int32_t index) const;
    bool InUse(std::int32_t index) const;
    void FillInfo(std::int32_t index, FileInfo* info) const;
    std::int32_t Find(const std::string& name, bool any_kind) const;  // entry number
    std::int32_t Add(const std::string& name);                        // entry number
    bool PutEntry(std::int32_t index);
    bool Empty(std::int32_t index, File* file);

    // Handles and open files.
    Slot* SlotOf(std::int32_t package);
    const Slot& BaseOf(const Slot& slot) const;
    File* FileOf(std::uint32_t file, bool open);
    bool MayShare(std::int32_t entry_number, std::uint32_t mode, bool exclusive) const;
    std::int32_t TakeSlot(Slot& slot, std::int32_t entry_number, std::uint32_t mode, OpenHow how);
    bool Reserve(File& file, std::int32_t length);

    std::size_t base_;
    bool wide_;
    std::int32_t block_count_;
    Bytes header_, directory_;
    std::vector<Slot> slots_;
};

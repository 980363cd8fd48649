// SPDX-License-Identifier: MIT
#include "tests/support/reference_store.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::int32_t kBlock = 4096;
constexpr std::uint32_t kUsed = 0x80000000, kNext = 0x0FFFFFFF;

std::int32_t NextOf(std::uint32_t word) {
    return static_cast<std::int32_t>(word & kNext);
}

std::string Folded(std::string name) {
    for (char& c : name)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return name;
}

}  // namespace

ReferenceStore::ReferenceStore(Bytes host_file, std::size_t base_offset)
    : host(std::move(host_file)), base_(base_offset) {
    const PackageImage image(host, base_);
    wide_ = image.wide;
    block_count_ = image.block_count;
    header_ = image.header;
    directory_ = image.directory;
}

// ---- Blocks ------------------------------------------------------------------------------------------------------

template <typename Move>
bool ReferenceStore::Transfer(std::int32_t b, std::int64_t p, std::int32_t length, Move move) const {
    for (; p >= kBlock; p -= kBlock) {
        if (NextOf(Word(b)) == 0) return false;
        b = NextOf(Word(b)) - 1;
    }
    auto o = static_cast<std::int32_t>(p);
    for (std::int32_t done = 0; done < length;) {
        const std::int32_t piece = std::min(o > 0 ? kBlock - o : kBlock, length - done);
        move(base_ + static_cast<std::size_t>(b) * kBlock + static_cast<std::size_t>(o), done, piece);
        o = 0;
        done += piece;
        if (NextOf(Word(b)) == 0 && done < length) return false;
        b = NextOf(Word(b)) - 1;
    }
    return true;
}

bool ReferenceStore::ChainRead(std::int32_t start, std::int64_t offset, std::uint8_t* buffer, std::int32_t length) {
    return Transfer(start, offset, length, [&](std::size_t at, std::int32_t done, std::int32_t piece) {
        std::memcpy(buffer + done, host.data() + at, static_cast<std::size_t>(piece));
    });
}

bool ReferenceStore::ChainWrite(std::int32_t start, std::int64_t offset, const std::uint8_t* data,
                                std::int32_t length) {
    return Transfer(start, offset, length, [&](std::size_t at, std::int32_t done, std::int32_t piece) {
        std::memcpy(host.data() + at, data + done, static_cast<std::size_t>(piece));
    });
}

bool ReferenceStore::PutWord(std::int32_t block, std::uint32_t word) {
    StoreAt(header_, WordAt(block), word);
    return ChainWrite(0, static_cast<std::int64_t>(WordAt(block)), header_.data() + WordAt(block), 4);
}

std::int32_t ReferenceStore::FindFree(std::int32_t start) const {
    for (std::int32_t k = std::max(start, 0); k < block_count_; ++k)
        if (!(Word(k) & kUsed)) return k + 1;
    return 0;
}

std::int32_t ReferenceStore::LastOf(std::int32_t block) const {
    while (NextOf(Word(block)) != 0) block = NextOf(Word(block)) - 1;
    return block;
}

std::int32_t ReferenceStore::Grow() {
    const auto capacity = static_cast<std::int32_t>((header_.size() - 101) / 4);
    if (capacity > block_count_) {
        host.resize(host.size() + kBlock);
        return ++block_count_;
    }
    host.resize(host.size() + 2 * kBlock);
    const std::int32_t n = block_count_;
    block_count_ = n + 2;
    header_.resize(header_.size() + kBlock);
    const std::int32_t last = LastOf(0);
    if (!PutWord(last, Word(last) | static_cast<std::uint32_t>(n + 1))) return 0;
    if (!PutWord(n, Word(n) | kUsed)) return 0;
    return n + 2;
}

bool ReferenceStore::ExtendDirectory() {
    std::int32_t k = FindFree(0);
    if (k == 0) k = Grow();
    if (k == 0) return false;
    const Bytes zeros(kBlock);
    if (!ChainWrite(k - 1, 0, zeros.data(), kBlock)) return false;
    const std::int32_t last = LastOf(1);
    if (!PutWord(last, Word(last) | static_cast<std::uint32_t>(k))) return false;
    if (!PutWord(k - 1, Word(k - 1) | kUsed)) return false;
    directory_.resize(directory_.size() + kBlock);
    return true;
}

// ---- The directory -----------------------------------------------------------------------------------------------

std::uint32_t ReferenceStore::FirstBlock(std::int32_t index) const {
    return LoadAt<std::uint32_t>(directory_, At(index) + 1);
}
std::int64_t ReferenceStore::Size(std::int32_t index) const {
    return static_cast<std::int64_t>(LoadAt<std::uint64_t>(directory_, At(index) + 5));
}
void ReferenceStore::SetSize(std::int32_t index, std::int64_t size) {
    StoreAt(directory_, At(index) + 5, size);
}

bool ReferenceStore::InUse(std::int32_t index) const {
    return directory_[At(index)] == 1 || directory_[At(index)] == 2;
}

void ReferenceStore::Stamp(std::int32_t index, bool created, bool accessed, bool written) {
    if (created) StoreStamp(directory_, At(index) + 13, now);
    if (accessed) StoreStamp(directory_, At(index) + 21, now);
    if (written) StoreStamp(directory_, At(index) + 29, now);
}

std::string ReferenceStore::NameOf(std::int32_t index) const {
    std::string name;
    for (std::size_t at = At(index) + 37; directory_[at] != 0; at += wide_ ? 2 : 1)
        name += static_cast<char>(directory_[at]);
    return name;
}

std::int32_t ReferenceStore::Find(const std::string& name, bool any_kind) const {
    for (std::int32_t i = 0; i < EntryCount(); ++i)
        if ((any_kind ? InUse(i) : directory_[At(i)] == 1) && Folded(NameOf(i)) == Folded(name)) return i + 1;
    return 0;
}

std::int32_t ReferenceStore::Add(const std::string& name) {
    const auto first_free = [&] {
        std::int32_t i = 0;
        while (i < EntryCount() && InUse(i)) ++i;
        return i;
    };
    if (first_free() == EntryCount() && !ExtendDirectory()) return 0;
    const std::int32_t index = first_free();
    if (index == EntryCount()) return 0;
    std::fill_n(directory_.begin() + static_cast<std::ptrdiff_t>(At(index)), EntrySize(), std::uint8_t{0});
    directory_[At(index)] = 1;
    for (std::size_t i = 0; i < name.size(); ++i)
        directory_[At(index) + 37 + i * (wide_ ? 2 : 1)] = static_cast<std::uint8_t>(name[i]);
    Stamp(index, true, true, true);
    return PutEntry(index) ? index + 1 : 0;
}

bool ReferenceStore::PutEntry(std::int32_t index) {
    return ChainWrite(1, static_cast<std::int64_t>(At(index)), directory_.data() + At(index),
                      static_cast<std::int32_t>(EntrySize()));
}

bool ReferenceStore::Empty(std::int32_t index, File* file) {
    SetSize(index, 0);
    auto b = static_cast<std::int32_t>(FirstBlock(index));
    StoreAt(directory_, At(index) + 1, std::uint32_t{0});
    Stamp(index, false, true, true);
    if (!PutEntry(index)) return false;
    while (b != 0) {
        const std::uint32_t word = Word(b - 1);
        if (!PutWord(b - 1, 0)) return false;
        b = NextOf(word);
    }
    if (file) file->position = file->append_floor = 0;
    return true;
}

void ReferenceStore::FillInfo(std::int32_t index, FileInfo* info) const {
    info->kind = directory_[At(index)] == 1 ? 1 : 2;
    info->size = Size(index);
    info->created = LoadStamp(directory_, At(index) + 13);
    info->accessed = LoadStamp(directory_, At(index) + 21);
    info->written = LoadStamp(directory_, At(index) + 29);
}

// ---- Packages ----------------------------------------------------------------------------------------------------

ReferenceStore::Slot* ReferenceStore::SlotOf(std::int32_t package) {
    if (package < 1 || static_cast<std::size_t>(package) > slots_.size()) return nullptr;
    Slot& slot = slots_[static_cast<std::size_t>(package) - 1];
    return slot.used ? &slot : nullptr;
}

const ReferenceStore::Slot& ReferenceStore::BaseOf(const Slot& slot) const {
    return slot.base_slot > 0 ? slots_[static_cast<std::size_t>(slot.base_slot) - 1] : slot;
}

std::int32_t ReferenceStore::Open(std::int32_t read_only) {
    std::size_t free = 0, base = 0;
    while (free < slots_.size() && slots_[free].used) ++free;
    while (base < slots_.size() && !(slots_[base].used && slots_[base].base_slot == 0)) ++base;
    Slot opened{.used = true, .read_only = read_only != 0, .base_slot = 0, .files = {}};
    if (base < slots_.size()) {
        opened.base_slot = static_cast<std::int32_t>(base) + 1;
    } else {  // a first opening reads the images again
        const PackageImage image(host, base_);
        header_ = image.header;
        directory_ = image.directory;
    }
    if (free == slots_.size()) slots_.emplace_back();
    slots_[free] = opened;
    return static_cast<std::int32_t>(free) + 1;
}

std::int32_t ReferenceStore::Close(std::int32_t package) {
    Slot* slot = SlotOf(package);
    if (!slot) return 0;
    const bool was_base = slot->base_slot == 0;
    *slot = {};
    std::int32_t successor = 0;
    for (std::size_t i = 0; was_base && i < slots_.size(); ++i) {
        if (slots_[i].base_slot != package) continue;
        slots_[i].base_slot = successor;
        if (successor == 0) successor = static_cast<std::int32_t>(i) + 1;
    }
    return 1;
}

// ---- Open files --------------------------------------------------------------------------------------------------

bool ReferenceStore::MayShare(std::int32_t entry_number, std::uint32_t mode, bool exclusive) const {
    for (const Slot& slot : slots_)
        for (const File& file : slot.files) {
            if (file.entry_number != entry_number) continue;
            if (exclusive || file.exclusive) return false;
            if (mode != VLT_MODE_READ && file.mode != VLT_MODE_READ) return false;
        }
    return true;
}

std::int32_t ReferenceStore::TakeSlot(Slot& slot, std::int32_t entry_number, std::uint32_t mode, OpenHow how) {
    std::size_t i = 0;
    while (i < slot.files.size() && slot.files[i].entry_number > 0) ++i;
    if (i == slot.files.size()) slot.files.resize(slot.files.size() + 128);
    File& file = slot.files[i] = {};
    file.mode = mode;
    file.exclusive = how.exclusive;
    file.entry_number = entry_number;
    if (mode == VLT_MODE_APPEND) file.position = file.append_floor = Size(entry_number - 1);
    if (how.truncate && !Empty(entry_number - 1, &file)) return 0;
    return static_cast<std::int32_t>(i) + 1;
}

std::uint32_t ReferenceStore::OpenFile(std::int32_t package, const std::string& name, std::uint32_t mode, OpenHow how,
                                       std::uint32_t* error) {
    *error = 2;
    if (mode > VLT_MODE_APPEND || (how.truncate && mode != VLT_MODE_WRITE)) return 0;
    Slot* slot = SlotOf(package);
    if (!slot) return 0;
    *error = 3;
    if (mode != VLT_MODE_READ && slot->read_only) return 0;
    std::int32_t number = Find(name, false);
    if (number != 0 && !MayShare(number, mode, how.exclusive)) return 0;
    *error = 4;
    if (number == 0 && mode != VLT_MODE_READ) number = Add(name);
    if (number == 0) return 0;
    *error = 1;
    const std::int32_t taken = TakeSlot(*slot, number, mode, how);
    if (taken == 0) return 0;
    *error = 0;
    return static_cast<std::uint32_t>(package) << 16 | static_cast<std::uint32_t>(taken);
}

ReferenceStore::File* ReferenceStore::FileOf(std::uint32_t file, bool open) {
    Slot* slot = SlotOf(static_cast<std::int32_t>(file >> 16));
    const std::size_t number = file & 0xFFFF;
    if (!slot || number < 1 || number > slot->files.size()) return nullptr;
    File& found = slot->files[number - 1];
    return !open || (found.entry_number >= 1 && found.entry_number <= EntryCount()) ? &found : nullptr;
}

std::int32_t ReferenceStore::CloseFile(std::uint32_t file) {
    File* found = FileOf(file, false);
    if (found) *found = {};
    return found ? 1 : 0;
}

std::int32_t ReferenceStore::Read(std::uint32_t handle, std::uint8_t* buffer, std::int32_t length) {
    if (length < 1) return 0;
    File* file = FileOf(handle, true);
    if (!file) return 0;
    const std::int32_t index = file->entry_number - 1;
    const std::int64_t left = std::max<std::int64_t>(Size(index) - file->position, 0);
    const auto count = static_cast<std::int32_t>(std::min<std::int64_t>(length, left));
    Stamp(index, false, true, false);
    if (!BaseOf(*SlotOf(static_cast<std::int32_t>(handle >> 16))).read_only && !PutEntry(index)) return 0;
    if (count == 0) return 0;
    if (!ChainRead(static_cast<std::int32_t>(FirstBlock(index)) - 1, file->position, buffer, count)) return 0;
    file->position += count;
    return count;
}

bool ReferenceStore::Reserve(File& file, std::int32_t length) {
    const std::int32_t index = file.entry_number - 1;
    const std::int64_t end = file.position + length;
    const std::int64_t held = (Size(index) + kBlock - 1) / kBlock;
    if (Size(index) >= end || held * kBlock >= end) return true;
    std::int64_t need = end - held * kBlock;
    std::int64_t uncovered = need;
    for (std::int32_t b = 0; uncovered > 0 && (b = FindFree(b)) != 0;) uncovered -= kBlock;
    for (; uncovered > 0; uncovered -= kBlock)
        if (Grow() == 0) return false;
    if (FirstBlock(index) < 1) {
        const std::int32_t b = FindFree(0);
        if (b == 0 || !PutWord(b - 1, kUsed)) return false;
        StoreAt(directory_, At(index) + 1, static_cast<std::uint32_t>(b));
        if (!PutEntry(index)) return false;
        need -= kBlock;
    }
    std::int32_t last = LastOf(static_cast<std::int32_t>(FirstBlock(index)) - 1);
    for (; need > 0; need -= kBlock) {
        const std::int32_t b = FindFree(0);
        if (b == 0) return false;
        if (!PutWord(last, Word(last) | static_cast<std::uint32_t>(b))) return false;
        if (!PutWord(b - 1, Word(b - 1) | kUsed)) return false;
        last = b - 1;
    }
    return true;
}

std::int32_t ReferenceStore::Write(std::uint32_t handle, const std::uint8_t* buffer, std::int32_t length) {
    if (length < 1) return 1;
    File* file = FileOf(handle, false);
    if (!file || (file->mode != VLT_MODE_WRITE && file->mode != VLT_MODE_APPEND)) return 0;
    if (file->mode == VLT_MODE_APPEND && file->position < file->append_floor) return 0;
    file = FileOf(handle, true);
    if (!file || !Reserve(*file, length)) return 0;
    const std::int32_t index = file->entry_number - 1;
    if (!ChainWrite(static_cast<std::int32_t>(FirstBlock(index)) - 1, file->position, buffer, length)) return 0;
    SetSize(index, std::max(Size(index), file->position + length));
    Stamp(index, false, true, true);
    if (!PutEntry(index)) return 0;
    file->position += length;
    return 1;
}

std::int32_t ReferenceStore::SetPos(std::uint32_t handle, std::int64_t position) {
    File* file = FileOf(handle, true);
    if (!file) return 0;
    const std::int64_t size = Size(file->entry_number - 1);
    file->position = position == 0 ? 0 : position < 0 || position > size ? size : position;
    return 1;
}

std::int32_t ReferenceStore::GetPos(std::uint32_t handle, std::int64_t* position) {
    const File* file = FileOf(handle, false);
    *position = file ? file->position : 0;
    return file ? 1 : 0;
}

std::int32_t ReferenceStore::IsEof(std::uint32_t handle) {
    const File* file = FileOf(handle, true);
    return !file ? -1 : file->position >= Size(file->entry_number - 1) ? 1 : 0;
}

std::int32_t ReferenceStore::IsBof(std::uint32_t handle) {
    const File* file = FileOf(handle, false);
    return !file ? -1 : file->position <= 0 ? 1 : 0;
}

// ---- Files by name -----------------------------------------------------------------------------------------------

std::int32_t ReferenceStore::GetInfo(std::int32_t package, const std::string& name, FileInfo* info) {
    const std::int32_t number = SlotOf(package) ? Find(name, true) : 0;
    if (number == 0) return 0;
    FillInfo(number - 1, info);
    return 1;
}

std::int32_t ReferenceStore::SetTime(std::int32_t package, const std::string& name, double created, double accessed,
                                     double written) {
    const std::int32_t number = SlotOf(package) ? Find(name, true) : 0;
    if (number == 0) return 0;
    StoreStamp(directory_, At(number - 1) + 13, created);
    StoreStamp(directory_, At(number - 1) + 21, accessed);
    StoreStamp(directory_, At(number - 1) + 29, written);
    return PutEntry(number - 1) ? 1 : 0;
}

std::int32_t ReferenceStore::Delete(std::int32_t package, const std::string& name) {
    const std::int32_t number = SlotOf(package) ? Find(name, false) : 0;
    if (number == 0 || !MayShare(number, VLT_MODE_WRITE, true) || !Empty(number - 1, nullptr)) return 0;
    directory_[At(number - 1)] = 0;
    return PutEntry(number - 1) ? 1 : 0;
}

std::int32_t ReferenceStore::Enumerate(std::int32_t package, std::int32_t cursor, FileInfo* info) {
    if (!SlotOf(package)) return 0;
    for (std::int32_t i = std::max(cursor, 0); i < EntryCount(); ++i) {
        if (!InUse(i)) continue;
        FillInfo(i, info);
        info->name = NameOf(i);
        return i + 1;
    }
    return 0;
}

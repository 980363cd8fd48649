// SPDX-License-Identifier: MIT
#include "tests/support/reference_store.h"

#include <algorithm>

namespace {

constexpr std::int32_t kBlock = 4096;
constexpr std::uint32_t kUsed = 0x80000000, kNext = 0x0FFFFFFF;

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

ReferenceStore::Chain ReferenceStore::ChainFrom(std::int32_t block) const {
    Chain chain;
    for (; block >= 0; block = static_cast<std::int32_t>(Word(block) & kNext) - 1) chain.push_back(block);
    return chain;
}

std::uint8_t& ReferenceStore::HostByte(const Chain& chain, std::int64_t position) {
    const auto at = static_cast<std::size_t>(position);
    return host[base_ + static_cast<std::size_t>(chain[at / kBlock]) * kBlock + at % kBlock];
}

void ReferenceStore::PutBytes(std::int32_t start, std::int64_t position, const std::uint8_t* bytes,
                              std::size_t count) {
    const Chain chain = ChainFrom(start);
    for (std::size_t i = 0; i < count; ++i) HostByte(chain, position++) = bytes[i];
}

void ReferenceStore::PutWord(std::int32_t block, std::uint32_t word) {
    StoreAt(header_, WordAt(block), word);
    PutBytes(0, static_cast<std::int64_t>(WordAt(block)), header_.data() + WordAt(block), 4);
}

std::int32_t ReferenceStore::FindFree() const {
    std::int32_t block = 0;
    while (block < block_count_ && (Word(block) & kUsed)) ++block;
    return block;
}

/// Takes a block as the last of the chain that ended with `last`, -1 for none.
void ReferenceStore::TakeBlock(std::int32_t block, std::int32_t last) {
    PutWord(block, kUsed);
    if (last >= 0) PutWord(last, Word(last) | static_cast<std::uint32_t>(block + 1));
}

/// One free block more, after a header block when there is no word for it.
void ReferenceStore::Grow() {
    const bool full = WordAt(block_count_ + 1) > header_.size();
    const std::int32_t added = block_count_;
    block_count_ += full ? 2 : 1;
    host.resize(base_ + static_cast<std::size_t>(added) * kBlock);  // part of a block does not count
    host.resize(base_ + static_cast<std::size_t>(block_count_) * kBlock);
    if (!full) return;
    const std::int32_t last = ChainFrom(0).back();
    header_.resize(header_.size() + kBlock);
    StoreAt(header_, WordAt(last), Word(last) | static_cast<std::uint32_t>(added + 1));
    TakeBlock(added, last);
}

void ReferenceStore::ExtendDirectory() {
    if (FindFree() == block_count_) Grow();
    const std::int32_t block = FindFree();
    PutBytes(block, 0, Bytes(kBlock).data(), kBlock);
    TakeBlock(block, ChainFrom(1).back());
    directory_.resize(directory_.size() + kBlock);
}

// ---- The directory -----------------------------------------------------------------------------------------------

std::int32_t ReferenceStore::FirstBlock(std::int32_t index) const {
    return LoadAt<std::int32_t>(directory_, At(index) + 1) - 1;
}

void ReferenceStore::Stamp(std::int32_t index, bool written) {
    StoreStamp(directory_, At(index) + 21, now);
    if (written) StoreStamp(directory_, At(index) + 29, now);
}

std::u16string ReferenceStore::NameOf(std::int32_t index) const {
    std::u16string name;
    for (std::size_t at = At(index) + 37; at < At(index + 1); at += wide_ ? 2 : 1) {
        const auto unit = wide_ ? LoadAt<std::uint16_t>(directory_, at) : directory_[at];
        if (unit == 0) break;
        name += static_cast<char16_t>(unit);
    }
    return name;
}

std::int32_t ReferenceStore::Find(std::int32_t package, const std::string& name) const {
    const std::u16string wanted = FoldedName(name);
    for (std::int32_t i = 0; SlotOf(package) && i < EntryCount(); ++i)
        if (InUse(i) && FoldedName(NameOf(i)) == wanted) return i + 1;
    return 0;
}

std::int32_t ReferenceStore::Add(const std::string& name) {
    std::int32_t index = 0;
    while (index < EntryCount() && InUse(index)) ++index;
    while (index == EntryCount()) ExtendDirectory();
    std::fill_n(directory_.begin() + static_cast<std::ptrdiff_t>(At(index)), EntrySize(), std::uint8_t{0});
    directory_[At(index)] = 1;
    for (std::size_t i = 0; i < name.size(); ++i)
        directory_[At(index) + 37 + i * (wide_ ? 2 : 1)] = static_cast<std::uint8_t>(name[i]);
    StoreStamp(directory_, At(index) + 13, now);
    Stamp(index, true);
    PutEntry(index);
    return index + 1;
}

/// False when the host file may not be written.
bool ReferenceStore::PutEntry(std::int32_t index) {
    if (read_only_file_) return false;
    PutBytes(1, static_cast<std::int64_t>(At(index)), directory_.data() + At(index), EntrySize());
    return true;
}

bool ReferenceStore::Empty(std::int32_t index) {
    const Chain chain = ChainFrom(FirstBlock(index));
    StoreAt(directory_, At(index) + 1, std::uint32_t{0});
    StoreAt(directory_, At(index) + 5, std::int64_t{0});
    Stamp(index, true);
    if (!PutEntry(index)) return false;
    for (const std::int32_t block : chain) PutWord(block, 0);
    return true;
}

void ReferenceStore::FillInfo(std::int32_t index, FileInfo* info) const {
    info->kind = VLT_ENTRY_FILE;
    info->size = Size(index);
    info->created = LoadStamp(directory_, At(index) + 13);
    info->accessed = LoadStamp(directory_, At(index) + 21);
    info->written = LoadStamp(directory_, At(index) + 29);
}

// ---- Packages ----------------------------------------------------------------------------------------------------

const ReferenceStore::Slot* ReferenceStore::SlotOf(std::int32_t package) const {
    if (package < 1 || static_cast<std::size_t>(package) > slots_.size()) return nullptr;
    const Slot& slot = slots_[static_cast<std::size_t>(package) - 1];
    return slot.used ? &slot : nullptr;
}

bool ReferenceStore::Grants(std::size_t field, const std::string& credential) const {
    std::string stored;
    for (std::size_t i = 16; i-- > 0;) stored += static_cast<char>(~header_[field + i]);
    return stored.c_str() == credential;
}

std::int32_t ReferenceStore::Open(const PackageOpening& how, std::int32_t* error) {
    *error = 5;
    if (how.offset < 0 || how.read_only < 0 || how.read_only > 1) return 0;
    std::size_t free = 0, base = 0;
    while (free < slots_.size() && slots_[free].used) ++free;
    while (base < slots_.size() && !(slots_[base].used && slots_[base].base_slot == 0)) ++base;
    Slot opened{
        .used = true, .read_only = how.read_only != 0, .exclusive = how.exclusive, .base_slot = 0, .files = {}};
    if (base < slots_.size()) {
        *error = 4;
        if (slots_[base].exclusive || (read_only_file_ && how.read_only == 0)) return 0;
        opened.base_slot = static_cast<std::int32_t>(base) + 1;
        opened.exclusive = false;
    } else {  // a first opening reads the images again
        *error = 1;
        if (how.offset != static_cast<std::int64_t>(base_)) return 0;
        const PackageImage image(host, base_);
        header_ = image.header;
        directory_ = image.directory;
        opened.read_only = opened.read_only || how.read_only_file;
    }
    *error = 2;
    if (!Grants(21, how.write_credential)) opened.read_only = true;
    if (!Grants(21, how.write_credential) && !Grants(5, how.read_credential)) return 0;
    if (opened.base_slot == 0) read_only_file_ = how.read_only_file;
    if (free == slots_.size()) slots_.emplace_back();
    slots_[free] = opened;
    *error = 0;
    return static_cast<std::int32_t>(free) + 1;
}

std::int32_t ReferenceStore::Close(std::int32_t package) {
    if (!SlotOf(package)) return 0;
    Slot& slot = slots_[static_cast<std::size_t>(package) - 1];
    const bool was_base = slot.base_slot == 0;
    slot = {};
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

std::uint32_t ReferenceStore::OpenFile(std::int32_t package, const std::string& name, std::uint32_t mode, OpenHow how,
                                       std::uint32_t* error) {
    *error = 2;
    if (mode > VLT_MODE_APPEND || (how.truncate && mode != VLT_MODE_WRITE) || !SlotOf(package)) return 0;
    Slot& slot = slots_[static_cast<std::size_t>(package) - 1];
    std::int32_t number = Find(package, name);
    *error = 3;
    if (mode != VLT_MODE_READ && slot.read_only) return 0;
    if (number != 0 && !MayShare(number, mode, how.exclusive)) return 0;
    *error = 4;
    if (number == 0 && mode != VLT_MODE_READ && name.size() <= 512) number = Add(name);
    if (number == 0) return 0;
    *error = 0;
    std::size_t i = 0;
    while (i < slot.files.size() && slot.files[i].entry_number > 0) ++i;
    if (i == slot.files.size()) slot.files.resize(slot.files.size() + 128);
    if (how.truncate) Empty(number - 1);
    const std::int64_t start = mode == VLT_MODE_APPEND ? Size(number - 1) : 0;
    slot.files[i] = {mode, how.exclusive, start, start, number};
    return static_cast<std::uint32_t>(package) << 16 | static_cast<std::uint32_t>(i + 1);
}

ReferenceStore::File* ReferenceStore::FileOf(std::uint32_t file, bool open) {
    const std::size_t package = file >> 16, number = file & 0xFFFF;
    if (!SlotOf(static_cast<std::int32_t>(package))) return nullptr;
    std::vector<File>& files = slots_[package - 1].files;
    return number < 1 || number > files.size() || (open && files[number - 1].entry_number == 0) ? nullptr
                                                                                                : &files[number - 1];
}

std::int32_t ReferenceStore::CloseFile(std::uint32_t file) {
    File* found = FileOf(file, false);
    if (found) *found = {};
    return found ? 1 : 0;
}

std::int32_t ReferenceStore::Read(std::uint32_t handle, std::uint8_t* buffer, std::int32_t length) {
    File* file = FileOf(handle, true);
    if (length < 1 || !file) return 0;
    const std::int32_t index = file->entry_number - 1;
    const auto left = std::max<std::int64_t>(Size(index) - file->position, 0);
    const auto count = static_cast<std::int32_t>(std::min<std::int64_t>(length, left));
    const Slot& slot = slots_[(handle >> 16) - 1];
    const Slot& base = slot.base_slot > 0 ? slots_[static_cast<std::size_t>(slot.base_slot) - 1] : slot;
    Stamp(index, false);
    if (!base.read_only) PutEntry(index);
    const Chain chain = ChainFrom(FirstBlock(index));
    for (std::int32_t i = 0; i < count; ++i) buffer[i] = HostByte(chain, file->position++);
    return count;
}

void ReferenceStore::Reserve(const File& file, std::int32_t length) {
    const std::int32_t index = file.entry_number - 1;
    Chain chain = ChainFrom(FirstBlock(index));
    const std::int64_t need =
        (file.position + length + kBlock - 1) / kBlock - static_cast<std::int64_t>(chain.size());
    std::int64_t missing = need;
    for (std::int32_t block = 0; missing > 0 && block < block_count_; ++block) missing -= !(Word(block) & kUsed);
    for (; missing > 0; --missing) Grow();
    for (std::int64_t i = 0; i < need; ++i) {
        const std::int32_t block = FindFree();
        TakeBlock(block, chain.empty() ? -1 : chain.back());
        if (chain.empty()) StoreAt(directory_, At(index) + 1, static_cast<std::uint32_t>(block + 1));
        chain.push_back(block);
    }
}

std::int32_t ReferenceStore::Write(std::uint32_t handle, const std::uint8_t* buffer, std::int32_t length) {
    if (length < 1) return 1;
    File* file = FileOf(handle, true);
    if (!file || file->mode == VLT_MODE_READ || file->position < file->append_floor) return 0;
    const std::int32_t index = file->entry_number - 1;
    Reserve(*file, length);
    PutBytes(FirstBlock(index), file->position, buffer, static_cast<std::size_t>(length));
    file->position += length;
    StoreAt(directory_, At(index) + 5, std::max(Size(index), file->position));
    Stamp(index, true);
    PutEntry(index);
    return 1;
}

std::int32_t ReferenceStore::SetPos(std::uint32_t handle, std::int64_t position) {
    File* file = FileOf(handle, true);
    if (!file) return 0;
    const std::int64_t size = Size(file->entry_number - 1);
    file->position = position < 0 || (position > 0 && position > size) ? size : position;
    return 1;
}

std::int32_t ReferenceStore::SetPosBof(std::uint32_t handle) {
    File* file = FileOf(handle, false);
    if (file) file->position = 0;
    return file ? 1 : 0;
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
    const std::int32_t number = Find(package, name);
    if (number != 0) FillInfo(number - 1, info);
    return number != 0 ? 1 : 0;
}

std::int32_t ReferenceStore::SetTime(std::int32_t package, const std::string& name, double created, double accessed,
                                     double written) {
    const std::int32_t number = Find(package, name);
    if (number == 0) return 0;
    StoreStamp(directory_, At(number - 1) + 13, created);
    StoreStamp(directory_, At(number - 1) + 21, accessed);
    StoreStamp(directory_, At(number - 1) + 29, written);
    return PutEntry(number - 1) ? 1 : 0;
}

std::int32_t ReferenceStore::Delete(std::int32_t package, const std::string& name) {
    const std::int32_t number = Find(package, name);
    if (number == 0 || !MayShare(number, VLT_MODE_WRITE, true) || !Empty(number - 1)) return 0;
    directory_[At(number - 1)] = 0;
    PutEntry(number - 1);
    return 1;
}

std::int32_t ReferenceStore::Enumerate(std::int32_t package, std::int32_t cursor, FileInfo* info) {
    for (std::int32_t i = std::max(cursor, 0); SlotOf(package) && i < EntryCount(); ++i) {
        if (!InUse(i)) continue;
        FillInfo(i, info);
        info->name.clear();
        for (const char16_t unit : NameOf(i)) info->name += static_cast<char>(unit);
        return i + 1;
    }
    return 0;
}

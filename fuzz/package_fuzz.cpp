// SPDX-License-Identifier: MIT
// A package, sound or damaged, and a script of calls. Whatever the package: sound files that the script does not
// change read back byte for byte. While it is sound: every file holds what was written, and the package stays sound.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <map>
#include <set>

#include "fuzz/package_script.h"
#include "fuzz/support.h"
#include "tests/support/package_image.h"
#include "vlt.h"

namespace {

using Name = std::u16string;  // narrow names: one unit a byte

constexpr std::size_t kOffset = 10000;  // of the package with credentials
constexpr std::size_t kBlock = 4096;
constexpr std::uint32_t kLongest = 3 * kBlock + 2;  // bytes of one read or write

const std::string& Host() {
    static const std::string path = Scratch("a.vlt");
    return path;
}

/// The same path to a package that is open.
std::string OtherSpelling() {
    std::string path = Host();
    std::transform(path.begin(), path.end(), path.begin(),
                   [](unsigned char c) { return static_cast<char>(c == '/' ? '\\' : std::toupper(c)); });
    return path;
}

std::string Narrow(const Name& name) {
    return std::string(name.begin(), name.end());
}

// ---- The packages to begin with ----------------------------------------------------------------------------------

std::uint32_t OpenFile(std::int32_t package, const Name& name, std::uint32_t mode, int exclusive, int truncate) {
    const bool wide = vlt_package_is_unicode_files(package) == 1;
    std::uint32_t error = 99;
    const std::int32_t file = wide ? vltw_file_open(package, name.c_str(), mode, exclusive, truncate, &error)
                                   : vlt_file_open(package, Narrow(name).c_str(), mode, exclusive, truncate, &error);
    Require(error <= VLT_FILE_NOT_FOUND && (file != 0) == (error == VLT_FILE_OK));
    return static_cast<std::uint32_t>(file);
}

void AppendTo(std::int32_t package, const Name& name, std::size_t length) {
    const Bytes bytes(length, static_cast<std::uint8_t>(name[0]));
    const std::uint32_t file = OpenFile(package, name, VLT_MODE_APPEND, 0, 0);
    Require(file != 0 && vlt_file_write(file, bytes.data(), static_cast<std::int32_t>(length)) == 1);
    Require(vlt_file_close(file) == 1);
}

Bytes MakeBase(Base base) {
    if (base == kBaseZeros) return Bytes(16 * kBlock);
    const bool wide = base == kBaseWide, locked = base == kBaseCredentials, full = base == kBaseFull;
    Require(vlt_package_create(Host().c_str(), wide, full ? 3 : 0, locked ? "r" : nullptr, locked ? "w" : nullptr));
    const std::int32_t package =
        vlt_package_open(Host().c_str(), 0, 0, "r", locked ? "w" : nullptr, nullptr, nullptr);
    for (unsigned turn = 0; turn < 3; ++turn)
        for (const char16_t* name : {u"a", u"bb", u"C"}) AppendTo(package, name, 3001U * (turn + 1U));
    if (full) AppendTo(package, u"d", 981 * kBlock);  // one header block has words for 998 blocks
    vlt_package_close_all();
    Bytes host = ReadHostFile(Host());
    ResetHost();
    Require(!full || host.size() == 998 * kBlock);
    if (locked) host.insert(host.begin(), kOffset, 0x55);
    return host;
}

const Bytes& BaseImage(Base base) {
    static std::array<Bytes, kBaseCount> images;
    if (images[base].empty()) images[base] = MakeBase(base);
    return images[base];
}

void PatchEntry(Input& input, Bytes& host, std::size_t base) {
    static const std::int64_t values[] = {0, 1, 2, 3, 255, 4095, 4096, 8193, -1, INT64_MAX, INT64_MIN, 1LL << 40};
    const std::size_t size = base < host.size() && host[base] == 'w' ? 1063 : 550;
    const std::size_t entry = base + kBlock + input.Byte() % 8 * size;  // the directory's first block is block 1
    const std::uint8_t field = input.Byte() % 4, number = input.Byte();
    if (entry + 45 > host.size()) return;
    if (field == 0) StoreAt(host, entry, number);
    if (field == 1) StoreAt(host, entry + 1, std::uint32_t{number});
    if (field == 2) StoreAt(host, entry + 5, values[number % std::size(values)]);
    if (field == 3) std::fill_n(host.begin() + static_cast<std::ptrdiff_t>(entry) + 37, 8, number);
}

void PatchBytes(Input& input, Bytes& host, std::size_t base) {
    const std::size_t at = base + input.Number(3);
    for (std::size_t i = 0, count = input.Byte(); i < count; ++i) {
        const std::uint8_t value = input.Byte();
        if (at + i < host.size()) host[at + i] = value;
    }
}

void PatchWord(Input& input, Bytes& host, std::size_t base) {
    const std::size_t at = base + 101 + std::size_t{4} * input.Byte();
    const std::uint32_t next = input.Byte(), use = input.Byte();
    const std::uint32_t word = next | (use < 2 ? use << 31 : use << 24);
    if (at + 4 <= host.size()) StoreAt(host, at, word);
}

void ApplyPatches(Input& input, Bytes& host, std::size_t base) {
    for (std::uint8_t patch; (patch = input.Byte() % kPatchCount) != kPatchEnd;) {
        if (patch == kPatchWord) PatchWord(input, host, base);
        if (patch == kPatchEntry) PatchEntry(input, host, base);
        if (patch == kPatchBytes) PatchBytes(input, host, base);
        if (patch == kPatchLength) host.resize(std::min<std::size_t>(input.Number(3), host.size() + 3 * kBlock));
    }
}

// ---- What must be in it ------------------------------------------------------------------------------------------

struct OpenedFile {
    std::uint32_t handle = 0;
    std::int32_t package = 0;
    std::uint32_t mode = 0;
    Name name;
};

class Script {
public:
    Script(Input& input, std::size_t base) : input_(input), base_(base) {
        const PackageImage image(ReadHostFile(Host()), base_);
        wide_ = image.wide;
        if (image.is_package()) files_ = SoundFiles(image);
        const auto used = [](const ImageEntry& entry) { return entry.used(); };
        const auto entries = std::count_if(image.entries.begin(), image.entries.end(), used);
        sound_ = Faults(image).empty() && static_cast<std::size_t>(entries) == files_.size();
    }

    void Run() {
        OpenPackage(0);
        for (int calls = 0; !input_.empty() && calls < 100; ++calls) Step();
        vlt_package_close_all();
        Check();
    }

private:
    std::int32_t& Package() { return packages_[input_.Byte() % packages_.size()]; }
    OpenedFile& File() { return opened_[input_.Byte() % opened_.size()]; }

    Name AnyName() {
        static const Name names[] = {u"a", u"bb", u"c", u"d", u"E", u"", Name(512, u'n'), Name(513, u'n')};
        const std::uint8_t pick = input_.Byte();
        if (pick < 240) return names[pick % std::size(names)];
        Name name;
        for (const char c : input_.Text()) name += static_cast<char16_t>(static_cast<unsigned char>(c));
        return name;
    }

    void Step() {
        switch (input_.Byte() % kCallCount) {
            case kOpenPackage:
                return OpenPackage(input_.Byte());
            case kClosePackage:
                return ClosePackage(Package());
            case kReopen:
                return Reopen();
            case kOpenFile:
                return OpenAFile();
            case kCloseFile:
                return Close(File());
            case kRead:
                return Read(File());
            case kWrite:
                return Write(File());
            case kSeek:
                return Seek(File());
            case kAsk:
                return Ask(File().handle);
            case kInfo:
                return Info(Package());
            case kSetTime:
                return SetTime(Package());
            case kDelete:
                return Delete(Package());
            case kEnumerate:
                return Enumerate(Package());
            case kTick:
                return TickClock(input_.Byte());
            case kFillDisk:
                return LimitHost(input_.Byte() + 1);
            case kAnyHandle:
                return UseHandle(input_.Number(4));
        }
    }

    void OpenPackage(std::uint8_t how) {
        const char* write_credential = how & 4 ? "nobody's" : "w";
        std::int32_t wide = -1, error = 0;
        const std::int32_t package =
            vlt_package_open_ex(how & 1 ? OtherSpelling().c_str() : Host().c_str(), how & 2,
                                static_cast<std::uint32_t>(how & 8 ? base_ + 1 : base_), how & 128 ? -1 : 0,
                                (how >> 4) % 3, how & 64, "r", locked() ? write_credential : nullptr, &wide, &error);
        Require((package != 0) == (error == 0) && error <= VLT_OPEN_ARGUMENT && (wide == 0 || wide == 1));
        if (package == 0) return;
        read_only_ = read_only_ || (how & 2);
        std::int32_t& slot = packages_[input_.Byte() % packages_.size()];
        if (slot != 0) ClosePackage(slot);
        slot = package;
    }
    bool locked() const { return base_ != 0; }

    void ClosePackage(std::int32_t& package) {
        Require(vlt_package_close(package) == (package != 0));
        for (OpenedFile& file : opened_)
            if (file.package == package) file = {};
        package = 0;
    }

    void Reopen() {
        vlt_package_close_all();
        packages_ = {};
        opened_ = {};
        OpenPackage(0);
    }

    /// Writes may have failed: the disk was full or the host file was opened for reading only.
    bool Failing() const { return read_only_ || HostWasFull(); }
    bool Known(const Name& name) const { return files_.count(name) != 0; }

    /// Nothing is promised any more of what this file holds.
    void Forget(const Name& name) {
        files_.erase(name);
        forgotten_.insert(name);
    }

    void OpenAFile() {
        const std::int32_t package = Package();
        const Name name = AnyName();
        const std::uint8_t how = input_.Byte();
        OpenedFile opened{0, package, how % 4U, FoldedName(name)};
        const bool truncates = (how & 16) != 0, may_change = opened.mode != VLT_MODE_READ;
        opened.handle = OpenFile(package, name, opened.mode, how & 8, truncates);
        if (opened.handle != 0 && sound_ && !forgotten_.count(opened.name)) {
            Require(may_change || Known(opened.name));
            if (truncates) files_[opened.name].clear();
            files_[opened.name];
        } else if (may_change && (!sound_ || Failing())) {
            Forget(opened.name);
        }
        if (opened.handle == 0) return;
        OpenedFile& slot = File();
        if (slot.handle != 0) Close(slot);
        slot = opened;
    }

    void Close(OpenedFile& file) {
        Require(vlt_file_close(file.handle) == (file.handle != 0));
        file = {};
    }

    void Read(OpenedFile& file) {
        std::int64_t position = 0;
        const auto length = static_cast<std::int32_t>(input_.Number(2) % kLongest);
        Bytes buffer(static_cast<std::size_t>(length));
        vlt_file_get_pos(file.handle, &position);
        const std::int32_t count = vlt_file_read(file.handle, buffer.data(), length);
        Require(count >= 0 && count <= length);
        if (!Known(file.name) || file.handle == 0 || Failing()) return;
        const Bytes& bytes = files_[file.name];
        const auto at = std::min<std::size_t>(static_cast<std::size_t>(position), bytes.size());
        Require(static_cast<std::size_t>(count) == std::min(buffer.size(), bytes.size() - at));
        Require(std::equal(buffer.begin(), buffer.begin() + count, bytes.begin() + static_cast<std::ptrdiff_t>(at)));
    }

    void Write(OpenedFile& file) {
        std::int64_t position = 0;
        const Bytes bytes(input_.Number(2) % kLongest, ++written_);
        vlt_file_get_pos(file.handle, &position);
        const bool done = vlt_file_write(file.handle, bytes.data(), static_cast<std::int32_t>(bytes.size())) == 1;
        if (file.handle == 0 || bytes.empty() || file.mode == VLT_MODE_READ) return Require(done == bytes.empty());
        if (!Known(file.name)) return;
        if (!done) {
            if (file.mode != VLT_MODE_APPEND || Failing() || !sound_) Forget(file.name);
            return;
        }
        Bytes& held = files_[file.name];
        const auto at = static_cast<std::size_t>(position);
        if (held.size() < at + bytes.size()) held.resize(at + bytes.size());
        std::copy(bytes.begin(), bytes.end(), held.begin() + position);
    }

    void Seek(OpenedFile& file) {
        static const std::int64_t far[] = {-1, INT64_MIN, INT64_MAX, 1LL << 40};
        const std::uint8_t where = input_.Byte();
        const std::int64_t position = where & 1 ? far[where / 2 % 4] : input_.Number(3) % 40000;
        if (where & 128) vlt_file_set_pos_eof(file.handle);
        if (where & 64) vlt_file_set_pos_bof(file.handle);
        Require(vlt_file_set_pos(file.handle, position) == (file.handle != 0));
    }

    void Ask(std::uint32_t file) {
        std::int64_t position = -7;
        const bool open = vlt_file_get_pos(file, &position) == 1;
        Require(open || position == 0);
        const std::int32_t at_start = vlt_file_is_bof(file);
        Require(open ? at_start == (position <= 0) : at_start == -1);
        Require(vlt_file_is_eof(file) >= -1 && vlt_file_is_eof(file) <= 1);
    }

    void Info(std::int32_t package) {
        const Name name = AnyName();
        std::uint32_t kind = 99;
        std::int64_t size = -99;
        double created, accessed, written;
        const std::int32_t found =
            wide_ ? vltw_file_get_info(package, name.c_str(), &kind, &size, &created, &accessed, &written)
                  : vlt_file_get_info(package, Narrow(name).c_str(), &kind, &size, &created, &accessed, &written);
        Require(found == (kind != 99));
        if (package != 0 && Known(FoldedName(name)) && !Failing())
            Require(found == 1 && size == static_cast<std::int64_t>(files_[FoldedName(name)].size()));
    }

    void SetTime(std::int32_t package) {
        const Name name = AnyName();
        wide_ ? vltw_file_set_time(package, name.c_str(), 1, 2, 3)
              : vlt_file_set_time(package, Narrow(name).c_str(), 1, 2, 3);
    }

    void Delete(std::int32_t package) {
        const Name name = AnyName();
        const bool done =
            (wide_ ? vltw_file_delete(package, name.c_str()) : vlt_file_delete(package, Narrow(name).c_str())) == 1;
        const Name key = FoldedName(name);
        if (done && sound_) files_.erase(key);
        if ((done && !sound_) || Failing()) Forget(key);
    }

    void Enumerate(std::int32_t package) {
        char narrow[VLT_NAME_MAX + 1];
        vlt_wchar name[VLT_NAME_MAX + 1];
        std::size_t count = 0;
        for (std::int32_t cursor = 0; count < 10000; ++count) {
            cursor = wide_ ? vltw_package_enum(package, cursor, name, nullptr, nullptr, nullptr, nullptr, nullptr)
                           : vlt_package_enum(package, cursor, narrow, nullptr, nullptr, nullptr, nullptr, nullptr);
            if (cursor <= 0) break;
        }
        Require(count < 10000);
        if (package != 0 && sound_ && forgotten_.empty()) Require(count == files_.size());
    }

    /// A handle that may be open, closed or never have been one; nothing that changes a file.
    void UseHandle(std::uint32_t handle) {
        char byte;
        Ask(handle);
        vlt_file_read(handle, &byte, 0);
        vlt_file_read(handle, nullptr, 1);
        vlt_file_write(handle, nullptr, 1);
        vlt_package_is_unicode_files(static_cast<std::int32_t>(handle));
        OpenFile(static_cast<std::int32_t>(handle), u"a", VLT_MODE_READ + 9, 0, 0);
    }

    void Check() {
        const PackageImage image(ReadHostFile(Host()), base_);
        if (sound_) {
            const bool full = Failing();
            const std::string faults = Faults(image, {full, full, full, full});
            if (!faults.empty()) std::fputs(faults.c_str(), stderr);
            Require(faults.empty());
        }
        const std::map<Name, Bytes> left = SoundFiles(image);
        for (const auto& [name, bytes] : files_) Require(left.count(name) && left.at(name) == bytes);
    }

    Input& input_;
    const std::size_t base_;
    bool wide_ = false;
    bool read_only_ = false;
    bool sound_ = false;           // the package was sound at first, and every name in it is a file's own
    std::map<Name, Bytes> files_;  // what is known of them, by folded name
    std::set<Name> forgotten_;     // of these nothing is
    std::array<std::int32_t, 3> packages_{};
    std::array<OpenedFile, 6> opened_{};
    std::uint8_t written_ = 0;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::uint8_t pick = input.Byte();
    const Base kind = pick == kBaseFull ? kBaseFull : static_cast<Base>(pick % kBaseFull);  // the full one is slow
    Bytes host = BaseImage(kind);
    const std::size_t base = kind == kBaseCredentials ? kOffset : 0;
    ApplyPatches(input, host, base);
    WriteHostFile(Host(), host);
    Script(input, base).Run();
    ResetHost();
    return 0;
}

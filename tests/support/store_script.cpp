// SPDX-License-Identifier: MIT
#include "tests/support/store_script.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>

#include "tests/support/reference_store.h"

namespace {

/// Where the file of a call stands afterwards.
struct Standing {
    std::int64_t open = 0, position = 77, at_start = 0, at_end = 0;
    bool operator==(const Standing&) const = default;
};

/// What a call gives back, and the listing that follows it.
struct Result {
    std::vector<std::int64_t> numbers;
    Bytes bytes = {};
    std::vector<FileInfo> infos = {};
    Standing file = {};
    bool operator==(const Result&) const = default;
};

/// Where a host file is not as wanted, to a piece; -1 when it is. Piece by piece, because fresh memory for the whole
/// of it, call by call, would take most of the time.
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

std::int32_t Open(const std::string& path, const PackageOpening& how, std::int32_t* error) {
    return vlt_package_open_ex(path.c_str(), how.read_only_file, static_cast<std::uint32_t>(how.offset),
                               static_cast<std::int32_t>(how.offset >> 32), how.read_only, how.exclusive,
                               how.read_credential.c_str(), how.write_credential.c_str(), nullptr, error);
}

constexpr std::size_t kEndless = 10000;  // files of a listing

struct OpenedFile {
    std::u16string name;  // folded
    std::uint32_t mode;
};

class Runner {
public:
    Runner(const StoreScript& script, Input& input) : script_(script), input_(input) {
        const PackageImage image = Image();
        wide_ = image.wide;
        kept_ = SoundFiles(image);
        sound_ = Faults(image).empty();
        for (const ImageEntry& entry : image.entries) {
            const bool stamped = !std::isnan(entry.created + entry.accessed + entry.written);
            sound_ = sound_ && (!entry.used() || (stamped && kept_.count(FoldedName(entry.name)) != 0));
        }
        if (sound_) reference_ = std::make_unique<ReferenceStore>(image.host, script.base);
    }

    std::string Run(int calls) {
        std::string wrong;
        int made = 0;
        for (; made < calls && wrong.empty() && !input_.empty(); ++made) wrong = Step();
        vlt_package_close_all();
        if (wrong.empty()) return FilesFault();
        return wrong + ", call " + std::to_string(made) + " of kind " + std::to_string(call_);
    }

private:
    PackageImage Image() const { return PackageImage(ReadHostFile(script_.path), script_.base); }

    std::string Step() {
        static const Call calls[] = {kOpenPackage, kClosePackage, kOpenFile, kCloseFile, kWrite, kRead,    kSeek,
                                     kDelete,      kInfo,         kSetTime,  kReopen,    kTick,  kFillDisk};
        call_ = *(std::upper_bound(std::begin(calls), std::end(calls), input_.Byte() % kCallEnd) - 1);
        const std::uint8_t handle = input_.Byte(), name = input_.Byte();
        how_ = input_.Byte();
        number_ = input_.Number(3);
        if (call_ == kReopen && handle >= 64) call_ = kTick;
        if (call_ == kFillDisk && script_.fill_disk) script_.fill_disk(how_);
        if (call_ == kReopen) CloseAll();
        if (call_ == kTick && script_.tick) script_.tick(how_);
        if (packages_.empty() && (call_ != kReopen || how_ < 128)) how_ = script_.read_only_base;
        if (packages_.empty()) call_ = kOpenPackage;
        package_ = handle < 250 && !packages_.empty() ? packages_[handle % packages_.size()] : handle - 251;
        file_ = handle < 250 && !files_.empty() ? files_[handle % files_.size()] : number_ % 0x50000;
        const std::size_t lengths[] = {0, 8, 512, 513};
        name_ = (name < 192 ? "f" : "F") + std::to_string(name % 64 % script_.files);
        if (name % 64 == 62) name_ = static_cast<char>(number_ % (wide_ ? 127 : 255) + 1);
        if (name % 64 == 63) name_ = std::string(lengths[name / 64], how_ % 2 ? 'N' : 'n');
        return Both();
    }

    void CloseAll() {
        vlt_package_close_all();
        if (reference_) reference_->CloseAll();
        packages_.clear();
        opened_.clear();
        read_only_file_ = false;
    }

    /// The disk was full: any call may have failed half way, and what is known are the files that it was not to
    /// change and that are left alone.
    void ForgetChanging() {
        full_ = true;
        if (!reference_) return;
        kept_ = SoundFiles(PackageImage(reference_->host, script_.base));
        for (const auto& [handle, file] : opened_)
            if (file.mode != VLT_MODE_READ) kept_.erase(file.name);
        reference_.reset();
    }

    PackageOpening Opening() const {
        const int how = how_ < 128 ? how_ % 2 : how_;
        const auto base = static_cast<std::int64_t>(script_.base);
        return {.read_only = how & 64 ? 2 : how & 1,
                .read_only_file = (how & 2) != 0,
                .exclusive = (how & 4) != 0,
                .offset = how & 32 ? (how & 1 ? -1 : base + 7) : base,
                .read_credential = how & 8 ? "x" : "r",
                .write_credential = how & 16 ? "x" : "w"};
    }

    std::uint32_t Mode() const { return how_ % 4 == 3 && how_ < 224 ? VLT_MODE_WRITE : how_ % 4; }

    std::int32_t Length() const {
        const std::uint32_t blocks = number_ % (script_.largest / VLT_BLOCK_SIZE);
        if (how_ % 4 == 2) return static_cast<std::int32_t>(number_ % 100);
        if (how_ % 4 == 3) return static_cast<std::int32_t>(blocks * VLT_BLOCK_SIZE + how_ / 4 % 3) - 1;
        return static_cast<std::int32_t>(number_ % script_.largest);
    }

    /// Runs the call, asks where its file stands, and lists what there is; on the reference if there is one given,
    /// else on the library.
    Result Run(ReferenceStore* r) const {
        Result result = Make(r);
        Standing& file = result.file;
        file.open = r ? r->GetPos(file_, &file.position) : vlt_file_get_pos(file_, &file.position);
        file.at_start = r ? r->IsBof(file_) : vlt_file_is_bof(file_);
        file.at_end = r ? r->IsEof(file_) : vlt_file_is_eof(file_);
        FileInfo info;
        const std::int32_t package = packages_.empty() ? 0 : packages_[0];
        for (std::int32_t at = 0; result.infos.size() < kEndless; result.infos.push_back(info)) {
            at = r ? r->Enumerate(package, at, &info) : Enumerate(package, at, &info);
            if (at <= 0) break;
        }
        return result;
    }
    Result Make(ReferenceStore* r) const {
        if (call_ == kOpenPackage || call_ == kReopen) {
            const PackageOpening how = Opening();
            std::int32_t code = 0;
            return {{r ? r->Open(how, &code) : Open(script_.path, how, &code), code}};
        }
        if (call_ == kClosePackage) return {{r ? r->Close(package_) : vlt_package_close(package_)}};
        if (call_ == kOpenFile) {
            const OpenHow how{.exclusive = (how_ & 0x3C) == 0x3C, .truncate = (how_ & 0xC0) == 0x40};
            std::uint32_t code = 99;
            return {
                {r ? r->OpenFile(package_, name_, Mode(), how, &code) : OpenFile(package_, name_, Mode(), how, &code),
                 code}};
        }
        if (call_ == kCloseFile) return {{r ? r->CloseFile(file_) : vlt_file_close(file_)}};
        if (call_ == kWrite) {
            const Bytes data =
                Pattern(std::to_string(number_ * 31 + how_), static_cast<std::size_t>(std::max(Length(), 0)));
            return {{r ? r->Write(file_, data.data(), Length()) : vlt_file_write(file_, data.data(), Length())}};
        }
        if (call_ == kRead) {
            Bytes data(static_cast<std::size_t>(std::max(Length(), 1)));
            const std::int32_t count =
                r ? r->Read(file_, data.data(), Length()) : vlt_file_read(file_, data.data(), Length());
            return {{count}, data};
        }
        if (call_ == kSeek) {
            const std::int64_t ends[] = {-1, 0, INT64_MAX, INT64_MIN};
            const std::int64_t to = how_ % 4 == 1 ? ends[how_ / 4 % 4] : Length();
            if (how_ < 16) return {{r ? r->SetPosBof(file_) : vlt_file_set_pos_bof(file_)}};
            return {{r ? r->SetPos(file_, to) : vlt_file_set_pos(file_, to)}};
        }
        if (call_ == kDelete) return {{r ? r->Delete(package_, name_) : Delete(package_, name_)}};
        if (call_ == kInfo) {
            FileInfo info;
            const std::int32_t found = r ? r->GetInfo(package_, name_, &info) : GetInfo(package_, name_, &info);
            return {{found}, {}, {info}};
        }
        const double stamp = 20050321.140709 - how_;
        if (call_ == kSetTime)
            return {{r ? r->SetTime(package_, name_, stamp, -1.5, 0.0) : SetTime(package_, name_, stamp, -1.5, 0.0)}};
        return {{1}};
    }

    bool Opens() const { return call_ == kOpenPackage || call_ == kReopen || call_ == kOpenFile; }

    /// Whether a result is among the documented ones.
    bool Documented(const Result& found) const {
        const Standing& file = found.file;
        const std::int64_t result = found.numbers[0];
        if (found.infos.size() >= kEndless || file.at_end < -1 || file.at_end > 1) return false;
        if (file.open == 1 ? file.at_start != (file.position <= 0) : file.position != 0 || file.at_start != -1)
            return false;
        if (Opens()) {
            const std::int64_t code = found.numbers[1];
            return (result != 0) == (code == 0) && code >= 0 && code <= (call_ == kOpenFile ? 4 : 5);
        }
        const auto opened = opened_.find(file_);
        if (opened != opened_.end() && (call_ == kCloseFile || call_ == kSeek)) return result == 1;
        if (opened != opened_.end() && call_ == kWrite && opened->second.mode == VLT_MODE_READ)
            return result == (Length() < 1);
        if (call_ == kRead) return result >= 0 && result <= std::max(Length(), 0);
        if (call_ == kInfo) return result == (found.infos[0].kind != 99);
        return result == 1 || (result == 0 && !(call_ == kWrite && Length() < 1));
    }

    /// Whether a result tells of a file that the script has not changed what it holds.
    bool IsOfKept(const Result& found) const {
        if (full_) return true;
        if (call_ == kInfo && found.numbers[0] == 1) {
            const auto kept = kept_.find(FoldedName(name_));
            return kept == kept_.end() || found.infos[0].size == static_cast<std::int64_t>(kept->second.size());
        }
        const auto opened = opened_.find(file_);
        if (call_ != kRead || opened == opened_.end()) return true;
        const auto kept = kept_.find(opened->second.name);
        if (kept == kept_.end()) return true;
        const auto size = static_cast<std::ptrdiff_t>(kept->second.size());
        const auto count = static_cast<std::ptrdiff_t>(found.numbers[0]);
        const auto from = static_cast<std::ptrdiff_t>(std::min<std::int64_t>(found.file.position - count, size));
        return from >= 0 && count == std::min<std::ptrdiff_t>(std::max(Length(), 0), size - from) &&
               std::equal(found.bytes.begin(), found.bytes.begin() + count, kept->second.begin() + from);
    }

    /// Runs the call on both sides.
    std::string Both() {
        if (call_ == kClosePackage) std::erase(packages_, package_);
        if (call_ == kCloseFile && how_ % 8 < 7) std::erase(files_, file_);
        const std::time_t begun = script_.now();
        const Result found = Run(nullptr);
        const std::time_t ended = script_.now();
        if (script_.disk_was_full && script_.disk_was_full()) ForgetChanging();
        const bool half_done = full_ || read_only_file_;  // a failed deletion may be, as long as the package is open
        if ((call_ == kDelete && (half_done || found.numbers[0] == 1)) ||
            (call_ == kOpenFile && Mode() != VLT_MODE_READ))
            kept_.erase(FoldedName(name_));
        if (!Documented(found)) return "an undocumented result";
        if (!IsOfKept(found)) return "what a file holds";
        const std::string wrong = Difference(found, begun, ended);
        Note(found.numbers[0]);
        return wrong;
    }

    /// Keeps what was opened, and forgets what was closed.
    void Note(std::int64_t result) {
        const auto file = static_cast<std::uint32_t>(result);
        if (call_ == kOpenFile && result != 0) files_.push_back(file);
        if (call_ == kOpenFile && result != 0) opened_[file] = {FoldedName(name_), Mode()};
        if (Opens() && call_ != kOpenFile && result != 0) read_only_file_ |= Opening().read_only_file;
        if (Opens() && call_ != kOpenFile && result != 0) packages_.push_back(static_cast<std::int32_t>(result));
        if (call_ == kCloseFile) opened_.erase(file_);
        if (call_ == kClosePackage)
            std::erase_if(opened_, [&](const auto& one) { return static_cast<int>(one.first >> 16) == package_; });
    }

    /// Runs the call on the reference; says what is not the same then. The clock may strike within the library's
    /// call, and then any of its seconds is right.
    std::string Difference(const Result& found, std::time_t begun, std::time_t ended) {
        if (!reference_) return "";
        const std::unique_ptr<ReferenceStore> before =
            begun == ended ? nullptr : std::make_unique<ReferenceStore>(*reference_);
        std::string wrong = DifferenceAt(begun, found);
        for (std::time_t second = begun + 1; second <= ended && !wrong.empty(); ++second) {
            *reference_ = *before;
            wrong = DifferenceAt(second, found);
        }
        return wrong;
    }
    std::string DifferenceAt(std::time_t second, const Result& found) {
        reference_->now = StampOf(second);
        if (!(Run(reference_.get()) == found)) return "the result";
        const std::int64_t at = FirstDifference(script_.path, reference_->host);
        return at < 0 ? "" : "the host file from " + std::to_string(at) + " on";
    }

    /// With nothing open: what is not in the host file, or does not read back, as it was.
    std::string FilesFault() const {
        const PackageImage image = Image();
        const std::string faults = sound_ ? Faults(image, {full_, full_, full_, full_}) : "";
        const std::map<std::u16string, Bytes> left = SoundFiles(image);
        const PackageOpening how{1, true, false, static_cast<std::int64_t>(script_.base), "r", "w"};
        std::int32_t code = 0;
        const std::int32_t package = Open(script_.path, how, &code);
        if (sound_ && package == 0 && code != VLT_OPEN_CREDENTIALS) return "a sound package that does not open";
        for (const auto& [name, bytes] : kept_) {
            if (!left.count(name) || left.at(name) != bytes) return "a file that has changed";
            const WideName wide(name.begin(), name.end());
            const std::string narrow(name.begin(), name.end());
            const std::int32_t file = image.wide
                                          ? vltw_file_open(package, wide.c_str(), VLT_MODE_READ, 0, 0, nullptr)
                                          : vlt_file_open(package, narrow.c_str(), VLT_MODE_READ, 0, 0, nullptr);
            const Bytes read =
                ReadFrom(static_cast<std::uint32_t>(file), static_cast<std::int32_t>(bytes.size()) + 1);
            if (package != 0 && (file == 0 || read != bytes)) return "a file that does not read back";
        }
        vlt_package_close_all();
        return faults;
    }

    const StoreScript& script_;
    Input& input_;
    bool wide_, sound_;                          // at first
    bool full_ = false;                          // the disk, at some time
    bool read_only_file_ = false;                // some opening of this session
    std::unique_ptr<ReferenceStore> reference_;  // null when something else may be right
    std::map<std::u16string, Bytes> kept_;       // files that the script has not changed, by folded name
    std::vector<std::int32_t> packages_;
    std::vector<std::uint32_t> files_;
    std::map<std::uint32_t, OpenedFile> opened_;  // those of them that are open

    // The call that is run.
    std::uint8_t call_ = 0, how_ = 0;
    std::uint32_t number_ = 0;
    std::int32_t package_ = 0;
    std::uint32_t file_ = 0;
    std::string name_;
};

}  // namespace

std::string StoreScript::Run(Input input, int calls) const {
    return Runner(*this, input).Run(calls);
}

// SPDX-License-Identifier: MIT
#include "tests/support/store_script.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>

#include "tests/support/reference_store.h"

namespace {

/// What a call gives back, and the listing that follows it.
struct Result {
    std::vector<std::int64_t> numbers;
    Bytes bytes = {};
    std::vector<FileInfo> infos = {};
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

class Runner {
public:
    Runner(const StoreScript& script, Input& input) : script_(script), input_(input) {
        const PackageImage image = Image();
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
        if (call_ == kFillDisk && script_.fill_disk) FillDisk();
        if (call_ == kReopen) CloseAll();
        if (call_ == kTick && script_.tick) script_.tick(how_);
        if (packages_.empty() && (call_ != kReopen || how_ < 128)) how_ = script_.read_only_base;
        if (packages_.empty()) call_ = kOpenPackage;
        package_ = handle < 250 && !packages_.empty() ? packages_[handle % packages_.size()] : handle - 251;
        file_ = handle < 250 && !files_.empty() ? files_[handle % files_.size()] : number_ % 0x50000;
        const std::size_t lengths[] = {0, 8, 512, 513};
        name_ = (name < 192 ? "f" : "F") + std::to_string(name % 64 % script_.files);
        if (name % 64 == 63) name_ = std::string(lengths[name / 64], how_ % 2 ? 'N' : 'n');
        return Both();
    }

    void CloseAll() {
        vlt_package_close_all();
        if (reference_) reference_->CloseAll();
        packages_.clear();
    }

    /// From now on any call may fail half way, and what is known are the files that are left alone.
    void FillDisk() {
        CloseAll();
        if (reference_) kept_ = SoundFiles(Image());
        reference_.reset();
        script_.fill_disk(how_);
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
        std::int64_t told = 77;
        const std::int32_t open = r ? r->GetPos(file_, &told) : vlt_file_get_pos(file_, &told);
        const std::int32_t bof = r ? r->IsBof(file_) : vlt_file_is_bof(file_);
        const std::int32_t eof = r ? r->IsEof(file_) : vlt_file_is_eof(file_);
        result.numbers.insert(result.numbers.end(), {open, told, bof, eof});
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
            const std::int64_t to = how_ % 2 ? ends[how_ / 2 % 4] : Length();
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
        const std::int64_t* asked = found.numbers.data() + found.numbers.size() - 4;
        const std::int64_t result = found.numbers[0], code = found.numbers[1];
        if (found.infos.size() >= kEndless || asked[3] < -1 || asked[3] > 1) return false;
        if (asked[0] == 1 ? asked[2] != (asked[1] <= 0) : asked[1] != 0 || asked[2] != -1) return false;
        if (Opens()) return (result != 0) == (code == 0) && code >= 0 && code <= (call_ == kOpenFile ? 4 : 5);
        if (call_ == kRead) return result >= 0 && result <= std::max(Length(), 0);
        if (call_ == kInfo) return result == (found.infos[0].kind != 99);
        return result == 1 || (result == 0 && !(call_ == kWrite && Length() < 1));
    }

    /// Runs the call on both sides. The clock may strike within the library's call, and then either second is right.
    std::string Both() {
        if (call_ == kClosePackage) std::erase(packages_, package_);
        if (call_ == kCloseFile && how_ % 8 < 7) std::erase(files_, file_);
        if (call_ == kDelete || (call_ == kOpenFile && Mode() != VLT_MODE_READ))
            kept_.erase(FoldedName({name_.begin(), name_.end()}));
        const double before = script_.now();
        const Result found = Run(nullptr);
        const double after = script_.now();
        std::unique_ptr<ReferenceStore> again;
        if (reference_ && before != after) again = std::make_unique<ReferenceStore>(*reference_);
        if (!Documented(found)) return "an undocumented result";
        std::string wrong = Difference(found, before);
        if (again && !wrong.empty()) {
            reference_ = std::move(again);
            wrong = Difference(found, after);
        }
        const std::int64_t opened = Opens() ? found.numbers[0] : 0;
        if (opened != 0 && call_ == kOpenFile) files_.push_back(static_cast<std::uint32_t>(opened));
        if (opened != 0 && call_ != kOpenFile) packages_.push_back(static_cast<std::int32_t>(opened));
        return wrong;
    }

    /// Runs the call on the reference; says what is not the same then.
    std::string Difference(const Result& found, double now) {
        if (!reference_) return "";
        reference_->now = now;
        if (!(Run(reference_.get()) == found)) return "the result";
        const std::int64_t at = FirstDifference(script_.path, reference_->host);
        return at < 0 ? "" : "the host file from " + std::to_string(at) + " on";
    }

    /// With nothing open: what is not in the host file, or does not read back, as it was.
    std::string FilesFault() const {
        const PackageImage image = Image();
        const bool full = reference_ == nullptr;
        const std::string faults = sound_ ? Faults(image, {full, full, full, full}) : "";
        const std::map<std::u16string, Bytes> left = SoundFiles(image);
        const PackageOpening how{1, true, false, static_cast<std::int64_t>(script_.base), "r", "w"};
        std::int32_t code = 0;
        const std::int32_t package = Open(script_.path, how, &code);
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
    bool sound_;                                 // at first
    std::unique_ptr<ReferenceStore> reference_;  // null when something else may be right
    std::map<std::u16string, Bytes> kept_;       // files that the script has not changed, by folded name
    std::vector<std::int32_t> packages_;
    std::vector<std::uint32_t> files_;

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

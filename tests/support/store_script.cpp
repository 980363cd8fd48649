// SPDX-License-Identifier: MIT
#include "tests/support/store_script.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <memory>

#include "tests/support/known_files.h"
#include "tests/support/reference_store.h"

namespace {

constexpr std::size_t kEndless = 10000;  // files of a listing

/// What a call gives back, where its file stands then, and what a package holds.
struct Result {
    std::int64_t number = 1, code = 0;
    Bytes bytes = {};
    FileInfo info = {};
    std::int64_t open = 0, position = 77, at_start = 0, at_end = 0;
    std::vector<FileInfo> listing = {};

    bool operator==(const Result&) const = default;
    bool StandsSomewhere() const {
        if (listing.size() >= kEndless || at_end < -1 || at_end > 1) return false;
        return open == 1 ? at_start == (position <= 0) : position == 0 && at_start == -1;
    }
};

// ---- The calls ---------------------------------------------------------------------------------------------------

struct OpenedFile {
    std::u16string name;  // folded
    std::uint32_t mode;
};

/// What the bytes of a call say.
struct Arguments {
    const StoreScript& script;
    std::uint8_t how = 0;
    std::uint32_t number = 0;
    std::int32_t package = 0, listed = 0;
    std::uint32_t file = 0;
    const OpenedFile* opened = nullptr;  // what `file` is, as far as the script knows
    std::string name = {};

    PackageOpening Opening() const {
        const int bits = how < 128 ? how % 2 : how;
        const auto base = static_cast<std::int64_t>(script.base);
        return {.read_only = bits & 64 ? 2 : bits & 1,
                .read_only_file = (bits & 2) != 0,
                .exclusive = (bits & 4) != 0,
                .offset = bits & 32 ? (bits & 1 ? -1 : base + 7) : base,
                .read_credential = bits & 8 ? "x" : "r",
                .write_credential = bits & 16 ? "x" : "w"};
    }
    std::uint32_t Mode() const { return how % 4 == 3 && how < 224 ? VLT_MODE_WRITE : how % 4; }
    OpenHow FileHow() const { return {.exclusive = (how & 0x3C) == 0x3C, .truncate = (how & 0xC0) == 0x40}; }
    std::int32_t Length() const {
        const std::uint32_t blocks = number % (script.largest / VLT_BLOCK_SIZE);
        if (how % 4 == 2) return static_cast<std::int32_t>(number % 100);
        if (how % 4 == 3) return static_cast<std::int32_t>(blocks * VLT_BLOCK_SIZE + how / 4 % 3) - 1;
        return static_cast<std::int32_t>(number % script.largest);
    }
    std::int32_t BytesAtMost() const { return std::max(Length(), 0); }
    Bytes Data() const { return Pattern(std::to_string(number * 31 + how), static_cast<std::size_t>(BytesAtMost())); }
    std::int64_t Position() const {
        const std::int64_t ends[] = {-1, 0, INT64_MAX, INT64_MIN};
        return how % 4 == 1 ? ends[how / 4 % 4] : Length();
    }
    double Stamp() const { return 20050321.140709 - how; }
};

// How a call is made on either store.
constexpr auto kOpen = [](auto& store, auto& a) {
    std::int32_t code = 0;
    const std::int32_t package = store.Open(a.Opening(), &code);
    return Result{package, code};
};
constexpr auto kOpenStored = [](auto& store, auto& a) {
    std::uint32_t code = 99;
    const std::uint32_t file = store.OpenFile(a.package, a.name, a.Mode(), a.FileHow(), &code);
    return Result{file, code};
};
constexpr auto kReadBytes = [](auto& store, auto& a) {
    Bytes data(static_cast<std::size_t>(std::max(a.Length(), 1)));
    const std::int32_t count = store.Read(a.file, data.data(), a.Length());
    return Result{count, 0, data};
};
constexpr auto kMove = [](auto& store, auto& a) {
    if (a.how < 16) return Result{store.SetPosBof(a.file)};
    return Result{a.how < 240 ? store.SetPos(a.file, a.Position()) : store.SetPosEof(a.file)};
};
constexpr auto kAsk = [](auto& store, auto& a) {
    FileInfo info;
    const std::int32_t found = store.GetInfo(a.package, a.name, &info);
    return Result{found, 0, {}, info};
};
constexpr auto kNothing = [](auto&, auto&) { return Result{}; };

// Whether a result is among the documented ones.
constexpr auto kDoneOrNot = [](auto& r, auto&) { return r.number == 0 || r.number == 1; };
constexpr auto kDoneIfOpen = [](auto& r, auto& a) { return r.number == 1 || (r.number == 0 && !a.opened); };
template <std::int64_t kLastCode>
constexpr auto kOpensOrSaysWhy =
    [](auto& r, auto&) { return (r.number != 0) == (r.code == 0) && r.code >= 0 && r.code <= kLastCode; };
constexpr auto kReadsUpToLength = [](auto& r, auto& a) { return r.number >= 0 && r.number <= a.BytesAtMost(); };
constexpr auto kAllOrNothing = [](auto& r, auto& a) {
    if (a.opened && a.opened->mode == VLT_MODE_READ) return r.number == (a.Length() < 1);
    return r.number == 1 || (r.number == 0 && a.Length() >= 1);
};
constexpr auto kTellsWhatItFinds = [](auto& r, auto&) { return r.number == (r.info.kind != 99); };

/// A kind of call: the first of its bytes, how it is made on either store, and which results it may have.
struct CallKind {
    template <typename Make>
    constexpr CallKind(Call begin, Make make, bool (*results)(const Result&, const Arguments&))
        : first(begin), on_library(make), on_reference(make), documented(results) {}

    Call first;
    Result (*on_library)(LibraryStore&, const Arguments&);
    Result (*on_reference)(ReferenceStore&, const Arguments&);
    bool (*documented)(const Result&, const Arguments&);
};

constexpr CallKind kCalls[] = {
    {kOpenPackage, kOpen, kOpensOrSaysWhy<5>},
    {kClosePackage, [](auto& s, auto& a) { return Result{s.Close(a.package)}; }, kDoneOrNot},
    {kOpenFile, kOpenStored, kOpensOrSaysWhy<4>},
    {kCloseFile, [](auto& s, auto& a) { return Result{s.CloseFile(a.file)}; }, kDoneIfOpen},
    {kWrite, [](auto& s, auto& a) { return Result{s.Write(a.file, a.Data().data(), a.Length())}; }, kAllOrNothing},
    {kRead, kReadBytes, kReadsUpToLength},
    {kSeek, kMove, kDoneIfOpen},
    {kDelete, [](auto& s, auto& a) { return Result{s.Delete(a.package, a.name)}; }, kDoneOrNot},
    {kInfo, kAsk, kTellsWhatItFinds},
    {kSetTime, [](auto& s, auto& a) { return Result{s.SetTime(a.package, a.name, a.Stamp(), -1.5, 0.0)}; },
     kDoneOrNot},
    {kReopen, kNothing, kDoneOrNot},  // an opening follows in its place
    {kTick, kNothing, kDoneOrNot},
    {kFillDisk, kNothing, kDoneOrNot},
};

const CallKind& KindOf(std::uint8_t byte) {
    return *std::find_if(std::rbegin(kCalls), std::rend(kCalls), [&](const CallKind& k) { return k.first <= byte; });
}

/// Makes a call, asks where its file stands, and lists what a package holds.
template <typename Store>
Result MakeCall(Store& store, Result (*make)(Store&, const Arguments&), const Arguments& a) {
    Result result = make(store, a);
    result.open = store.GetPos(a.file, &result.position);
    result.at_start = store.IsBof(a.file);
    result.at_end = store.IsEof(a.file);
    FileInfo info;
    for (std::int32_t at = 0; result.listing.size() < kEndless && (at = store.Enumerate(a.listed, at, &info)) > 0;)
        result.listing.push_back(info);
    return result;
}

// ---- The script --------------------------------------------------------------------------------------------------

class Runner {
public:
    Runner(const StoreScript& script, Input& input)
        : script_(script), input_(input), library_{script.path}, files_(Image()) {
        const PackageImage image = Image();
        wide_ = image.wide;
        sound_ = Faults(image).empty();
        for (const ImageEntry& entry : image.entries) {
            const bool stamped = !std::isnan(entry.created + entry.accessed + entry.written);
            sound_ = sound_ && (!entry.used() || (stamped && files_.Knows(FoldedName(entry.name))));
        }
        if (sound_) reference_ = std::make_unique<ReferenceStore>(image.host, script.base);
    }

    std::string Run(int calls) {
        std::string wrong;
        int made = 0;
        for (; made < calls && wrong.empty() && !input_.empty(); ++made) wrong = Step();
        vlt_package_close_all();
        if (wrong.empty()) return FaultInTheEnd();
        return wrong + ", call " + std::to_string(made) + " of kind " + std::to_string(kind_->first);
    }

private:
    PackageImage Image() const { return PackageImage(ReadHostFile(script_.path), script_.base); }

    std::string Step() {
        Take();
        const std::time_t begun = script_.now();
        FileInfo info;
        const bool is_new = GetInfo(a_.package, a_.name, &info) == 0;
        const Result found = MakeCall(library_, kind_->on_library, a_);
        const std::time_t ended = script_.now();
        if (script_.disk_was_full && script_.disk_was_full()) ForgetChanging();
        if (!found.StandsSomewhere() || !kind_->documented(found, a_)) return "an undocumented result";
        if (!full_ && !TellsWhatIsKnown(found)) return "what a file holds";
        Follow(found, is_new);
        return Difference(found, begun, ended);
    }

    /// Takes the next call from the input, and does what comes before it.
    void Take() {
        Call call = KindOf(input_.Byte() % kCallEnd).first;
        const std::uint8_t handle = input_.Byte(), name = input_.Byte();
        a_.how = input_.Byte();
        a_.number = input_.Number(3);
        if (call == kReopen && handle >= 64) call = kTick;
        if (call == kFillDisk && script_.fill_disk) script_.fill_disk(a_.how);
        if (call == kTick && script_.tick) script_.tick(a_.how);
        if (call == kReopen) CloseAll();
        if (packages_.empty() && (call != kReopen || a_.how < 128)) a_.how = script_.read_only_base;
        if (packages_.empty()) call = kOpenPackage;
        kind_ = &KindOf(call);
        a_.package = handle < 250 && !packages_.empty() ? packages_[handle % packages_.size()] : handle - 251;
        a_.file = handle < 250 && !handles_.empty() ? handles_[handle % handles_.size()] : a_.number % 0x50000;
        a_.name = NameOf(name);
        if (call == kClosePackage) std::erase(packages_, a_.package);
        if (call == kCloseFile && a_.how % 8 < 7) std::erase(handles_, a_.file);
        const auto opened = opened_.find(a_.file);
        a_.opened = opened == opened_.end() ? nullptr : &opened->second;
        a_.listed = packages_.empty() ? 0 : packages_[0];
    }

    std::string NameOf(std::uint8_t byte) const {
        const std::size_t lengths[] = {0, 8, 512, 513};
        if (byte % 64 == 63) return std::string(lengths[byte / 64], a_.how % 2 ? 'N' : 'n');
        if (byte % 64 == 62) return std::string(1, static_cast<char>(a_.number % (wide_ ? 127 : 255) + 1));
        return (byte < 192 ? "f" : "F") + std::to_string(byte % 64 % script_.files);
    }

    void CloseAll() {
        vlt_package_close_all();
        if (reference_) reference_->CloseAll();
        packages_.clear();
        opened_.clear();
        read_only_file_ = false;
    }

    /// The disk was full: any call may have failed half way, and what is known are the files that it was not to
    /// change.
    void ForgetChanging() {
        full_ = true;
        if (reference_) files_ = KnownFiles(PackageImage(reference_->host, script_.base));
        for (const auto& [handle, file] : opened_)
            if (file.mode != VLT_MODE_READ) files_.Forget(file.name);
        reference_.reset();
    }

    bool TellsWhatIsKnown(const Result& found) const {
        if (kind_->first == kInfo && found.number == 1)
            return files_.MayHaveSize(FoldedName(a_.name), found.info.size);
        return kind_->first != kRead || !a_.opened ||
               files_.MayRead(a_.opened->name, a_.BytesAtMost(), found.bytes, found.number, found.position);
    }

    /// Keeps up with what a call opened, closed and changed.
    void Follow(const Result& found, bool is_new) {
        const Call call = kind_->first;
        const bool done = found.number != 0;
        if (call == kOpenPackage && done) packages_.push_back(static_cast<std::int32_t>(found.number));
        if (call == kOpenPackage && done) read_only_file_ |= a_.Opening().read_only_file;
        if (call == kClosePackage)
            std::erase_if(opened_, [&](const auto& one) { return static_cast<int>(one.first >> 16) == a_.package; });
        if (call == kOpenFile) FollowOpening(found, is_new);
        if (call == kWrite && done && a_.opened && !full_) files_.Write(a_.opened->name, a_.Data(), found.position);
        if (call == kCloseFile) opened_.erase(a_.file);
        // A deletion that fails may be half done, as long as the package is open.
        if (call == kDelete && (done || full_ || read_only_file_)) files_.Forget(FoldedName(a_.name));
        // When a damaged directory grows, an entry can come to light that bears the name of a new file.
        if (!sound_ && !full_) files_.ForgetTwins(found.listing);
    }

    void FollowOpening(const Result& found, bool is_new) {
        const std::u16string name = FoldedName(a_.name);
        const bool done = found.number != 0, truncates = a_.FileHow().truncate;
        if (full_ && a_.Mode() != VLT_MODE_READ) files_.Forget(name);
        if (!full_ && done && is_new) files_.Make(name);
        if (!full_ && done && truncates) files_.Empty(name);
        if (!full_ && truncates && found.code == VLT_FILE_NO_SLOT) files_.Forget(name);
        if (!done) return;
        const auto file = static_cast<std::uint32_t>(found.number);
        handles_.push_back(file);
        opened_[file] = {name, a_.Mode()};
    }

    /// Runs the call on the reference; says what is not the same then. The clock may strike within the library's
    /// call, and then any of its seconds is right.
    std::string Difference(const Result& found, std::time_t begun, std::time_t ended) {
        if (!reference_) return "";
        const auto before = begun == ended ? nullptr : std::make_unique<ReferenceStore>(*reference_);
        std::string wrong = DifferenceAt(begun, found);
        for (std::time_t second = begun + 1; second <= ended && !wrong.empty(); ++second) {
            *reference_ = *before;
            wrong = DifferenceAt(second, found);
        }
        return wrong;
    }
    std::string DifferenceAt(std::time_t second, const Result& found) {
        reference_->now = StampOf(second);
        if (!(MakeCall(*reference_, kind_->on_reference, a_) == found)) return "the result";
        const std::int64_t at = FirstDifference(script_.path, reference_->host);
        return at < 0 ? "" : "the host file from " + std::to_string(at) + " on";
    }

    /// What is wrong when all is closed.
    std::string FaultInTheEnd() const {
        const PackageImage image = Image();
        std::int32_t code = 0;
        const std::int32_t package =
            library_.Open({1, true, false, static_cast<std::int64_t>(script_.base), "r", "w"}, &code);
        if (sound_ && package == 0 && code != VLT_OPEN_CREDENTIALS) return "a sound package that does not open";
        const std::string fault = files_.Fault(image, package);
        vlt_package_close_all();
        return fault.empty() && sound_ ? Faults(image, {full_, full_, full_, full_}) : fault;
    }

    const StoreScript& script_;
    Input& input_;
    LibraryStore library_;
    KnownFiles files_;
    bool wide_, sound_;                          // at first
    bool full_ = false;                          // the disk, at some time
    bool read_only_file_ = false;                // some opening of this session
    std::unique_ptr<ReferenceStore> reference_;  // null when something else may be right
    std::vector<std::int32_t> packages_;
    std::vector<std::uint32_t> handles_;          // of files, closed ones among them
    std::map<std::uint32_t, OpenedFile> opened_;  // those of them that are open

    // The call that is made.
    const CallKind* kind_ = nullptr;
    Arguments a_{script_};
};

}  // namespace

std::string StoreScript::Run(Input input, int calls) const {
    return Runner(*this, input).Run(calls);
}

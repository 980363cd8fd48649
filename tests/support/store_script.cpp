// SPDX-License-Identifier: MIT
#include "tests/support/store_script.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
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

// ---- The calls ---------------------------------------------------------------------------------------------------

/// The library, with the interface of the reference.
struct Library {
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

/// What the bytes of a call say.
struct Arguments {
    const StoreScript& script;
    Call call = kCallEnd;
    std::uint8_t how = 0;
    std::uint32_t number = 0;
    std::int32_t package = 0;
    std::uint32_t file = 0;
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
    Bytes Data() const {
        return Pattern(std::to_string(number * 31 + how), static_cast<std::size_t>(std::max(Length(), 0)));
    }
    std::int64_t Position() const {
        const std::int64_t ends[] = {-1, 0, INT64_MAX, INT64_MIN};
        return how % 4 == 1 ? ends[how / 4 % 4] : Length();
    }
    bool OpensPackage() const { return call == kOpenPackage || call == kReopen; }
    /// The file that a name stands for may be changed by this call, or by writes that follow it.
    bool MayChangeNamed() const { return call == kDelete || (call == kOpenFile && Mode() != VLT_MODE_READ); }
};

struct OpenedFile {
    std::u16string name;  // folded
    std::uint32_t mode;
};

/// A kind of call: how it is made on either store, and whether a result is among the documented ones. `opened` is the
/// file that it is for, as far as the script knows one.
struct CallKind {
    Call first;
    Result (*on_library)(Library&, const Arguments&);
    Result (*on_reference)(ReferenceStore&, const Arguments&);
    bool (*documented)(const Result&, const Arguments&, const OpenedFile* opened);
};

template <typename Make, typename Documented>
constexpr CallKind Kind(Call first, Make, Documented documented) {
    return {first, [](Library& store, const Arguments& a) { return Make{}(store, a); },
            [](ReferenceStore& store, const Arguments& a) { return Make{}(store, a); }, documented};
}

bool SucceedsOrNot(const Result& found, const Arguments&, const OpenedFile*) {
    return found.numbers[0] == 0 || found.numbers[0] == 1;
}
bool SucceedsOnOpenFile(const Result& found, const Arguments&, const OpenedFile* opened) {
    return found.numbers[0] == 1 || (found.numbers[0] == 0 && !opened);
}
template <std::int64_t kLastCode>
bool OpensOrSaysWhy(const Result& found, const Arguments&, const OpenedFile*) {
    const std::int64_t code = found.numbers[1];
    return (found.numbers[0] != 0) == (code == 0) && code >= 0 && code <= kLastCode;
}
bool WritesAllOrNothing(const Result& found, const Arguments& a, const OpenedFile* opened) {
    if (opened && opened->mode == VLT_MODE_READ) return found.numbers[0] == (a.Length() < 1);
    return found.numbers[0] == 1 || (found.numbers[0] == 0 && a.Length() >= 1);
}
bool ReadsUpToLength(const Result& found, const Arguments& a, const OpenedFile*) {
    return found.numbers[0] >= 0 && found.numbers[0] <= std::max(a.Length(), 0);
}
bool TellsWhatItFinds(const Result& found, const Arguments&, const OpenedFile*) {
    return found.numbers[0] == (found.infos[0].kind != 99);
}

constexpr auto kMakeOpenPackage = [](auto& store, const Arguments& a) -> Result {
    std::int32_t code = 0;
    const std::int32_t package = store.Open(a.Opening(), &code);
    return {{package, code}};
};
constexpr auto kMakeOpenFile = [](auto& store, const Arguments& a) -> Result {
    std::uint32_t code = 99;
    const std::uint32_t file = store.OpenFile(a.package, a.name, a.Mode(), a.FileHow(), &code);
    return {{file, code}};
};
constexpr auto kMakeWrite = [](auto& store, const Arguments& a) -> Result {
    return {{store.Write(a.file, a.Data().data(), a.Length())}};
};
constexpr auto kMakeRead = [](auto& store, const Arguments& a) -> Result {
    Bytes data(static_cast<std::size_t>(std::max(a.Length(), 1)));
    const std::int32_t count = store.Read(a.file, data.data(), a.Length());
    return {{count}, data};
};
constexpr auto kMakeSeek = [](auto& store, const Arguments& a) -> Result {
    if (a.how < 16) return {{store.SetPosBof(a.file)}};
    if (a.how >= 240) return {{store.SetPosEof(a.file)}};
    return {{store.SetPos(a.file, a.Position())}};
};
constexpr auto kMakeInfo = [](auto& store, const Arguments& a) -> Result {
    FileInfo info;
    const std::int32_t found = store.GetInfo(a.package, a.name, &info);
    return {{found}, {}, {info}};
};
constexpr auto kMakeSetTime = [](auto& store, const Arguments& a) -> Result {
    return {{store.SetTime(a.package, a.name, 20050321.140709 - a.how, -1.5, 0.0)}};
};
constexpr auto kMakeClose = [](auto& store, const Arguments& a) -> Result { return {{store.Close(a.package)}}; };
constexpr auto kMakeCloseFile = [](auto& store, const Arguments& a) -> Result { return {{store.CloseFile(a.file)}}; };
constexpr auto kMakeDelete = [](auto& store, const Arguments& a) -> Result {
    return {{store.Delete(a.package, a.name)}};
};
constexpr auto kMakeNothing = [](auto&, const Arguments&) -> Result { return {{1}}; };

constexpr CallKind kCalls[] = {
    Kind(kOpenPackage, kMakeOpenPackage, OpensOrSaysWhy<5>),
    Kind(kClosePackage, kMakeClose, SucceedsOrNot),
    Kind(kOpenFile, kMakeOpenFile, OpensOrSaysWhy<4>),
    Kind(kCloseFile, kMakeCloseFile, SucceedsOnOpenFile),
    Kind(kWrite, kMakeWrite, WritesAllOrNothing),
    Kind(kRead, kMakeRead, ReadsUpToLength),
    Kind(kSeek, kMakeSeek, SucceedsOnOpenFile),
    Kind(kDelete, kMakeDelete, SucceedsOrNot),
    Kind(kInfo, kMakeInfo, TellsWhatItFinds),
    Kind(kSetTime, kMakeSetTime, SucceedsOrNot),
    Kind(kReopen, kMakeOpenPackage, OpensOrSaysWhy<5>),
    Kind(kTick, kMakeNothing, SucceedsOrNot),
    Kind(kFillDisk, kMakeNothing, SucceedsOrNot),
};

const CallKind& KindOf(std::uint8_t byte) {
    return *std::find_if(std::rbegin(kCalls), std::rend(kCalls), [&](const CallKind& k) { return k.first <= byte; });
}

constexpr std::size_t kEndless = 10000;  // files of a listing

/// Makes a call, asks where its file stands, and lists what the package of a handle holds.
template <typename Store>
Result MakeCall(Store& store, Result (*make)(Store&, const Arguments&), const Arguments& a, std::int32_t listed) {
    Result result = make(store, a);
    Standing& file = result.file;
    file.open = store.GetPos(a.file, &file.position);
    file.at_start = store.IsBof(a.file);
    file.at_end = store.IsEof(a.file);
    FileInfo info;
    for (std::int32_t at = 0; result.infos.size() < kEndless; result.infos.push_back(info)) {
        at = store.Enumerate(listed, at, &info);
        if (at <= 0) break;
    }
    return result;
}

// ---- The script --------------------------------------------------------------------------------------------------

class Runner {
public:
    Runner(const StoreScript& script, Input& input) : script_(script), input_(input), library_{script.path} {
        const PackageImage image = Image();
        wide_ = image.wide;
        sound_files_ = SoundFiles(image);
        sound_ = Faults(image).empty();
        for (const ImageEntry& entry : image.entries) {
            const bool stamped = !std::isnan(entry.created + entry.accessed + entry.written);
            sound_ = sound_ && (!entry.used() || (stamped && sound_files_.count(FoldedName(entry.name)) != 0));
        }
        if (sound_) reference_ = std::make_unique<ReferenceStore>(image.host, script.base);
    }

    std::string Run(int calls) {
        std::string wrong;
        int made = 0;
        for (; made < calls && wrong.empty() && !input_.empty(); ++made) wrong = Step();
        vlt_package_close_all();
        if (wrong.empty()) return FilesFault();
        return wrong + ", call " + std::to_string(made) + " of kind " + std::to_string(a_.call);
    }

private:
    PackageImage Image() const { return PackageImage(ReadHostFile(script_.path), script_.base); }

    std::string Step() {
        Take();
        const std::time_t begun = script_.now();
        FileInfo info;
        const bool is_new = GetInfo(a_.package, a_.name, &info) == 0;
        const Result found = MakeCall(library_, kind_->on_library, a_, Listed());
        const std::time_t ended = script_.now();
        if (script_.disk_was_full && script_.disk_was_full()) ForgetChanging();
        const auto opened = opened_.find(a_.file);
        const OpenedFile* file = opened == opened_.end() ? nullptr : &opened->second;
        if (!StandsSomewhere(found) || !kind_->documented(found, a_, file)) return "an undocumented result";
        if (!full_ && !IsOfSoundFile(found, file)) return "what a file holds";
        Follow(found, file, is_new);
        const std::string wrong = Difference(found, begun, ended);
        Note(found.numbers[0]);
        return wrong;
    }

    /// Takes the next call from the input.
    void Take() {
        kind_ = &KindOf(input_.Byte() % kCallEnd);
        const std::uint8_t handle = input_.Byte(), name = input_.Byte();
        a_.how = input_.Byte();
        a_.number = input_.Number(3);
        if (kind_->first == kReopen && handle >= 64) kind_ = &KindOf(kTick);
        if (kind_->first == kFillDisk && script_.fill_disk) script_.fill_disk(a_.how);
        if (kind_->first == kReopen) CloseAll();
        if (kind_->first == kTick && script_.tick) script_.tick(a_.how);
        if (packages_.empty() && (kind_->first != kReopen || a_.how < 128)) a_.how = script_.read_only_base;
        if (packages_.empty()) kind_ = &KindOf(kOpenPackage);
        a_.call = kind_->first;
        a_.package = handle < 250 && !packages_.empty() ? packages_[handle % packages_.size()] : handle - 251;
        a_.file = handle < 250 && !files_.empty() ? files_[handle % files_.size()] : a_.number % 0x50000;
        const std::size_t lengths[] = {0, 8, 512, 513};
        a_.name = (name < 192 ? "f" : "F") + std::to_string(name % 64 % script_.files);
        if (name % 64 == 62) a_.name = static_cast<char>(a_.number % (wide_ ? 127 : 255) + 1);
        if (name % 64 == 63) a_.name = std::string(lengths[name / 64], a_.how % 2 ? 'N' : 'n');
        if (a_.call == kClosePackage) std::erase(packages_, a_.package);
        if (a_.call == kCloseFile && a_.how % 8 < 7) std::erase(files_, a_.file);
    }

    void CloseAll() {
        vlt_package_close_all();
        if (reference_) reference_->CloseAll();
        packages_.clear();
        opened_.clear();
        read_only_file_ = false;
    }

    std::int32_t Listed() const { return packages_.empty() ? 0 : packages_[0]; }

    /// The disk was full: any call may have failed half way, and what is known are the files that it was not to
    /// change.
    void ForgetChanging() {
        full_ = true;
        if (reference_) sound_files_ = SoundFiles(PackageImage(reference_->host, script_.base));
        for (const auto& [handle, file] : opened_)
            if (file.mode != VLT_MODE_READ) sound_files_.erase(file.name);
        reference_.reset();
    }

    static bool StandsSomewhere(const Result& found) {
        const Standing& file = found.file;
        if (found.infos.size() >= kEndless || file.at_end < -1 || file.at_end > 1) return false;
        return file.open == 1 ? file.at_start == (file.position <= 0) : file.position == 0 && file.at_start == -1;
    }

    /// Whether a result tells of a sound file what it holds.
    bool IsOfSoundFile(const Result& found, const OpenedFile* opened) const {
        if (a_.call == kInfo && found.numbers[0] == 1) {
            const auto file = sound_files_.find(FoldedName(a_.name));
            return file == sound_files_.end() ||
                   found.infos[0].size == static_cast<std::int64_t>(file->second.size());
        }
        const auto file = opened && a_.call == kRead ? sound_files_.find(opened->name) : sound_files_.end();
        if (file == sound_files_.end()) return true;
        const auto size = static_cast<std::ptrdiff_t>(file->second.size());
        const auto count = static_cast<std::ptrdiff_t>(found.numbers[0]);
        const auto from = static_cast<std::ptrdiff_t>(found.file.position - count);
        const std::ptrdiff_t left = std::max<std::ptrdiff_t>(size - from, 0);
        return from >= 0 && count == std::min<std::ptrdiff_t>(std::max(a_.Length(), 0), left) &&
               std::equal(found.bytes.begin(), found.bytes.begin() + count,
                          file->second.begin() + (count ? from : 0));
    }

    /// Keeps up with what the call makes of the sound files, a new one among them.
    void Follow(const Result& found, const OpenedFile* opened, bool is_new) {
        const bool done = found.numbers[0] != 0;
        const bool half_done = full_ || read_only_file_;  // a failed deletion may be, as long as the package is open
        const std::u16string name = FoldedName(a_.name);
        if (a_.MayChangeNamed() && full_) sound_files_.erase(name);
        if (a_.call == kDelete && (done || half_done)) sound_files_.erase(name);
        if (full_) return;
        if (a_.call == kOpenFile && done && is_new) sound_files_[name].clear();
        if (a_.call == kOpenFile && a_.FileHow().truncate) Truncate(name, found);
        const auto file = opened && a_.call == kWrite && done ? sound_files_.find(opened->name) : sound_files_.end();
        if (file != sound_files_.end() && a_.Length() > 0) {
            const Bytes data = a_.Data();
            const auto at = static_cast<std::size_t>(found.file.position) - data.size();
            file->second.resize(std::max(file->second.size(), at + data.size()));
            std::copy(data.begin(), data.end(), file->second.begin() + static_cast<std::ptrdiff_t>(at));
        }
        if (!sound_) ForgetTwins(found);
    }

    void Truncate(const std::u16string& name, const Result& found) {
        const auto file = sound_files_.find(name);
        if (file == sound_files_.end()) return;
        if (found.numbers[0] != 0) file->second.clear();
        if (found.numbers[1] == VLT_FILE_NO_SLOT) sound_files_.erase(file);
    }

    /// When a damaged directory grows, an entry can come to light that bears the name of a new file.
    void ForgetTwins(const Result& found) {
        std::map<std::u16string, int> bearers;
        for (const FileInfo& info : found.infos)
            if (++bearers[FoldedName(info.name)] > 1) sound_files_.erase(FoldedName(info.name));
    }

    /// Keeps what was opened, and forgets what was closed.
    void Note(std::int64_t result) {
        const auto file = static_cast<std::uint32_t>(result);
        if (a_.call == kOpenFile && result != 0) files_.push_back(file);
        if (a_.call == kOpenFile && result != 0) opened_[file] = {FoldedName(a_.name), a_.Mode()};
        if (a_.OpensPackage() && result != 0) read_only_file_ |= a_.Opening().read_only_file;
        if (a_.OpensPackage() && result != 0) packages_.push_back(static_cast<std::int32_t>(result));
        if (a_.call == kCloseFile) opened_.erase(a_.file);
        if (a_.call == kClosePackage)
            std::erase_if(opened_, [&](const auto& one) { return static_cast<int>(one.first >> 16) == a_.package; });
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
        if (!(MakeCall(*reference_, kind_->on_reference, a_, Listed()) == found)) return "the result";
        const std::int64_t at = FirstDifference(script_.path, reference_->host);
        return at < 0 ? "" : "the host file from " + std::to_string(at) + " on";
    }

    /// What the host file holds of a stored file, past the library.
    static Bytes BytesOf(const PackageImage& image, const std::u16string& name) {
        for (const ImageEntry& entry : image.entries)
            if (entry.kind == VLT_ENTRY_FILE && FoldedName(entry.name) == name)
                return entry.first_block != 0 ? image.FileBytes(entry) : Bytes();
        return {0};
    }

    /// With nothing open: what is not in the host file, or does not read back, as it was.
    std::string FilesFault() const {
        const PackageImage image = Image();
        const std::string faults = sound_ ? Faults(image, {full_, full_, full_, full_}) : "";
        const PackageOpening how{1, true, false, static_cast<std::int64_t>(script_.base), "r", "w"};
        std::int32_t code = 0;
        const std::int32_t package = library_.Open(how, &code);
        if (sound_ && package == 0 && code != VLT_OPEN_CREDENTIALS) return "a sound package that does not open";
        for (const auto& [name, bytes] : sound_files_) {
            if (BytesOf(image, name) != bytes) return "a file that has changed";
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
    Library library_;
    bool wide_, sound_;                            // at first
    bool full_ = false;                            // the disk, at some time
    bool read_only_file_ = false;                  // some opening of this session
    std::unique_ptr<ReferenceStore> reference_;    // null when something else may be right
    std::map<std::u16string, Bytes> sound_files_;  // those that were sound at first, and new ones, by folded name
    std::vector<std::int32_t> packages_;
    std::vector<std::uint32_t> files_;
    std::map<std::uint32_t, OpenedFile> opened_;  // those of them that are open

    // The call that is run.
    const CallKind* kind_ = nullptr;
    Arguments a_{script_};
};

}  // namespace

std::string StoreScript::Run(Input input, int calls) const {
    return Runner(*this, input).Run(calls);
}

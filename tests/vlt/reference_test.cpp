// SPDX-License-Identifier: MIT
// Random calls on the library and on the plain reference: the same results, and after each call the same bytes in the
// host file. VLT_SEED in the environment tries another sequence.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <random>

#include "tests/support/reference_store.h"
#include "tests/support/store_fixture.h"

namespace {

struct Scenario {
    const char* name;
    Names names;
    std::int32_t size_mb;
    std::size_t base;             // bytes before the package in its host file
    std::int32_t read_only_base;  // the first handle is read-only; others that share its package may write
    int files;                    // different names
    std::int32_t largest;         // bytes of the largest write
    int calls;
    std::size_t header_blocks;  // at least, in the end
};

/// Where a host file leaves the bytes that it should have; beyond their end when it does not.
std::size_t FirstDifference(const std::string& path, const Bytes& wanted) {
    static std::uint8_t piece[1 << 16];
    std::FILE* file = std::fopen(path.c_str(), "rb");
    std::size_t at = 0, count = 0;
    while ((count = std::fread(piece, 1, sizeof piece, file)) > 0) {
        const std::size_t compared = std::min(count, wanted.size() - at);
        if (compared < count || std::memcmp(piece, wanted.data() + at, count) != 0) {
            at += static_cast<std::size_t>(std::mismatch(piece, piece + compared, wanted.data() + at).first - piece);
            break;
        }
        at += count;
    }
    std::fclose(file);
    return at == wanted.size() && count == 0 ? at + 1 : at;
}

void PrintTo(const Scenario& run, std::ostream* out) {
    *out << run.name;
}

class AgainstTheReference : public StoreTest, public ::testing::WithParamInterface<Scenario> {
protected:
    void SetUp() override {
        const Scenario& run = GetParam();
        const char* seed = std::getenv("VLT_SEED");
        own_seed_ = seed != nullptr;
        random_.seed(seed ? static_cast<unsigned>(std::atoi(seed)) : 1);
        ASSERT_EQ(1, vlt_package_create(path.c_str(), run.names == Names::wide, run.size_mb, nullptr, nullptr));
        Bytes host = ReadHostFile(path);
        base = run.base;
        const Bytes before = Pattern("before", base);
        host.insert(host.begin(), before.begin(), before.end());
        WriteHostFile(path, host);
        reference_ = std::make_unique<ReferenceStore>(host, base);
        OpenPackage(run.read_only_base);
    }

    int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
    bool OneIn(int n) { return Below(n) == 0; }
    template <typename T>
    T OneOf(const std::vector<T>& all) {
        return all[static_cast<std::size_t>(Below(static_cast<int>(all.size())))];
    }

    std::string RandomName() {
        std::string name = "File" + std::to_string(Below(GetParam().files)) + ".txt";
        if (OneIn(3))
            for (char& c : name) c = static_cast<char>(std::toupper(c));
        return name;
    }
    std::int32_t RandomLength() {
        const int blocks = GetParam().largest / 4096;
        switch (Below(4)) {
            case 0:
                return Below(100);
            case 1:
                return 4096 * Below(blocks) + Below(3) - 1;
            default:
                return Below(GetParam().largest);
        }
    }
    std::int32_t RandomPackage() { return OneIn(40) ? Below(6) - 1 : OneOf(packages_); }
    std::uint32_t RandomFile() {
        return files_.empty() || OneIn(40) ? static_cast<std::uint32_t>(Below(0x50000)) : OneOf(files_);
    }

    /// Runs a call on both sides. The clock may strike within the library's call, and then either second is right.
    template <typename Call>
    void Compare(const char* what, Call call) {
        SCOPED_TRACE(what);
        const double before = StampNow();
        const auto found = call(static_cast<ReferenceStore*>(nullptr));
        const double after = StampNow();
        std::unique_ptr<ReferenceStore> again;
        if (before != after) again = std::make_unique<ReferenceStore>(*reference_);
        reference_->now = before;
        auto wanted = call(reference_.get());
        if (again && !(found == wanted && Difference().empty())) {
            reference_ = std::move(again);
            reference_->now = after;
            wanted = call(reference_.get());
        }
        ASSERT_TRUE(found == wanted) << "result";
        ASSERT_EQ("", Difference());
    }

    std::string Difference() {
        const std::size_t at = FirstDifference(path, reference_->host);
        if (at < reference_->host.size() + 1) return "host byte " + std::to_string(at);
        for (std::int32_t found = 0, wanted = 0; !packages_.empty();) {
            FileInfo info, wanted_info;
            found = Enumerate(packages_[0], found, &info);
            wanted = reference_->Enumerate(packages_[0], wanted, &wanted_info);
            if (found != wanted || !(info == wanted_info)) return "entry " + std::to_string(wanted);
            if (found == 0) break;
        }
        return "";
    }

    void OpenPackage(std::int32_t read_only) {
        std::int32_t opened = 0;
        Compare("open a package", [&](ReferenceStore* reference) {
            return opened = reference ? reference->Open(read_only)
                                      : Open({.read_only = read_only, .offset = static_cast<std::int64_t>(base)});
        });
        packages_.push_back(opened);
    }

    void ClosePackage() {
        const std::int32_t handle = RandomPackage();
        std::erase(packages_, handle);
        if (!OneIn(4))
            std::erase_if(files_,
                          [&](std::uint32_t file) { return file >> 16 == static_cast<std::uint32_t>(handle); });
        Compare("close a package", [&](ReferenceStore* reference) {
            return reference ? reference->Close(handle) : vlt_package_close(handle);
        });
        if (packages_.empty()) OpenPackage(GetParam().read_only_base);
    }

    void OpenAFile() {
        const std::int32_t handle = RandomPackage();
        const std::string name = RandomName();
        const auto mode = static_cast<std::uint32_t>(OneIn(30) ? 3 : Below(3));
        const OpenHow how{.exclusive = OneIn(20), .truncate = OneIn(3)};
        std::uint32_t opened = 0;
        Compare("open a file", [&](ReferenceStore* reference) {
            std::uint32_t error = 99;
            opened = reference ? reference->OpenFile(handle, name, mode, how, &error)
                               : OpenFile(handle, name, mode, how, &error);
            return std::pair(opened, error);
        });
        if (opened != 0) files_.push_back(opened);
    }

    void CloseAFile() {
        const std::uint32_t file = RandomFile();
        if (!OneIn(10)) std::erase(files_, file);
        Compare("close a file", [&](ReferenceStore* reference) {
            return reference ? reference->CloseFile(file) : vlt_file_close(file);
        });
    }

    void WriteToAFile() {
        const std::uint32_t file = RandomFile();
        const std::int32_t length = RandomLength();
        const Bytes data = Pattern(std::to_string(random_()), static_cast<std::size_t>(std::max(length, 0)));
        Compare("write", [&](ReferenceStore* reference) {
            return reference ? reference->Write(file, data.data(), length)
                             : vlt_file_write(file, data.data(), length);
        });
    }

    void ReadFromAFile() {
        const std::uint32_t file = RandomFile();
        const std::int32_t length = RandomLength();
        Compare("read", [&](ReferenceStore* reference) {
            Bytes data(static_cast<std::size_t>(std::max(length, 1)));
            const std::int32_t count =
                reference ? reference->Read(file, data.data(), length) : vlt_file_read(file, data.data(), length);
            return std::pair(count, data);
        });
    }

    void MoveAndTell() {
        const std::uint32_t file = RandomFile();
        const std::int64_t position = OneIn(4) ? -1 : OneIn(4) ? 0 : RandomLength();
        Compare("positions", [&](ReferenceStore* reference) {
            std::int64_t told = 77;
            return reference ? std::vector<std::int64_t>{reference->SetPos(file, position), reference->IsEof(file),
                                                         reference->IsBof(file), reference->GetPos(file, &told), told}
                             : std::vector<std::int64_t>{vlt_file_set_pos(file, position), vlt_file_is_eof(file),
                                                         vlt_file_is_bof(file), vlt_file_get_pos(file, &told), told};
        });
    }

    void AskByName() {
        const std::int32_t handle = RandomPackage();
        const std::string name = RandomName();
        Compare("information", [&](ReferenceStore* reference) {
            FileInfo info;
            const std::int32_t found =
                reference ? reference->GetInfo(handle, name, &info) : GetInfo(handle, name, &info);
            return std::pair(found, info);
        });
    }

    void StampByName() {
        const std::int32_t handle = RandomPackage();
        const std::string name = RandomName();
        const double stamp = 20050321.140709 - Below(10000);
        Compare("set the time", [&](ReferenceStore* reference) {
            return reference ? reference->SetTime(handle, name, stamp, -1.5, 0.0)
                             : SetTime(handle, name, stamp, -1.5, 0.0);
        });
    }

    void DeleteByName() {
        const std::int32_t handle = RandomPackage();
        const std::string name = RandomName();
        Compare("delete", [&](ReferenceStore* reference) {
            return reference ? reference->Delete(handle, name) : Delete(handle, name);
        });
    }

    void CallAtRandom() {
        const int dice = Below(100);
        if (dice < 1) return packages_.size() < 5 ? OpenPackage(Below(2)) : ClosePackage();
        if (dice < 2) return ClosePackage();
        if (dice < 24) return OpenAFile();
        if (dice < 40) return CloseAFile();
        if (dice < 62) return WriteToAFile();
        if (dice < 74) return ReadFromAFile();
        if (dice < 86) return MoveAndTell();
        if (dice < 92) return DeleteByName();
        return dice < 96 ? AskByName() : StampByName();
    }

    std::mt19937 random_;
    bool own_seed_ = false;
    std::unique_ptr<ReferenceStore> reference_;
    std::vector<std::int32_t> packages_;
    std::vector<std::uint32_t> files_;
};

TEST_P(AgainstTheReference, EveryCallLeavesTheSameBytes) {
    for (int call = 0; call < GetParam().calls; ++call) {
        CallAtRandom();
        ASSERT_FALSE(HasFatalFailure()) << "call " << call;
    }
    if (!own_seed_) {
        EXPECT_GE(Image().header_chain.size(), GetParam().header_blocks);
    }
    EXPECT_EQ("", Faults(Image()));
}

INSTANTIATE_TEST_SUITE_P(
    , AgainstTheReference,
    ::testing::Values(Scenario{"narrow", Names::narrow, 0, 0, 0, 12, 30000, 6000, 1},
                      Scenario{"wide", Names::wide, 0, 0, 0, 12, 30000, 6000, 1},
                      Scenario{"many_files", Names::narrow, 0, 0, 0, 60, 9000, 6000, 1},
                      Scenario{"many_wide_files", Names::wide, 0, 0, 0, 40, 9000, 4000, 1},
                      Scenario{"behind_other_data", Names::narrow, 0, 5555, 0, 12, 30000, 3000, 1},
                      Scenario{"read_only_base", Names::narrow, 0, 0, 1, 12, 30000, 4000, 1},
                      Scenario{"over_the_full_map", Names::narrow, 3, 0, 0, 12, 900000, 400, 2},
                      Scenario{"over_the_second_map", Names::wide, 7, 0, 0, 12, 2500000, 200, 3}),
    ::testing::PrintToStringParamName());

}  // namespace

// SPDX-License-Identifier: MIT
// Opening, sharing and closing packages.
#include <cstdio>
#include <filesystem>

#include "tests/support/store_fixture.h"

namespace {

class PackageOpening : public StoreTest {
protected:
    void CreateClosed(const char* read_credential = nullptr, const char* write_credential = nullptr) {
        ASSERT_EQ(1, vlt_package_create(path.c_str(), 0, 0, read_credential, write_credential));
    }
    bool MayWrite(std::int32_t handle) { return OpenError(handle, "probe", VLT_MODE_WRITE) == VLT_FILE_OK; }
};

struct Credentials {
    const char *stored_read, *stored_write, *given_read, *given_write;
    char outcome;  // 'w' read/write, 'r' read-only, '-' refused
};

TEST_F(PackageOpening, TheCredentialsDecideTheAccess) {
    const Credentials table[] = {
        {nullptr, nullptr, nullptr, nullptr, 'w'},
        {"r", "", nullptr, "", 'w'},
        {"r", "w", "r", "w", 'w'},
        {"r", "w", nullptr, "w", 'w'},
        {"r", "w", "r", nullptr, 'r'},
        {"r", "w", "r", "wrong", 'r'},
        {"", "w", nullptr, nullptr, 'r'},
        {"r", "w", "w", "r", '-'},
        {"r", "w", nullptr, nullptr, '-'},
        {"r", "word", "R", "wor", '-'},
        {"r", "word", "r2", "words", '-'},
        {"r", "0123456789abcdef", nullptr, "0123456789abcdef", 'w'},
        {"r", "0123456789abcdef", nullptr, "0123456789abcdefg", '-'},
    };
    for (const Credentials& row : table) {
        CreateClosed(row.stored_read, row.stored_write);
        const Opening how{.read_credential = row.given_read, .write_credential = row.given_write};
        if (row.outcome == '-') {
            EXPECT_EQ(VLT_OPEN_CREDENTIALS, OpenErrorOf(how));
            continue;
        }
        const std::int32_t first = Open(how), shared = Open(how);
        EXPECT_EQ(row.outcome == 'w', MayWrite(first));
        EXPECT_EQ(row.outcome == 'w', MayWrite(shared));
        const Opening wrong{.read_credential = "?", .write_credential = "?"};
        EXPECT_EQ(VLT_OPEN_CREDENTIALS, OpenErrorOf(wrong)) << "a shared opening checks them too";
        vlt_package_close_all();
    }
}

TEST_F(PackageOpening, FailsWithTheCodeOfItsReason) {
    CreateClosed();
    EXPECT_EQ(VLT_OPEN_ARGUMENT, OpenErrorOf({.read_only = 2}));
    EXPECT_EQ(VLT_OPEN_ARGUMENT, OpenErrorOf({.offset = -1}));
    EXPECT_EQ(VLT_OPEN_NOT_A_PACKAGE, OpenErrorOf({.offset = 1}));
    EXPECT_EQ(VLT_OPEN_NOT_A_PACKAGE, OpenErrorOf({.offset = std::int64_t{1} << 40}));
    std::remove(path.c_str());
    EXPECT_EQ(VLT_OPEN_ACCESS, OpenErrorOf({}));
    EXPECT_EQ(VLT_OPEN_NO_FILE, OpenErrorOf({.read_only = 1}));
    EXPECT_EQ(VLT_OPEN_NO_FILE, OpenErrorOf({.read_only_file = true}));
    std::int32_t error = 77;
    EXPECT_EQ(0, vlt_package_open("", 0, 0, nullptr, nullptr, nullptr, &error));
    EXPECT_EQ(VLT_OPEN_ARGUMENT, error);
    EXPECT_EQ(0, vlt_package_open(nullptr, 0, 0, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(0, vlt_package_open(".", 1, 0, nullptr, nullptr, nullptr, &error));
    EXPECT_EQ(VLT_OPEN_NO_FILE, error) << "a folder";
}

TEST_F(PackageOpening, LeavesTheErrorWordAloneWhenItSucceeds) {
    ASSERT_EQ(1, vlt_package_create(path.c_str(), 1, 0, nullptr, nullptr));
    for (int opening = 0; opening < 2; ++opening) {  // a first and a shared one
        std::int32_t wide = 5, error = 77;
        const std::int32_t handle = vlt_package_open(path.c_str(), 0, 0, nullptr, nullptr, &wide, &error);
        EXPECT_EQ(1, vlt_package_is_unicode_files(handle));
        EXPECT_EQ(1, wide);
        EXPECT_EQ(77, error);
    }
}

TEST_F(PackageOpening, TakesAHostFileThatMayNotBeWritten) {
    CreateClosed();
    std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    if (std::FILE* file = std::fopen(path.c_str(), "r+b")) {  // a superuser may write it all the same
        std::fclose(file);
    } else {
        EXPECT_EQ(VLT_OPEN_ACCESS, OpenErrorOf({}));
        EXPECT_GT(Open({.read_only = 1}), 0);
        EXPECT_EQ(VLT_OPEN_ACCESS, OpenErrorOf({}));
    }
    vlt_package_close_all();
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    const std::int32_t handle = Open({.read_only_file = true});
    EXPECT_FALSE(MayWrite(handle));
    EXPECT_EQ(VLT_OPEN_ACCESS, OpenErrorOf({})) << "the host file is open for reading only";
    EXPECT_GT(Open({.read_only = 1}), 0);
}

TEST_F(PackageOpening, AReadOnlyFirstHandleLeavesLaterOnesFreeToWrite) {
    CreateClosed();
    EXPECT_FALSE(MayWrite(Open({.read_only = 1})));
    EXPECT_TRUE(MayWrite(Open()));
}

TEST_F(PackageOpening, OnlyAFirstOpeningCanBeExclusive) {
    CreateClosed();
    const std::int32_t first = Open({.exclusive = true});
    EXPECT_EQ(VLT_OPEN_ACCESS, OpenErrorOf({.read_only = 1}));
    EXPECT_EQ(1, vlt_package_close(first));
    Open();
    EXPECT_GT(Open({.exclusive = true}), 0);
    EXPECT_GT(Open(), 0);
}

TEST_F(PackageOpening, AnExclusivePackageLeavesOthersOpenToAll) {
    Create();
    const std::string other = path + ".other";
    ASSERT_EQ(1, vlt_package_create(other.c_str(), 0, 0, nullptr, nullptr));
    EXPECT_GT(vlt_package_open(other.c_str(), 0, 1, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_GT(Open(), 0);
    EXPECT_EQ(0, vlt_package_open(other.c_str(), 0, 0, nullptr, nullptr, nullptr, nullptr));
    vlt_package_close_all();
    std::remove(other.c_str());
}

TEST_F(PackageOpening, ThePathInAnotherLetterCaseShares) {
    CreateClosed();
    package = Open();
    const std::string real_path = path;
    for (char& c : path) c = static_cast<char>(std::toupper(c));
    const std::int32_t shared = Open();
    path = real_path;
    Write("a", 10);
    EXPECT_EQ(VLT_FILE_OK, OpenError(shared, "a", VLT_MODE_READ));
    for (const char* start : {"./", ".\\"}) {  // another way to name the host file does not
        const std::string other = start + path;
        const std::int32_t apart = vlt_package_open(other.c_str(), 0, 0, nullptr, nullptr, nullptr, nullptr);
        const std::uint32_t file = OpenFile(package, "a", VLT_MODE_READ, {.exclusive = true});
        EXPECT_EQ(VLT_FILE_OK, OpenError(apart, "a", VLT_MODE_READ));
        vlt_file_close(file);
    }
}

TEST_F(PackageOpening, AShareKeepsTheOffsetOfTheFirst) {
    CreateClosed();
    Bytes host = ReadHostFile(path);
    host.insert(host.begin(), 777, 'x');
    WriteHostFile(path, host);
    base = 777;
    package = Open({.offset = 777});
    Write("a", 5000);
    package = Open({.offset = 0});
    EXPECT_TRUE(Intact("a", 5000));
    Reopen();
    EXPECT_TRUE(Intact("a", 5000));
    host = ReadHostFile(path);
    EXPECT_EQ(Bytes(777, 'x'), Bytes(host.begin(), host.begin() + 777));
}

TEST_F(PackageOpening, ClosingTheBaseHandsThePackageToTheFirstShare) {
    CreateClosed();
    const std::int32_t first = Open(), second = Open(), third = Open();
    const std::uint32_t lost = OpenFile(first, "a", VLT_MODE_WRITE);
    const std::uint32_t kept = OpenFile(third, "b", VLT_MODE_WRITE);
    EXPECT_EQ(1, vlt_package_close(first));
    EXPECT_EQ(-1, vlt_file_is_eof(lost));
    EXPECT_TRUE(WriteTo(kept, Pattern("b", 9000)));
    EXPECT_EQ(VLT_FILE_OK, OpenError(second, "a", VLT_MODE_WRITE)) << "closed with its handle";
    EXPECT_EQ(first, Open()) << "the lowest free slot";
    EXPECT_EQ(1, vlt_package_close(second));
    EXPECT_EQ(VLT_FILE_ACCESS, OpenError(first, "b", VLT_MODE_WRITE)) << "open through the third";
    EXPECT_EQ(1, vlt_package_close(third));
    package = first;
    EXPECT_TRUE(Intact("b", 9000));
}

TEST_F(PackageOpening, HandlesOutliveTheGrowthOfTheTable) {
    CreateClosed();
    std::vector<std::int32_t> handles;
    for (std::int32_t i = 1; i <= 65; ++i) handles.push_back(Open());
    for (std::int32_t i = 1; i <= 65; ++i) ASSERT_EQ(i, handles[static_cast<std::size_t>(i) - 1]);
    package = 1;
    Write("a", 10);
    EXPECT_EQ(VLT_FILE_OK, OpenError(65, "a", VLT_MODE_READ));
    for (std::int32_t handle : {0, -1, 66, 128, 129, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(-1, vlt_package_is_unicode_files(handle)) << handle;
        EXPECT_EQ(0, vlt_package_close(handle)) << handle;
    }
    EXPECT_EQ(1, vlt_package_close(64));
    EXPECT_EQ(0, vlt_package_close(64));
    EXPECT_EQ(64, Open());
    vlt_package_close_all();
    vlt_package_close_all();
    EXPECT_EQ(-1, vlt_package_is_unicode_files(1));
    EXPECT_EQ(1, Open());
}

TEST_F(PackageOpening, AcceptsLongPathsAndWhatFollowsTheMagic) {
    CreateClosed();
    SetByte(3, 'x');  // the fourth byte of a narrow magic and the format byte mean nothing
    SetByte(4, 9);
    std::string long_path = path;
    while (long_path.size() < 400) long_path = "./" + long_path;
    package = vlt_package_open(long_path.c_str(), 0, 0, nullptr, nullptr, nullptr, nullptr);
    ASSERT_GT(package, 0);
    EXPECT_EQ(0, vlt_package_is_unicode_files(package));
    Write("a", 100);
}

struct NoPackage {
    const char* name;
    std::size_t length;  // of the host file
    std::size_t offset;  // of a patch
    Bytes bytes;
};
class Refused : public StoreTest, public ::testing::WithParamInterface<NoPackage> {};

TEST_P(Refused, IsNotAPackage) {
    Create(4);  // header blocks 0 and 2, the directory block 1
    for (int i = 0; i < 9; ++i) Write("file" + std::to_string(i), 10);  // and block 3 or later
    vlt_package_close_all();
    Damaged();
    SetHostBytes(GetParam().offset, GetParam().bytes);
    Bytes host = ReadHostFile(path);
    host.resize(std::min(host.size(), GetParam().length));
    WriteHostFile(path, host);
    EXPECT_EQ(VLT_OPEN_NOT_A_PACKAGE, OpenErrorOf({}));
    EXPECT_EQ(VLT_OPEN_NOT_A_PACKAGE, OpenErrorOf({.read_only_file = true}));
    EXPECT_EQ(host, ReadHostFile(path));
}

constexpr std::size_t kAll = SIZE_MAX;
INSTANTIATE_TEST_SUITE_P(, Refused,
                         ::testing::Values(NoPackage{"empty", 0, 0, {}}, NoPackage{"one_byte_short", 8191, 0, {}},
                                           NoPackage{"other_magic", kAll, 0, {'v', 'l', 'T'}},
                                           NoPackage{"half_a_wide_magic", kAll, 0, {'w', 'v', 'l', 'x'}},
                                           NoPackage{"header_link_beyond_the_end", kAll, 101, {1, 4, 0, 0x80}},
                                           NoPackage{"header_link_to_itself", kAll, 101, {1, 0, 0, 0x80}},
                                           NoPackage{"header_link_back", kAll, 109, {1, 0, 0, 0x80}},
                                           NoPackage{"header_too_long", kAll, 109, {9, 0, 0, 0x80}},
                                           NoPackage{"header_runs_into_the_directory", kAll, 101, {2, 0, 0, 0x80}},
                                           NoPackage{
                                               "directory_link_beyond_the_end", kAll, 105, {255, 255, 255, 0x8F}},
                                           NoPackage{"directory_link_to_itself", kAll, 105, {2, 0, 0, 0x80}},
                                           NoPackage{"directory_runs_into_the_header", kAll, 105, {3, 0, 0, 0x80}},
                                           NoPackage{"cut_before_the_second_header_block", 8192, 0, {}}),
                         [](const auto& test) { return test.param.name; });

}  // namespace

// SPDX-License-Identifier: MIT
// Opening, sharing and closing packages.
#include <cstdio>
#include <filesystem>

#include "tests/support/store_fixture.h"

namespace {

class PackageOpening : public StoreTest {};

TEST_F(PackageOpening, TheCredentialsDecideTheAccess) {
    constexpr std::uint32_t writes = VLT_FILE_OK, reads = VLT_FILE_ACCESS, refused = VLT_FILE_REQUEST;
    const struct {
        const char *stored_read, *stored_write, *given_read, *given_write;
        std::uint32_t writing;  // the code of opening a file for writing; through no package it is a wrong request
    } table[] = {
        {nullptr, nullptr, nullptr, nullptr, writes},
        {"r", "", nullptr, "", writes},
        {"r", "w", "r", "w", writes},
        {"r", "w", nullptr, "w", writes},
        {"r", "w", "r", nullptr, reads},
        {"r", "w", "r", "wrong", reads},
        {"", "w", nullptr, nullptr, reads},
        {"r", "w", "w", "r", refused},
        {"r", "w", nullptr, nullptr, refused},
        {"r", "word", "R", "wor", refused},
        {"r", "word", "r2", "words", refused},
        {"r", "0123456789abcdef", nullptr, "0123456789abcdef", writes},
        {"r", "0123456789abcdef", nullptr, "0123456789abcdefg", refused},
    };
    for (const auto& [stored_read, stored_write, read, write, writing] : table) {
        ASSERT_EQ(vlt_package_create(path.c_str(), 0, 0, stored_read, stored_write), 1);
        for (int opening = 0; opening < 2; ++opening) {  // a first and a shared one
            std::int32_t wide = 5, error = 77;
            const std::int32_t handle = vlt_package_open(path.c_str(), 0, 0, read, write, &wide, &error);
            EXPECT_EQ(OpenError(handle, "probe", VLT_MODE_WRITE), writing);
            EXPECT_EQ(wide, 0);
            EXPECT_EQ(error, writing == refused ? VLT_OPEN_CREDENTIALS : 77) << "untouched by success";
        }
        EXPECT_EQ(OpenErrorOf({.read_credential = "?", .write_credential = "?"}), VLT_OPEN_CREDENTIALS);
        vlt_package_close_all();
    }
}

TEST_F(PackageOpening, FailsWithTheCodeOfItsReason) {
    Create();
    vlt_package_close_all();
    const std::pair<int, Opening> failures[] = {{VLT_OPEN_ARGUMENT, {.read_only = 2}},
                                                {VLT_OPEN_ARGUMENT, {.offset = -1}},
                                                {VLT_OPEN_ARGUMENT, {.at = ""}},
                                                {VLT_OPEN_NOT_A_PACKAGE, {.offset = 1}},
                                                {VLT_OPEN_NOT_A_PACKAGE, {.offset = std::int64_t{1} << 40}},
                                                {VLT_OPEN_ACCESS, {.at = "missing"}},
                                                {VLT_OPEN_NO_FILE, {.read_only = 1, .at = "missing"}},
                                                {VLT_OPEN_NO_FILE, {.read_only_file = true, .at = "missing"}},
                                                {VLT_OPEN_NO_FILE, {.read_only = 1, .at = "."}}};
    for (const auto& [code, how] : failures)
        EXPECT_EQ(OpenErrorOf(how), code) << (how.at ? how.at : path) << how.offset;
    EXPECT_EQ(vlt_package_open(nullptr, 0, 0, nullptr, nullptr, nullptr, nullptr), 0);
    // A host file that may not be written.
    std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    if (std::FILE* file = std::fopen(path.c_str(), "r+b")) {  // a superuser may write it all the same
        std::fclose(file);
    } else {
        EXPECT_EQ(OpenErrorOf({}), VLT_OPEN_ACCESS);
        EXPECT_GT(Open({.read_only = 1}), 0);
        EXPECT_EQ(OpenErrorOf({}), VLT_OPEN_ACCESS);
    }
    vlt_package_close_all();
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    EXPECT_EQ(OpenError(Open({.read_only_file = true}), "a", VLT_MODE_WRITE), VLT_FILE_ACCESS);
    EXPECT_EQ(OpenErrorOf({}), VLT_OPEN_ACCESS) << "the host file is open for reading only";
    EXPECT_GT(Open({.read_only = 1}), 0);
}

TEST_F(PackageOpening, OnlyThePathInAnyLetterCaseShares) {
    Create();
    vlt_package_close_all();
    Bytes host = ReadHostFile(path);
    host.insert(host.begin(), base = 777, 'x');
    WriteHostFile(path, host);
    Reopen();
    std::string capitals = path;
    for (char& c : capitals) c = static_cast<char>(std::toupper(c));
    const std::int32_t first = package;
    package = Open({.exclusive = true, .at = capitals.c_str()});  // as little as the offset does this count
    Write("a", 5000);
    EXPECT_NE(0u, OpenFor("a", VLT_MODE_READ, {.exclusive = true}));
    EXPECT_EQ(OpenError(first, "A", VLT_MODE_READ), VLT_FILE_ACCESS);
    std::string long_start = "./";
    while (long_start.size() < 400) long_start += "./";
    for (const std::string& start : {std::string("./"), std::string(".\\"), long_start}) {
        const std::string other = start + path;  // another way to name the host file
        const Opening apart{.exclusive = true, .offset = 777, .at = other.c_str()};
        const std::int32_t handle = Open(apart);
        EXPECT_EQ(OpenError(handle, "a", VLT_MODE_READ), VLT_FILE_OK);
        EXPECT_EQ(OpenErrorOf({.read_only = 1, .at = other.c_str()}), VLT_OPEN_ACCESS);
        EXPECT_GT(Open(), 0);
        EXPECT_EQ(vlt_package_close(handle), 1);
        EXPECT_GT(Open(apart), 0);
    }
    Reopen();
    EXPECT_TRUE(Intact("a", 5000));
}

TEST_F(PackageOpening, HandlesOutliveTheGrowthOfTheTable) {
    Create();
    for (std::int32_t handle = 2; handle <= 65; ++handle) ASSERT_EQ(Open(), handle);
    Write("a", 10);
    EXPECT_EQ(OpenError(65, "a", VLT_MODE_READ), VLT_FILE_OK);
    EXPECT_EQ(vlt_package_close(64), 1);
    EXPECT_EQ(Open(), 64);
    for (int i = 0; i < 2; ++i) vlt_package_close_all();
    EXPECT_EQ(vlt_package_is_unicode_files(1), -1);
    EXPECT_EQ(Open(), 1);
}

TEST_F(PackageOpening, TheShortFormHandsItsArgumentsOn) {
    Create();
    vlt_package_close_all();
    package = vlt_package_open(path.c_str(), 1, 0, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(OpenError(package, "a", VLT_MODE_WRITE), VLT_FILE_ACCESS);
    EXPECT_GT(Open(), 0) << "not exclusive";
    vlt_package_close_all();
    package = vlt_package_open(path.c_str(), 0, 1, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(OpenError(package, "a", VLT_MODE_WRITE), VLT_FILE_OK);
    EXPECT_EQ(OpenErrorOf({.read_only = 1}), VLT_OPEN_ACCESS);
}

struct Patch {
    const char* name;
    std::size_t offset;
    Bytes bytes;  // none: the host file ends there
};

TEST_F(PackageOpening, RefusesWhatIsNotAPackage) {
    const Patch patches[] = {
        {"empty", 0, {}},
        {"one byte short", 8191, {}},
        {"cut before the second header block", 8192, {}},
        {"other magic", 0, {'v', 'l', 'T'}},
        {"half a wide magic", 0, {'w', 'v', 'l', 'x'}},
        {"header link beyond the end", 101, {1, 4, 0, 0x80}},
        {"header link to itself", 101, {1, 0, 0, 0x80}},
        {"header link back", 109, {1, 0, 0, 0x80}},
        {"header too long", 109, {9, 0, 0, 0x80}},
        {"header runs into the directory", 101, {2, 0, 0, 0x80}},
        {"directory link beyond the end", 105, {255, 255, 255, 0x8F}},
        {"directory link to itself", 105, {2, 0, 0, 0x80}},
        {"directory runs into the header", 105, {3, 0, 0, 0x80}},
    };
    Create(4);  // header blocks 0 and 2, the directory block 1
    for (int i = 0; i < 9; ++i) Write("file" + std::to_string(i), 10);  // and block 3 or later
    vlt_package_close_all();
    Damaged();
    const Bytes sound = ReadHostFile(path);
    for (const auto& [name, offset, bytes] : patches) {
        Bytes host = sound;
        std::copy(bytes.begin(), bytes.end(), host.begin() + static_cast<std::ptrdiff_t>(offset));
        if (bytes.empty()) host.resize(offset);
        WriteHostFile(path, host);
        EXPECT_EQ(OpenErrorOf({}), VLT_OPEN_NOT_A_PACKAGE) << name;
        EXPECT_EQ(OpenErrorOf({.read_only_file = true}), VLT_OPEN_NOT_A_PACKAGE) << name;
        EXPECT_EQ(ReadHostFile(path), host) << name;
    }
}

}  // namespace

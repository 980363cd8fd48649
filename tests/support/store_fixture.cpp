// SPDX-License-Identifier: MIT
#include "tests/support/store_fixture.h"

#include <algorithm>
#include <cstdio>

StoreTest::StoreTest() {
    const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
    path = std::string(test->test_suite_name()) + "." + test->name() + ".vlt";
    std::replace(path.begin(), path.end(), '/', '-');
}

StoreTest::~StoreTest() {
    vlt_package_close_all();
    const Bytes host = ReadHostFile(path);
    if (check_ && !host.empty()) {
        EXPECT_EQ("", Faults(PackageImage(host, base), leniency));
    }
    std::remove(path.c_str());
}

void StoreTest::Create(std::int32_t size_mb, Names names) {
    ASSERT_EQ(1, vlt_package_create(path.c_str(), names == Names::wide, size_mb, nullptr, nullptr));
    package = Open();
    ASSERT_GT(package, 0);
}

void StoreTest::Reopen() {
    vlt_package_close_all();
    package = Open({.offset = static_cast<std::int64_t>(base)});
    ASSERT_GT(package, 0);
}

std::int32_t StoreTest::Open(Opening how) {
    return vlt_package_open_ex(path.c_str(), how.read_only_file, static_cast<std::uint32_t>(how.offset),
                               static_cast<std::int32_t>(how.offset >> 32), how.read_only, how.exclusive,
                               how.read_credential, how.write_credential, nullptr, nullptr);
}

std::int32_t StoreTest::OpenErrorOf(Opening how) {
    std::int32_t error = -1, wide = -1;
    const std::int32_t handle =
        vlt_package_open_ex(path.c_str(), how.read_only_file, static_cast<std::uint32_t>(how.offset),
                            static_cast<std::int32_t>(how.offset >> 32), how.read_only, how.exclusive,
                            how.read_credential, how.write_credential, &wide, &error);
    EXPECT_EQ(0, handle);
    EXPECT_EQ(0, wide);
    return error;
}

void StoreTest::Write(const std::string& name, const Bytes& bytes) {
    const std::uint32_t file = OpenFor(name, VLT_MODE_WRITE, {.truncate = true});
    ASSERT_NE(0u, file) << name;
    EXPECT_TRUE(WriteTo(file, bytes)) << name;
    EXPECT_EQ(1, vlt_file_close(file));
}

void StoreTest::Append(const std::string& name, const Bytes& bytes) {
    const std::uint32_t file = OpenFor(name, VLT_MODE_APPEND);
    ASSERT_NE(0u, file) << name;
    EXPECT_TRUE(WriteTo(file, bytes)) << name;
    EXPECT_EQ(1, vlt_file_close(file));
}

Bytes StoreTest::Read(const std::string& name) {
    FileInfo info;
    const std::uint32_t file = OpenFor(name, VLT_MODE_READ);
    EXPECT_NE(0u, file) << name;
    if (file == 0 || GetInfo(package, name, &info) == 0) return {};
    const Bytes bytes = ReadFrom(file, static_cast<std::int32_t>(std::min<std::int64_t>(info.size, 1 << 24)) + 1);
    EXPECT_EQ(1, vlt_file_close(file));
    return bytes;
}

FileInfo StoreTest::Info(const std::string& name) {
    FileInfo info;
    EXPECT_EQ(1, GetInfo(package, name, &info)) << name;
    return info;
}

void StoreTest::SetHostBytes(std::size_t offset, const Bytes& bytes) {
    Bytes host = ReadHostFile(path);
    std::copy(bytes.begin(), bytes.end(), host.begin() + static_cast<std::ptrdiff_t>(offset));
    WriteHostFile(path, host);
}

void StoreTest::SetWord(int block, std::uint32_t word) {
    const PackageImage image = Image();
    for (std::size_t i = 0; i < 4; ++i)
        SetByte(image.HostOffset(image.header_chain, 101 + 4 * static_cast<std::size_t>(block) + i),
                static_cast<std::uint8_t>(word >> (8 * i)));
}

void StoreTest::SetField(int entry, std::size_t field, std::uint64_t value, int size) {
    const PackageImage image = Image();
    const auto at = static_cast<std::size_t>(entry) * static_cast<std::size_t>(image.entry_size) + field;
    for (std::size_t i = 0; i < static_cast<std::size_t>(size); ++i)
        SetByte(image.HostOffset(image.directory_chain, at + i), static_cast<std::uint8_t>(value >> (8 * i)));
}

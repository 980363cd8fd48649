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
    Reopen();
}

void StoreTest::Reopen() {
    vlt_package_close_all();
    package = Open({.offset = static_cast<std::int64_t>(base)});
    ASSERT_GT(package, 0);
}

std::int32_t StoreTest::Open(Opening how, std::int32_t* error) {
    std::int32_t wide = -1;
    const std::int32_t handle =
        vlt_package_open_ex(how.at ? how.at : path.c_str(), how.read_only_file,
                            static_cast<std::uint32_t>(how.offset), static_cast<std::int32_t>(how.offset >> 32),
                            how.read_only, how.exclusive, how.read_credential, how.write_credential, &wide, error);
    EXPECT_EQ(handle == 0 ? 0 : vlt_package_is_unicode_files(handle), wide);
    return handle;
}

std::int32_t StoreTest::OpenErrorOf(Opening how) {
    std::int32_t error = -1;
    EXPECT_EQ(0, Open(how, &error));
    return error;
}

void StoreTest::Put(const std::string& name, const Bytes& bytes, std::uint32_t mode, OpenHow how) {
    const std::uint32_t file = OpenFor(name, mode, how);
    EXPECT_TRUE(WriteTo(file, bytes)) << name;
    EXPECT_EQ(1, vlt_file_close(file)) << name;
}

Bytes StoreTest::Read(const std::string& name) {
    const std::uint32_t file = OpenFor(name, VLT_MODE_READ);
    const Bytes bytes = ReadFrom(file, static_cast<std::int32_t>(Info(name).size) + 1);
    EXPECT_EQ(1, vlt_file_close(file)) << name;
    return bytes;
}

FileInfo StoreTest::Info(const std::string& name) {
    FileInfo info;
    EXPECT_EQ(1, GetInfo(package, name, &info)) << name;
    return info;
}

std::vector<std::string> StoreTest::List() {
    std::vector<std::string> names;
    FileInfo info;
    for (std::int32_t cursor = 0; (cursor = Enumerate(package, cursor, &info)) != 0;) names.push_back(info.name);
    return names;
}

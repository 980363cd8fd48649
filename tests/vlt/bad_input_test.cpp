// SPDX-License-Identifier: MIT
// Wrong handles, null pointers and functions of the other width of names: the failure that is documented, and nothing
// changed in the host file.
#include <cstring>

#include "tests/support/store_fixture.h"

namespace {

class BadInput : public BothNames {
protected:
    void SetUp() override {
        Create(0, GetParam());
        Write("a", 5000);
        before_ = ReadHostFile(path);
    }
    void TearDown() override { EXPECT_EQ(before_, ReadHostFile(path)); }

    /// Every function that takes a package handle and a name refuses it, in the width given.
    template <typename Char>
    void RefusesNames(std::int32_t handle, const Char* name, std::uint32_t open_error) {
        constexpr bool wide = sizeof(Char) > 1;
        std::uint32_t error = 99, kind = 99;
        std::int64_t size = -99;
        double created = -99, accessed = -99, written = -99;
        if constexpr (wide) {
            EXPECT_EQ(0, vltw_file_open(handle, name, VLT_MODE_WRITE, 0, 1, &error));
            EXPECT_EQ(0, vltw_file_open(handle, name, VLT_MODE_WRITE, 0, 1, nullptr));
            EXPECT_EQ(0, vltw_file_get_info(handle, name, &kind, &size, &created, &accessed, &written));
            EXPECT_EQ(0, vltw_file_set_time(handle, name, 1, 2, 3));
            EXPECT_EQ(0, vltw_file_delete(handle, name));
        } else {
            EXPECT_EQ(0, vlt_file_open(handle, name, VLT_MODE_WRITE, 0, 1, &error));
            EXPECT_EQ(0, vlt_file_open(handle, name, VLT_MODE_WRITE, 0, 1, nullptr));
            EXPECT_EQ(0, vlt_file_get_info(handle, name, &kind, &size, &created, &accessed, &written));
            EXPECT_EQ(0, vlt_file_set_time(handle, name, 1, 2, 3));
            EXPECT_EQ(0, vlt_file_delete(handle, name));
        }
        EXPECT_EQ(open_error, error);
        EXPECT_TRUE(kind == 99 && size == -99 && created == -99 && accessed == -99 && written == -99);
    }

    Bytes before_;
};
INSTANTIATE_BOTH_NAMES(BadInput);

TEST_P(BadInput, NullNamesAreRefused) {
    if (GetParam() == Names::wide) return RefusesNames<vlt_wchar>(package, nullptr, VLT_FILE_NOT_FOUND);
    RefusesNames<char>(package, nullptr, VLT_FILE_NOT_FOUND);
}

TEST_P(BadInput, TheFunctionsOfTheOtherWidthAreRefused) {
    const vlt_wchar wide_name[] = {'a', 0};
    if (GetParam() == Names::wide) {
        RefusesNames(package, "a", VLT_FILE_REQUEST);
        EXPECT_EQ(0, vlt_package_enum(package, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    } else {
        RefusesNames(package, wide_name, VLT_FILE_REQUEST);
        EXPECT_EQ(0, vltw_package_enum(package, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    }
}

TEST_P(BadInput, HandlesThatNameNothingAreRefused) {
    const std::int32_t closed = Open();
    vlt_package_close(closed);
    const vlt_wchar wide_name[] = {'a', 0};
    for (const std::int32_t handle : {0, -1, closed, 64, 65, 0x10000 + package, INT32_MAX, INT32_MIN}) {
        SCOPED_TRACE(handle);
        RefusesNames(handle, "a", VLT_FILE_REQUEST);
        RefusesNames(handle, wide_name, VLT_FILE_REQUEST);
        EXPECT_EQ(0, vlt_package_enum(handle, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
        EXPECT_EQ(0, vltw_package_enum(handle, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    }
}

TEST_P(BadInput, FileHandlesThatNameNothingAreRefused) {
    const std::uint32_t open = OpenFor("a", VLT_MODE_WRITE);
    const std::uint32_t slots[] = {0, 1, 0xFFFF, 0xFFFFFFFF, open + 128, open - 1, open + 0x10000, open | 0x80000000};
    for (const std::uint32_t file : slots) {
        SCOPED_TRACE(file);
        std::uint8_t byte = 7;
        std::int64_t position = 77;
        EXPECT_EQ(0, vlt_file_read(file, &byte, 1));
        EXPECT_EQ(0, vlt_file_write(file, &byte, 1));
        EXPECT_EQ(0, vlt_file_set_pos(file, 1));
        EXPECT_EQ(0, vlt_file_set_pos_bof(file));
        EXPECT_EQ(0, vlt_file_set_pos_eof(file));
        EXPECT_EQ(0, vlt_file_get_pos(file, &position));
        EXPECT_EQ(0, position);
        EXPECT_EQ(-1, vlt_file_is_eof(file));
        EXPECT_EQ(-1, vlt_file_is_bof(file));
        EXPECT_EQ(0, vlt_file_close(file));
        EXPECT_EQ(7, byte);
    }
    EXPECT_EQ(0, vlt_file_get_pos(open, nullptr));
    EXPECT_EQ(0, vlt_file_set_pos(open + 1, 1)) << "a free slot";
    EXPECT_EQ(0, PositionOf(open));
}

TEST(Memory, OfTheLibraryIsTakenAndGivenBack) {
    void* block = vlt_alloc_mem(1000);
    ASSERT_NE(nullptr, block);
    std::memset(block, 0xAA, 1000);
    vlt_free_mem(block);
    vlt_free_mem(nullptr);
}

}  // namespace

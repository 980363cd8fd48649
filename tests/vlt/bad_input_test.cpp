// SPDX-License-Identifier: MIT
// Wrong handles, null pointers and functions of the other width of names: the failure that is documented, and nothing
// changed in the host file.
#include <cstring>
#include <tuple>

#include "tests/support/store_fixture.h"

namespace {

// The functions that take a package handle and the width of the name.
auto FunctionsFor(const char*) {
    return std::make_tuple(vlt_file_open, vlt_file_get_info, vlt_file_set_time, vlt_file_delete, vlt_package_enum);
}
auto FunctionsFor(const vlt_wchar*) {
    return std::make_tuple(vltw_file_open, vltw_file_get_info, vltw_file_set_time, vltw_file_delete,
                           vltw_package_enum);
}

class BadInput : public BothNames {
protected:
    void SetUp() override {
        Create(0, GetParam());
        Write("a", 5000);
        before_ = ReadHostFile(path);
    }
    void TearDown() override { EXPECT_EQ(ReadHostFile(path), before_); }

    /// A handle with a name is refused; where the name is the reason, the listing that needs none is not.
    template <typename Char>
    void RefusesNames(std::int32_t handle, const Char* name, std::uint32_t open_error) {
        const auto [open, get_info, set_time, remove, enumerate] = FunctionsFor(name);
        std::uint32_t error = 99;
        FileInfo info;
        EXPECT_EQ(open(handle, name, VLT_MODE_WRITE, 0, 1, &error), 0);
        EXPECT_EQ(error, open_error);
        EXPECT_EQ(open(handle, name, VLT_MODE_WRITE, 0, 1, nullptr), 0);
        EXPECT_EQ(get_info(handle, name, &info.kind, &info.size, &info.created, &info.accessed, &info.written), 0);
        EXPECT_EQ(info, FileInfo{});
        EXPECT_EQ(set_time(handle, name, 1, 2, 3), 0);
        EXPECT_EQ(remove(handle, name), 0);
        EXPECT_EQ(enumerate(handle, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
                  open_error == VLT_FILE_NOT_FOUND);
    }

    /// What the functions on open files answer, in turn.
    std::vector<std::int32_t> Answers(std::uint32_t file) {
        std::uint8_t byte = 7;
        std::int64_t position = 77;
        const std::vector<std::int32_t> answers = {
            vlt_file_read(file, &byte, 1), vlt_file_write(file, &byte, 1), vlt_file_set_pos(file, 1),
            vlt_file_set_pos_eof(file),    vlt_file_is_eof(file),          vlt_file_get_pos(file, &position),
            vlt_file_set_pos_bof(file),    vlt_file_is_bof(file),          vlt_file_close(file)};
        EXPECT_EQ(position, 0);
        EXPECT_EQ(byte, 7);
        return answers;
    }

    Bytes before_;
};
INSTANTIATE_BOTH_NAMES(BadInput);

TEST_P(BadInput, PackageHandlesAndNamesAreRefused) {
    const bool wide = GetParam() == Names::wide;
    const vlt_wchar wide_name[] = {'a', 0};
    const std::string longer(VLT_NAME_MAX + 1, 'n');
    const WideName wide_longer = Widen(longer);
    for (const char* name : {longer.c_str(), wide ? "a" : nullptr})
        RefusesNames(package, name, wide ? VLT_FILE_REQUEST : VLT_FILE_NOT_FOUND);
    for (const vlt_wchar* name : {wide_longer.c_str(), wide ? nullptr : wide_name})
        RefusesNames(package, name, wide ? VLT_FILE_NOT_FOUND : VLT_FILE_REQUEST);
    const std::int32_t closed = Open();
    vlt_package_close(closed);
    for (const std::int32_t handle : {0, -1, closed, 64, 65, 0x10000 + package, INT32_MAX, INT32_MIN}) {
        SCOPED_TRACE(handle);
        RefusesNames(handle, "a", VLT_FILE_REQUEST);
        RefusesNames(handle, wide_name, VLT_FILE_REQUEST);
        EXPECT_EQ(vlt_package_is_unicode_files(handle), -1);
        EXPECT_EQ(vlt_package_close(handle), 0);
    }
}

TEST_P(BadInput, FileHandlesAreRefusedAsFarAsAFileIsNeeded) {
    const std::uint32_t open = OpenFor("a", VLT_MODE_WRITE), closed = OpenFor("a", VLT_MODE_READ);
    vlt_file_set_pos(closed, 5);
    vlt_file_close(closed);
    const std::vector<std::int32_t> none = {0, 0, 0, 0, -1, 0, 0, -1, 0}, no_file = {0, 0, 0, 0, -1, 1, 1, 1, 1};
    for (const std::uint32_t file :
         {0u, 1u, 0xFFFFu, 0xFFFFFFFFu, open + 128, open - 1, open + 0x10000, open | 0x80000000})
        EXPECT_EQ(Answers(file), none) << file;
    EXPECT_EQ(Answers(closed), no_file);
    EXPECT_EQ(Answers(open + 2), no_file) << "never opened";
    for (const std::uint32_t file : {0u, closed, open}) {
        EXPECT_EQ(vlt_file_get_pos(file, nullptr), 0);
        EXPECT_EQ(vlt_file_read(file, nullptr, 5), 0);
        EXPECT_EQ(vlt_file_write(file, nullptr, 5), 1) << "nothing to write";
    }
    EXPECT_EQ(PositionOf(open), 0);
}

TEST(Memory, OfTheLibraryIsTakenAndGivenBack) {
    void* block = vlt_alloc_mem(1000);
    ASSERT_NE(nullptr, block);
    std::memset(block, 0xAA, 1000);
    vlt_free_mem(block);
    vlt_free_mem(nullptr);
}

}  // namespace

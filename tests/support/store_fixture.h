// SPDX-License-Identifier: MIT
// A scratch package for each test, and the few words that the tests of the store are written in.
#pragma once

#include <gtest/gtest.h>

#include "tests/support/store_calls.h"

enum class Names { narrow, wide };

/// How a package is opened.
struct Opening {
    std::int32_t read_only = 0;
    bool exclusive = false;
    const char* read_credential = nullptr;
    const char* write_credential = nullptr;
    bool read_only_file = false;
    std::int64_t offset = 0;
    const char* at = nullptr;  // another path than the scratch package's
};

class StoreTest : public ::testing::Test {
protected:
    StoreTest();
    /// Closes everything, checks the bytes of the package against every rule, and removes it.
    ~StoreTest() override;

    /// Makes the scratch package and opens it as `package`.
    void Create(std::int32_t size_mb = 0, Names names = Names::narrow);
    /// Closes all handles and opens `package` again.
    void Reopen();
    /// Opens the scratch package, once more if it is open already.
    std::int32_t Open(Opening how = {}, std::int32_t* error = nullptr);
    /// The code of an opening that must fail.
    std::int32_t OpenErrorOf(Opening how);

    /// Makes the file, or empties it, and writes it whole through `package`.
    void Write(const std::string& name, const Bytes& bytes) { Put(name, bytes, VLT_MODE_WRITE, {.truncate = true}); }
    void Write(const std::string& name, std::size_t length) { Write(name, Pattern(name, length)); }
    void Append(const std::string& name, const Bytes& bytes) { Put(name, bytes, VLT_MODE_APPEND, {}); }
    Bytes Read(const std::string& name);
    /// Whether a file holds what `Write(name, length)` wrote.
    bool Intact(const std::string& name, std::size_t length) { return Read(name) == Pattern(name, length); }
    std::uint32_t OpenFor(const std::string& name, std::uint32_t mode, OpenHow how = {}) {
        return OpenFile(package, name, mode, how);
    }
    FileInfo Info(const std::string& name);
    /// The names of the stored files, in the order of the directory.
    std::vector<std::string> List();

    // The bytes of the host file, past the library.
    PackageImage Image() const { return PackageImage(ReadHostFile(path), base); }
    std::vector<int> ChainOf(const std::string& name) const { return Image().ChainOf(name); }

    /// The package is damaged on purpose, and its bytes are not checked in the end.
    void Damaged() { check_ = false; }

    std::string path;
    std::size_t base = 0;  // where the package lies in its host file
    std::int32_t package = 0;
    Leniency leniency;

private:
    void Put(const std::string& name, const Bytes& bytes, std::uint32_t mode, OpenHow how);

    bool check_ = true;
};

/// The same with both widths of names.
class BothNames : public StoreTest, public ::testing::WithParamInterface<Names> {};

#define INSTANTIATE_BOTH_NAMES(suite)                                                \
    INSTANTIATE_TEST_SUITE_P(, suite, ::testing::Values(Names::narrow, Names::wide), \
                             [](const auto& test) { return test.param == Names::wide ? "wide" : "narrow"; })

// SPDX-License-Identifier: MIT
// Random calls on the library and on the plain reference: the same results, and after each call the same bytes in the
// host file. VLT_SEED in the environment tries another sequence.
#include <cstdlib>
#include <random>

#include "tests/support/store_fixture.h"
#include "tests/support/store_script.h"

namespace {

struct Scenario {
    const char* name;
    Names names;
    std::int32_t size_mb;
    std::size_t base;             // bytes before the package in its host file
    std::uint8_t read_only_base;  // the first handle is read-only; others that share its package may write
    std::uint32_t files;          // different names
    std::uint32_t largest;        // bytes of the largest write
    int calls;
    std::size_t header_blocks;  // at least, in the end
};

class AgainstTheReference : public StoreTest, public ::testing::WithParamInterface<Scenario> {};

TEST_P(AgainstTheReference, EveryCallLeavesTheSameBytes) {
    const Scenario& run = GetParam();
    ASSERT_EQ(vlt_package_create(path.c_str(), run.names == Names::wide, run.size_mb, "r", "w"), 1);
    Bytes host = Pattern("before", base = run.base);
    const Bytes created = ReadHostFile(path);
    host.insert(host.end(), created.begin(), created.end());
    WriteHostFile(path, host);

    const char* seed = std::getenv("VLT_SEED");
    std::mt19937 random(seed ? static_cast<unsigned>(std::atoi(seed)) : 1);
    Bytes bytes(static_cast<std::size_t>(run.calls) * 7);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    const StoreScript script{path,      base,        run.read_only_base,
                             run.files, run.largest, [] { return std::time(nullptr); }};
    ASSERT_EQ(Faults(Image()), "") << "the reference runs beside sound packages only";
    EXPECT_EQ(script.Run(Input(bytes.data(), bytes.size()), run.calls), "");
    if (!seed) {
        EXPECT_GE(Image().header_chain.size(), run.header_blocks);
    }
}

INSTANTIATE_TEST_SUITE_P(
    , AgainstTheReference,
    ::testing::Values(Scenario{"narrow", Names::narrow, 0, 0, 0, 12, 30000, 9000, 1},
                      Scenario{"wide", Names::wide, 0, 0, 0, 12, 30000, 9000, 1},
                      Scenario{"many_files", Names::narrow, 0, 0, 0, 60, 9000, 6000, 1},
                      Scenario{"many_wide_files", Names::wide, 0, 0, 0, 40, 9000, 4000, 1},
                      Scenario{"behind_other_data", Names::narrow, 0, 5555, 0, 12, 30000, 3000, 1},
                      Scenario{"read_only_base", Names::narrow, 0, 0, 1, 12, 30000, 16000, 1},
                      Scenario{"over_the_full_map", Names::narrow, 3, 0, 0, 12, 900000, 700, 2},
                      Scenario{"over_the_second_map", Names::wide, 7, 0, 0, 12, 2500000, 900, 3}),
    [](const auto& run) { return std::string(run.param.name); });

}  // namespace

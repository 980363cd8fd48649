// SPDX-License-Identifier: MIT
// A package, sound or damaged, and a script of calls: what tests/support/store_script.h promises of it.
#include <filesystem>

#include "fuzz/patched_package.h"
#include "fuzz/support.h"
#include "platform/clock.h"
#include "tests/support/host_faults.h"
#include "tests/support/store_script.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = Scratch("a.vlt");
    Input input(data, size);
    std::size_t base = 0;
    WriteHostFile(path, PatchedPackage(input, path, &base));
    const StoreScript script{
        path,
        base,
        0,
        8,
        3 * inspect::kBlock + 2,
        [] { return static_cast<std::time_t>(vlt::clock_seconds()); },
        TickClock,
        [](int blocks) {
            LimitHostFiles(static_cast<std::int64_t>(std::filesystem::file_size(path) +
                                                     static_cast<std::size_t>(blocks) * inspect::kBlock));
        },
        HostLimitReached};
    RequireNone(script.Run(input, 100));
    ResetHost();
    return 0;
}

// SPDX-License-Identifier: MIT
// A data file, then calls on its table, which are compared with the reference; see table_script.h.
#include "fuzz/support.h"
#include "offline/tables/data_file.h"
#include "tests/support/table_script.h"

using namespace vlt;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const bool double_bytes = input.Flag();
    UseDoubleBytes(double_bytes);
    RequireNone(RunTableScript(input, Scratch("table.txt"), KOfflineTable_ReadFile, double_bytes));
    ResetHost();
    return 0;
}

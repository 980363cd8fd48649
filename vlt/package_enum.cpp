// SPDX-License-Identifier: MIT
#include <algorithm>

#include "vlt/file_handle.h"
#include "vlt/file_info.h"
#include "vlt/stored_name.h"

namespace {

template <typename Char>
std::int32_t package_enum(std::int32_t package, std::int32_t cursor, Char* name, const vlt_info_out& out) {
    vlt_package* slot = vlt_package_of_width<Char>(package);
    if (!slot) return 0;
    vlt_package_hold hold(*slot);
    const std::int32_t count = vlt_dir_count(hold.store());
    for (std::int32_t i = std::max(cursor, 0); i < count; ++i) {
        const vlt_dir_entry entry = hold.store().entry(i);
        if (!entry.in_use()) continue;
        if (name) vlt_name_copy(name, entry.name());
        out.fill(entry);
        return i + 1;
    }
    return 0;
}

}  // namespace

std::int32_t vlt_package_enum(std::int32_t package, std::int32_t cursor, char* name, std::uint32_t* kind,
                              std::int64_t* size, double* created, double* accessed, double* written) {
    return package_enum(package, cursor, name, {kind, size, created, accessed, written});
}

std::int32_t vltw_package_enum(std::int32_t package, std::int32_t cursor, vlt_wchar* name, std::uint32_t* kind,
                               std::int64_t* size, double* created, double* accessed, double* written) {
    return package_enum(package, cursor, name, {kind, size, created, accessed, written});
}

// SPDX-License-Identifier: MIT
#include <algorithm>

#include "vlt/file_info.h"
#include "vlt/name_width.h"
#include "vlt/package_hold.h"
#include "vlt/stored_name.h"

namespace vlt {

namespace {

template <typename Char>
std::int32_t enumerate(std::int32_t package, std::int32_t cursor, Char* name, const InfoOut& out) {
    vlt_package* slot = package_of_width<Char>(package);
    if (!slot) return 0;
    PackageHold hold(*slot);
    Images& images = hold.store().images;
    const std::int32_t count = images.vlt_dir_count();
    for (std::int32_t i = std::max(cursor, 0); i < count; ++i) {
        const vlt_dir_entry entry = images.entry(i);
        if (!entry.in_use()) continue;
        if (name) copy_name(name, entry.name());
        out.fill(entry);
        return i + 1;
    }
    return 0;
}

}  // namespace

}  // namespace vlt

VLT_API std::int32_t VLT_CALL vlt_package_enum(std::int32_t package, std::int32_t cursor, char* name,
                                               std::uint32_t* kind, std::int64_t* size, double* created,
                                               double* accessed, double* written) {
    return vlt::enumerate(package, cursor, name, {kind, size, created, accessed, written});
}

VLT_API std::int32_t VLT_CALL vltw_package_enum(std::int32_t package, std::int32_t cursor, vlt_wchar* name,
                                                std::uint32_t* kind, std::int64_t* size, double* created,
                                                double* accessed, double* written) {
    return vlt::enumerate(package, cursor, name, {kind, size, created, accessed, written});
}

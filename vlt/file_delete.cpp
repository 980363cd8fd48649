// SPDX-License-Identifier: MIT
#include "vlt/file_empty.h"
#include "vlt/file_sharing.h"
#include "vlt/with_named_file.h"

namespace vlt {

namespace {

template <typename Char>
std::int32_t delete_file(std::int32_t package, const Char* name) {
    return with_named_file(package, name, Lookup::files, [](Store& store, std::int32_t index) {
        if (!vlt_file_check_share(store, index, VLT_MODE_WRITE, true) || !vlt_file_empty(store, index)) return false;
        free_entry(store, index);
        return vlt_dir_put(store, index);
    });
}

}  // namespace

}  // namespace vlt

VLT_API std::int32_t VLT_CALL vlt_file_delete(std::int32_t package, const char* name) {
    return vlt::delete_file(package, name);
}

VLT_API std::int32_t VLT_CALL vltw_file_delete(std::int32_t package, const vlt_wchar* name) {
    return vlt::delete_file(package, name);
}

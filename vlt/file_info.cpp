// SPDX-License-Identifier: MIT
#include "vlt/file_info.h"

#include "vlt/with_named_file.h"

namespace vlt {

void InfoOut::fill(const vlt_dir_entry& entry) const {
    if (kind) *kind = entry.kind() == VLT_ENTRY_FILE ? VLT_ENTRY_FILE : VLT_ENTRY_OTHER;
    if (size) *size = entry.size();
    if (created) *created = entry.created();
    if (accessed) *accessed = entry.accessed();
    if (written) *written = entry.written();
}

namespace {

template <typename Char>
std::int32_t get_info(std::int32_t package, const Char* name, const InfoOut& out) {
    return with_named_file(package, name, Lookup::in_use, [&](Store& store, std::int32_t index) {
        out.fill(store.images.entry(index));
        return true;
    });
}

}  // namespace

}  // namespace vlt

VLT_API std::int32_t VLT_CALL vlt_file_get_info(std::int32_t package, const char* name, std::uint32_t* kind,
                                                std::int64_t* size, double* created, double* accessed,
                                                double* written) {
    return vlt::get_info(package, name, {kind, size, created, accessed, written});
}

VLT_API std::int32_t VLT_CALL vltw_file_get_info(std::int32_t package, const vlt_wchar* name, std::uint32_t* kind,
                                                 std::int64_t* size, double* created, double* accessed,
                                                 double* written) {
    return vlt::get_info(package, name, {kind, size, created, accessed, written});
}

// SPDX-License-Identifier: MIT
#include "vlt/with_named_file.h"

namespace vlt {

namespace {

template <typename Char>
std::int32_t set_time(std::int32_t package, const Char* name, double created, double accessed, double written) {
    return with_named_file(package, name, Lookup::in_use, [&](Store& store, std::int32_t index) {
        vlt_dir_entry entry = store.images.entry(index);
        entry.set_created(created);
        entry.set_accessed(accessed);
        entry.set_written(written);
        return vlt_dir_put(store, index);
    });
}

}  // namespace

}  // namespace vlt

VLT_API std::int32_t VLT_CALL vlt_file_set_time(std::int32_t package, const char* name, double created,
                                                double accessed, double written) {
    return vlt::set_time(package, name, created, accessed, written);
}

VLT_API std::int32_t VLT_CALL vltw_file_set_time(std::int32_t package, const vlt_wchar* name, double created,
                                                 double accessed, double written) {
    return vlt::set_time(package, name, created, accessed, written);
}

// SPDX-License-Identifier: MIT
#include "vlt/file_info.h"

#include "vlt/file_handle.h"
#include "vlt/stored_name.h"

void vlt_info_out::fill(const vlt_dir_entry& entry) const {
    if (kind) *kind = entry.kind() == VLT_ENTRY_FILE ? VLT_ENTRY_FILE : VLT_ENTRY_OTHER;
    if (size) *size = entry.size();
    if (created) *created = entry.created();
    if (accessed) *accessed = entry.accessed();
    if (written) *written = entry.written();
}

namespace {

/// Runs `use` on the entry of a name with the package held; 0 when the package or the name is refused or not found.
template <typename Char, typename Use>
std::int32_t with_entry(std::int32_t package, const Char* name, vlt_lookup lookup, Use use) {
    vlt_package* slot = vlt_package_of_width<Char>(package);
    if (!slot || !name || vlt_name_length(name) > VLT_NAME_MAX) return 0;
    vlt_package_hold hold(*slot);
    std::int32_t index = vlt_no_entry;
    if (!vlt_dir_find(hold.store(), name, lookup, &index) || index == vlt_no_entry) return 0;
    return use(hold.store(), index) ? 1 : 0;
}

template <typename Char>
std::int32_t get_info(std::int32_t package, const Char* name, const vlt_info_out& out) {
    return with_entry(package, name, vlt_lookup::in_use, [&](vlt_store& store, std::int32_t index) {
        out.fill(store.entry(index));
        return true;
    });
}

template <typename Char>
std::int32_t set_time(std::int32_t package, const Char* name, double created, double accessed, double written) {
    return with_entry(package, name, vlt_lookup::in_use, [&](vlt_store& store, std::int32_t index) {
        vlt_dir_entry entry = store.entry(index);
        entry.set_created(created);
        entry.set_accessed(accessed);
        entry.set_written(written);
        return vlt_dir_put(store, index);
    });
}

template <typename Char>
std::int32_t delete_file(std::int32_t package, const Char* name) {
    return with_entry(package, name, vlt_lookup::files, [](vlt_store& store, std::int32_t index) {
        if (!vlt_file_check_share(store, index, VLT_MODE_WRITE, true)) return false;
        if (!vlt_file_empty(store, index)) return false;
        vlt_dir_free(store, index);
        return vlt_dir_put(store, index);
    });
}

}  // namespace

std::int32_t vlt_file_get_info(std::int32_t package, const char* name, std::uint32_t* kind, std::int64_t* size,
                               double* created, double* accessed, double* written) {
    return get_info(package, name, {kind, size, created, accessed, written});
}

std::int32_t vltw_file_get_info(std::int32_t package, const vlt_wchar* name, std::uint32_t* kind, std::int64_t* size,
                                double* created, double* accessed, double* written) {
    return get_info(package, name, {kind, size, created, accessed, written});
}

std::int32_t vlt_file_set_time(std::int32_t package, const char* name, double created, double accessed,
                               double written) {
    return set_time(package, name, created, accessed, written);
}

std::int32_t vltw_file_set_time(std::int32_t package, const vlt_wchar* name, double created, double accessed,
                                double written) {
    return set_time(package, name, created, accessed, written);
}

std::int32_t vlt_file_delete(std::int32_t package, const char* name) {
    return delete_file(package, name);
}

std::int32_t vltw_file_delete(std::int32_t package, const vlt_wchar* name) {
    return delete_file(package, name);
}

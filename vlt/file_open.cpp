// SPDX-License-Identifier: MIT
#include "vlt/directory.h"
#include "vlt/file_handle.h"
#include "vlt/stored_name.h"

namespace {

struct vlt_file_request {
    std::uint32_t mode;
    bool exclusive;
    bool truncate;
};

/// Finds or makes the file, takes a slot for it and empties it when asked to. Stores the slot number; returns an
/// error code, 0 for success.
template <typename Char>
std::uint32_t open_stored_file(vlt_store& store, vlt_file_table& files, const Char* name,
                               const vlt_file_request& request, std::int32_t* number) {
    std::int32_t index = vlt_no_entry;
    if (vlt_name_length(name) > VLT_NAME_MAX) return VLT_FILE_NOT_FOUND;
    if (!vlt_dir_find(store, name, vlt_lookup::files, &index)) return VLT_FILE_NOT_FOUND;
    const bool writes = request.mode != VLT_MODE_READ;
    const bool found = index != vlt_no_entry;
    if (found && !vlt_file_check_share(store, index, request.mode, request.exclusive)) return VLT_FILE_ACCESS;
    if (!found && !writes) return VLT_FILE_NOT_FOUND;
    // All room is had before a file is made: a refused open makes none.
    const std::size_t entries = found ? static_cast<std::size_t>(index) + 1 : vlt_dir_count_grown(store);
    if (!files.provide() || !store.open_files.provide(entries)) return VLT_FILE_NO_SLOT;
    if (!found) index = vlt_dir_add(store, name);
    if (index == vlt_no_entry) return VLT_FILE_NOT_FOUND;
    // An entry whose writing failed when it was made must not be known here alone.
    if (found && writes && store.entry_unwritten && !vlt_dir_put(store, index)) return VLT_FILE_NOT_FOUND;
    *number = files.vlt_file_slot_take(store, index, request.mode, request.exclusive);
    if (request.truncate && !vlt_file_empty(store, index)) {
        files.release(store, *number);
        return VLT_FILE_NO_SLOT;
    }
    return VLT_FILE_OK;
}

/// The checks that need no lock; an error code, 0 when the package may be asked.
template <typename Char>
std::uint32_t check_request(std::int32_t package, const Char* name, const vlt_file_request& request) {
    if (request.mode > VLT_MODE_APPEND) return VLT_FILE_REQUEST;
    if (request.truncate && request.mode != VLT_MODE_WRITE) return VLT_FILE_REQUEST;
    vlt_package* slot = vlt_package_of_width<Char>(package);
    if (!slot) return VLT_FILE_REQUEST;
    if (request.mode != VLT_MODE_READ && slot->read_only) return VLT_FILE_ACCESS;
    if (!name) return VLT_FILE_NOT_FOUND;
    return package <= VLT_FILE_PACKAGE_MAX ? VLT_FILE_OK : VLT_FILE_NO_SLOT;
}

template <typename Char>
std::int32_t file_open(std::int32_t package, const Char* name, const vlt_file_request& request,
                       std::uint32_t* error) {
    std::uint32_t unwanted;
    if (!error) error = &unwanted;
    *error = check_request(package, name, request);
    if (*error != VLT_FILE_OK) return 0;
    vlt_package* slot = vlt_package_at(package);
    vlt_package_hold hold(*slot);
    std::int32_t number = 0;
    *error = open_stored_file(hold.store(), *slot->files, name, request, &number);
    return *error == VLT_FILE_OK ? vlt_file_handle(package, number) : 0;
}

}  // namespace

std::int32_t vlt_file_open(std::int32_t package, const char* name, std::uint32_t mode, std::int32_t exclusive,
                           std::int32_t truncate, std::uint32_t* error) {
    return file_open(package, name, {mode, exclusive != 0, truncate != 0}, error);
}

std::int32_t vltw_file_open(std::int32_t package, const vlt_wchar* name, std::uint32_t mode, std::int32_t exclusive,
                            std::int32_t truncate, std::uint32_t* error) {
    return file_open(package, name, {mode, exclusive != 0, truncate != 0}, error);
}

std::int32_t vlt_file_close(std::uint32_t file) {
    vlt_package* slot = vlt_package_of_file(file);
    if (!slot) return 0;
    vlt_package_hold hold(*slot);
    if (!slot->files->at(vlt_slot_of_file(file))) return 0;
    slot->files->release(hold.store(), vlt_slot_of_file(file));
    return 1;
}

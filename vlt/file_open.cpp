// SPDX-License-Identifier: MIT
#include "vlt/directory.h"
#include "vlt/file_empty.h"
#include "vlt/file_handle.h"
#include "vlt/file_sharing.h"
#include "vlt/name_width.h"
#include "vlt/package_hold.h"
#include "vlt/stored_name.h"

namespace vlt {

namespace {

struct FileRequest {
    std::uint32_t mode;
    bool exclusive;
    bool truncate;
};

enum class FileFailure : std::uint32_t {
    none = VLT_FILE_OK,
    no_slot = VLT_FILE_NO_SLOT,
    request = VLT_FILE_REQUEST,
    access = VLT_FILE_ACCESS,
    not_found = VLT_FILE_NOT_FOUND
};

/// Finds or makes the file that a request is for.
template <typename Char>
FileFailure find_or_make(Store& store, FileTable& files, const Char* name, const FileRequest& request,
                         std::int32_t* index) {
    if (name_length(name) > VLT_NAME_MAX) return FileFailure::not_found;
    if (!vlt_dir_find(store, name, Lookup::files, index)) return FileFailure::not_found;
    const bool writes = request.mode != VLT_MODE_READ;
    const bool found = *index != no_entry;
    if (found && !vlt_file_check_share(store, *index, request.mode, request.exclusive)) return FileFailure::access;
    if (!found && !writes) return FileFailure::not_found;
    // Reserve everything first, so that an open that fails creates nothing.
    const std::int32_t entries = found ? *index + 1 : store.images.dir_count_grown();
    if (!files.reserve_slot() || !store.open_files.reserve(entries)) return FileFailure::no_slot;
    if (!found) *index = vlt_dir_add(store, name);
    if (*index == no_entry) return FileFailure::not_found;
    // The host file may lack the entry of a new file: what is written to it would be lost.
    const bool unwritten = store.entries.states[static_cast<std::size_t>(*index)] == EntryState::never_written;
    return writes && unwritten && !vlt_dir_put(store, *index) ? FileFailure::not_found : FileFailure::none;
}

/// Opens the file, and empties it when that is asked for; stores the slot number.
template <typename Char>
FileFailure open_stored_file(Store& store, FileTable& files, const Char* name, const FileRequest& request,
                             std::int32_t* number) {
    std::int32_t index = no_entry;
    const FileFailure failure = find_or_make(store, files, name, request, &index);
    if (failure != FileFailure::none) return failure;
    *number = files.take_slot(store, index, request.mode, request.exclusive);
    if (!request.truncate || vlt_file_empty(store, index)) return FileFailure::none;
    files.release(store, *number);
    return FileFailure::no_slot;
}

/// The checks that need no lock.
template <typename Char>
FileFailure check_request(std::int32_t package, const Char* name, const FileRequest& request) {
    if (request.mode > VLT_MODE_APPEND) return FileFailure::request;
    if (request.truncate && request.mode != VLT_MODE_WRITE) return FileFailure::request;
    vlt_package* slot = package_of_width<Char>(package);
    if (!slot) return FileFailure::request;
    if (request.mode != VLT_MODE_READ && slot->read_only) return FileFailure::access;
    if (!name) return FileFailure::not_found;
    return package <= VLT_FILE_PACKAGE_MAX ? FileFailure::none : FileFailure::no_slot;
}

template <typename Char>
FileFailure open_file(std::int32_t package, const Char* name, const FileRequest& request, std::int32_t* handle) {
    const FileFailure refused = check_request(package, name, request);
    if (refused != FileFailure::none) return refused;
    vlt_package& slot = *package_at(package);
    PackageHold hold(slot);
    std::int32_t number = 0;
    const FileFailure failure = open_stored_file(hold.store(), *slot.files, name, request, &number);
    if (failure == FileFailure::none) *handle = file_handle(package, number);
    return failure;
}

template <typename Char>
std::int32_t open_file(std::int32_t package, const Char* name, const FileRequest& request, std::uint32_t* error) {
    std::int32_t handle = 0;
    const FileFailure failure = open_file(package, name, request, &handle);
    if (error) *error = static_cast<std::uint32_t>(failure);
    return handle;
}

}  // namespace

}  // namespace vlt

VLT_API std::int32_t VLT_CALL vlt_file_open(std::int32_t package, const char* name, std::uint32_t mode,
                                            std::int32_t exclusive, std::int32_t truncate, std::uint32_t* error) {
    return vlt::open_file(package, name, {mode, exclusive != 0, truncate != 0}, error);
}

VLT_API std::int32_t VLT_CALL vltw_file_open(std::int32_t package, const vlt_wchar* name, std::uint32_t mode,
                                             std::int32_t exclusive, std::int32_t truncate, std::uint32_t* error) {
    return vlt::open_file(package, name, {mode, exclusive != 0, truncate != 0}, error);
}

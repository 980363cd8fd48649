// SPDX-License-Identifier: MIT
#include <cstring>

#include "base/owned.h"
#include "vlt/header_load.h"
#include "vlt/package_table.h"

namespace vlt {

namespace {

enum class OpenFailure : std::int32_t {
    none = 0,
    not_a_package = VLT_OPEN_NOT_A_PACKAGE,
    credentials = VLT_OPEN_CREDENTIALS,
    no_file = VLT_OPEN_NO_FILE,
    access = VLT_OPEN_ACCESS,
    argument = VLT_OPEN_ARGUMENT
};

/// What an opening asks for.
struct OpenRequest {
    const char* path;
    bool read_only_file;
    std::int64_t base_offset;
    std::int32_t read_only;
    bool exclusive;
    const char* read_credential;
    const char* write_credential;
};

/// A slot in the making: what it owns goes back to the heap unless the opening succeeds.
struct SlotParts {
    Owned<FileTable> files = make_owned<FileTable>();
    HeapBlock<char> path;

    explicit SlotParts(const char* text) : path(HeapBlock<char>::of(std::strlen(text) + 1)) {
        if (path) std::strcpy(path.get(), text);
    }
    bool complete() const { return files && path; }
    void move_to(vlt_package& slot) {
        slot.files = files.release();
        slot.path = path.release();
    }
};

bool credential_matches(Store& store, int field, const char* given) {
    std::uint8_t stored[VLT_CREDENTIAL_MAX];
    std::memcpy(stored, store.images.header.bytes.data() + field, sizeof stored);
    char decoded[VLT_CREDENTIAL_MAX + 1] = {};
    swap_credential(stored, reinterpret_cast<std::uint8_t*>(decoded));
    return std::strcmp(decoded, given ? given : "") == 0;
}

/// The write credential grants what was asked for, the read credential read-only access.
bool vlt_credentials_check(vlt_package& slot, Store& store, const OpenRequest& request) {
    if (credential_matches(store, VLT_WRITE_CREDENTIAL_OFFSET, request.write_credential)) return true;
    slot.read_only = 1;
    return credential_matches(store, VLT_READ_CREDENTIAL_OFFSET, request.read_credential);
}

/// Whether the package is open exclusively; then its base is the only slot that has it open.
bool vlt_group_exclusive(const vlt_package& base) {
    return base.exclusive != 0;
}

OpenFailure open_once_more(vlt_package& slot, std::int32_t base_index, const OpenRequest& request) {
    const vlt_package& base = vlt_package_table[base_index];
    if (vlt_group_exclusive(base)) return OpenFailure::access;
    if (base.store->host.read_only() && request.read_only == 0) return OpenFailure::access;
    vlt_package made{};
    made.base_slot = base_index + 1;
    made.read_only = request.read_only;
    if (!vlt_credentials_check(made, *base.store, request)) return OpenFailure::credentials;
    SlotParts parts(request.path);
    if (!parts.complete()) return OpenFailure::no_file;
    slot = made;
    parts.move_to(slot);
    return OpenFailure::none;
}

/// Opens the host file for reading and writing where that is asked for, or allowed to fail, else for reading only.
OpenFailure open_host(vlt_package& slot, PackageHost& host, const OpenRequest& request) {
    if (request.read_only_file)
        slot.read_only = 1;
    else if (host.open(request.path, false, request.base_offset))
        return OpenFailure::none;
    else if (request.read_only == 0)
        return OpenFailure::access;
    return host.open(request.path, true, request.base_offset) ? OpenFailure::none : OpenFailure::no_file;
}

OpenFailure open_first(vlt_package& slot, const OpenRequest& request) {
    Owned<Store> store = make_owned<Store>();
    SlotParts parts(request.path);
    if (!store || !parts.complete()) return OpenFailure::no_file;
    vlt_package made{};
    made.read_only = request.read_only;
    made.exclusive = request.exclusive;
    const OpenFailure failure = open_host(made, store->host, request);
    if (failure != OpenFailure::none) return failure;
    if (!vlt_header_load(*store)) return OpenFailure::not_a_package;
    if (!vlt_credentials_check(made, *store, request)) return OpenFailure::credentials;
    store->mutex = mutex_create();
    if (!store->mutex) return OpenFailure::no_file;
    slot = made;
    slot.store = store.release();
    parts.move_to(slot);
    return OpenFailure::none;
}

/// Opens, and stores the handle.
OpenFailure open_package(const OpenRequest& request, std::int32_t* handle) {
    const bool valid = request.path && *request.path && request.base_offset >= 0 &&
                       (request.read_only == 0 || request.read_only == 1);
    if (!valid) return OpenFailure::argument;
    std::int32_t free_slot = 0, base_index = 0;
    if (!vlt_slot_find(request.path, &free_slot, &base_index)) return OpenFailure::no_file;
    vlt_package& slot = vlt_package_table[free_slot];
    *handle = free_slot + 1;
    return base_index >= 0 ? open_once_more(slot, base_index, request) : open_first(slot, request);
}

}  // namespace

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL vlt_package_open_ex(const char* path, std::int32_t read_only_file,
                                                  std::uint32_t offset_low, std::int32_t offset_high,
                                                  std::int32_t read_only, std::int32_t exclusive,
                                                  const char* read_credential, const char* write_credential,
                                                  std::int32_t* wide_names_out, std::int32_t* error_out) {
    if (wide_names_out) *wide_names_out = 0;
    const auto offset = static_cast<std::uint64_t>(static_cast<std::uint32_t>(offset_high)) << 32 | offset_low;
    std::int32_t handle = 0;
    const OpenFailure failure = open_package({.path = path,
                                              .read_only_file = read_only_file != 0,
                                              .base_offset = static_cast<std::int64_t>(offset),
                                              .read_only = read_only,
                                              .exclusive = exclusive != 0,
                                              .read_credential = read_credential,
                                              .write_credential = write_credential},
                                             &handle);
    if (failure != OpenFailure::none) {
        if (error_out) *error_out = static_cast<std::int32_t>(failure);
        return 0;
    }
    if (wide_names_out) *wide_names_out = vlt_package_is_unicode_files(handle);
    return handle;
}

VLT_API std::int32_t VLT_CALL vlt_package_open(const char* path, std::int32_t read_only, std::int32_t exclusive,
                                               const char* read_credential, const char* write_credential,
                                               std::int32_t* wide_names_out, std::int32_t* error_out) {
    return vlt_package_open_ex(path, 0, 0, 0, read_only, exclusive, read_credential, write_credential, wide_names_out,
                               error_out);
}

VLT_API std::int32_t VLT_CALL vlt_package_is_unicode_files(std::int32_t package) {
    vlt_package* slot = package_at(package);
    return slot ? (base_of(*slot).store->images.wide_names ? 1 : 0) : -1;
}

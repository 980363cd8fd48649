// SPDX-License-Identifier: MIT
#include <cstring>

#include "base/owned.h"
#include "platform/host_file.h"
#include "vlt/header_load.h"
#include "vlt/package_table.h"

namespace {

/// What an opening asks for.
struct vlt_open_request {
    const char* path;
    bool read_only_file;
    std::int64_t base_offset;
    std::int32_t read_only;
    bool exclusive;
    const char* read_credential;
    const char* write_credential;
};

/// A slot in the making: what it owns goes back to the heap unless the opening succeeds.
struct vlt_slot_parts {
    Owned<vlt_file_table> files = make_owned<vlt_file_table>();
    HeapBlock<char> path;

    explicit vlt_slot_parts(const char* text) : path(HeapBlock<char>::of(std::strlen(text) + 1)) {
        if (path) std::strcpy(path.get(), text);
    }
    bool complete() const { return files && path; }
    void move_to(vlt_package& slot) {
        slot.files = files.release();
        slot.path = path.release();
    }
};

bool credential_matches(vlt_store& store, int field, const char* given) {
    std::uint8_t stored[VLT_CREDENTIAL_MAX];
    std::memcpy(stored, store.header.data() + field, sizeof stored);
    char decoded[VLT_CREDENTIAL_MAX + 1] = {};
    vlt_credential_swap(stored, reinterpret_cast<std::uint8_t*>(decoded));
    return std::strcmp(decoded, given ? given : "") == 0;
}

/// The write credential grants what was asked for, the read credential read-only access.
bool vlt_credentials_check(vlt_package& slot, vlt_store& store, const vlt_open_request& request) {
    if (credential_matches(store, VLT_WRITE_CREDENTIAL_OFFSET, request.write_credential)) return true;
    slot.read_only = 1;
    return credential_matches(store, VLT_READ_CREDENTIAL_OFFSET, request.read_credential);
}

/// Whether one of the openings of a package is exclusive.
bool vlt_group_exclusive(std::int32_t base_slot) {
    for (std::size_t i = 0; i < vlt_package_table.size(); ++i) {
        const vlt_package& slot = vlt_package_table[i];
        const bool of_group = static_cast<std::int32_t>(i) == base_slot || slot.base_slot == base_slot + 1;
        if (!slot.free() && of_group && slot.exclusive) return true;
    }
    return false;
}

std::int32_t open_shared(vlt_package& slot, std::int32_t base_slot, const vlt_open_request& request) {
    vlt_package& base = vlt_package_table[static_cast<std::size_t>(base_slot)];
    if (vlt_group_exclusive(base_slot)) return VLT_OPEN_ACCESS;
    if (base.store->file_read_only && request.read_only == 0) return VLT_OPEN_ACCESS;
    vlt_package made{};
    made.base_slot = base_slot + 1;
    made.read_only = request.read_only;
    if (!vlt_credentials_check(made, *base.store, request)) return VLT_OPEN_CREDENTIALS;
    vlt_slot_parts parts(request.path);
    if (!parts.complete()) return VLT_OPEN_NO_FILE;
    slot = made;
    parts.move_to(slot);
    return 0;
}

/// Opens the host file the way the request asks; an error code when it cannot.
std::int32_t open_host(vlt_package& slot, vlt_store& store, const vlt_open_request& request) {
    store.file_read_only = request.read_only_file;
    if (request.read_only_file) {
        slot.read_only = 1;
        store.fd = host_open(request.path, false);
    } else {
        store.fd = host_open(request.path, true);
        if (store.fd < 0 && request.read_only == 0) return VLT_OPEN_ACCESS;
        if (store.fd < 0) {
            store.file_read_only = true;
            store.fd = host_open(request.path, false);
        }
    }
    return store.fd < 0 ? VLT_OPEN_NO_FILE : 0;
}

std::int32_t open_first(vlt_package& slot, const vlt_open_request& request) {
    Owned<vlt_store> store = make_owned<vlt_store>();
    vlt_slot_parts parts(request.path);
    if (!store || !parts.complete()) return VLT_OPEN_NO_FILE;
    vlt_package made{};
    made.read_only = request.read_only;
    made.exclusive = request.exclusive;
    store->base_offset = request.base_offset;
    if (const std::int32_t error = open_host(made, *store, request)) return error;
    if (!vlt_header_load(*store)) return VLT_OPEN_NOT_A_PACKAGE;
    if (!vlt_credentials_check(made, *store, request)) return VLT_OPEN_CREDENTIALS;
    store->mutex = mutex_create();
    if (!store->mutex) return VLT_OPEN_NO_FILE;
    slot = made;
    slot.store = store.release();
    parts.move_to(slot);
    return 0;
}

/// Opens, and stores the handle; returns an error code, 0 for success.
std::int32_t open_package(const vlt_open_request& request, std::int32_t* handle) {
    std::int32_t free_slot = 0, base_slot = 0;
    if (!vlt_slot_find(request.path, &free_slot, &base_slot)) return VLT_OPEN_NO_FILE;
    vlt_package& slot = vlt_package_table[static_cast<std::size_t>(free_slot)];
    *handle = free_slot + 1;
    return base_slot >= 0 ? open_shared(slot, base_slot, request) : open_first(slot, request);
}

}  // namespace

std::int32_t vlt_package_open_ex(const char* path, std::int32_t read_only_file, std::uint32_t offset_low,
                                 std::int32_t offset_high, std::int32_t read_only, std::int32_t exclusive,
                                 const char* read_credential, const char* write_credential,
                                 std::int32_t* wide_names_out, std::int32_t* error_out) {
    if (wide_names_out) *wide_names_out = 0;
    const auto offset = static_cast<std::int64_t>(
        static_cast<std::uint64_t>(static_cast<std::uint32_t>(offset_high)) << 32 | offset_low);
    const bool valid = path && *path && offset >= 0 && (read_only == 0 || read_only == 1);
    std::int32_t handle = 0;
    const std::int32_t error = !valid ? VLT_OPEN_ARGUMENT
                                      : open_package({.path = path,
                                                      .read_only_file = read_only_file != 0,
                                                      .base_offset = offset,
                                                      .read_only = read_only,
                                                      .exclusive = exclusive != 0,
                                                      .read_credential = read_credential,
                                                      .write_credential = write_credential},
                                                     &handle);
    if (error != 0) {
        if (error_out) *error_out = error;
        return 0;
    }
    if (wide_names_out) *wide_names_out = vlt_package_is_unicode_files(handle);
    return handle;
}

std::int32_t vlt_package_open(const char* path, std::int32_t read_only, std::int32_t exclusive,
                              const char* read_credential, const char* write_credential, std::int32_t* wide_names_out,
                              std::int32_t* error_out) {
    return vlt_package_open_ex(path, 0, 0, 0, read_only, exclusive, read_credential, write_credential, wide_names_out,
                               error_out);
}

std::int32_t vlt_package_is_unicode_files(std::int32_t package) {
    vlt_package* slot = vlt_package_at(package);
    return slot ? (vlt_package_base(*slot).store->wide_names ? 1 : 0) : -1;
}

// SPDX-License-Identifier: MIT
#include "offline/db/database.h"

#include <algorithm>
#include <cstring>

#include "base/heap.h"
#include "offline/db/field_list.h"
#include "platform/disk_stream.h"

std::int32_t KOfflineDb_OpenPackage(KOfflineDb* db, const char* path) {
    if (disk_path_kind(path) != PathKind::file) return 1;
    db->package = vlt_package_open(path, 0, 0, nullptr, nullptr, nullptr, nullptr);
    return db->package >= 1;
}

void close_package(KOfflineDb* db) {
    if (db->package >= 1) vlt_package_close(db->package);
    db->package = 0;
}

void keep_path(KOfflineDb* db, const char* path) {
    const std::size_t length = std::min(std::strlen(path), sizeof db->path - 1);
    std::memmove(db->path, path, length);
    db->path[length] = 0;
}

void KOfflineDb_Constructor(KOfflineDb* db) {
    if (!db) return;
    std::memset(db, 0, sizeof *db);
    db->root_nid = -1;
    db->check_in_rec = -1;
    for (int i = 0; i < TABLE_COUNT; ++i) KOfflineTable_Constructor(&db->tables[i], db, kTableNames[i]);
}

void KOfflineDb_Destructor(KOfflineDb* db) {
    if (!db) return;
    for (KOfflineTable& table : db->tables) KOfflineTable_Destructor(&table);
    close_package(db);
    heap_free(db->user_data);
    db->user_data = nullptr;
    db->user_data_size = 0;
}

void KOfflineDb_Reset(KOfflineDb* db) {
    KOfflineDb_Destructor(db);
    KOfflineDb_Constructor(db);
}

void* KOfflineDb_InitUserData(KOfflineDb* db, std::int32_t size, std::int32_t keep) {
    if (!db || size < 0) return nullptr;
    void* block = heap_alloc_zeroed(static_cast<std::size_t>(size));
    if (!block) return nullptr;
    if (keep && db->user_data && db->user_data_size >= 1 && size >= db->user_data_size) {
        std::memcpy(block, db->user_data, static_cast<std::size_t>(db->user_data_size));
    }
    heap_free(db->user_data);
    db->user_data = block;
    db->user_data_size = size;
    return block;
}

void* KOfflineDb_GetUserData(KOfflineDb* db, std::int32_t* size_out) {
    if (size_out) *size_out = db ? db->user_data_size : 0;
    return db ? db->user_data : nullptr;
}

std::int32_t KOfflineDb_GetPackageHandle(KOfflineDb* db) {
    return db ? db->package : 0;
}

void KOfflineDb_GetPath(KOfflineDb* db, char* dst) {
    if (dst) std::strcpy(dst, db ? db->path : "");
}

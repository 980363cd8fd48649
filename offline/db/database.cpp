// SPDX-License-Identifier: MIT
#include "offline/db/database.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "base/heap.h"
#include "offline/db/field_list.h"
#include "offline/tables/headed.h"
#include "offline/tables/text.h"
#include "platform/disk_path.h"

namespace vlt {

namespace {

struct UserDataHead {
    alignas(std::max_align_t) std::size_t size;  // whatever a caller writes into `user_data_size`
};

using UserData = Headed<UserDataHead, char>;

}  // namespace

bool KOfflineDb_OpenPackage(KOfflineDb* db, const char* path) {
    if (disk_path_kind(path) != PathKind::file) return true;
    db->package = vlt_package_open(path, 0, 0, nullptr, nullptr, nullptr, nullptr);
    return db->package >= 1;
}

void close_package(KOfflineDb* db) {
    if (db->package >= 1) vlt_package_close(db->package);
    db->package = 0;
}

void keep_path(KOfflineDb* db, const char* path) {
    text_copy_cut(db->path, sizeof db->path, path);
}

void end_texts(KOfflineDb* db) {
    db->path[sizeof db->path - 1] = 0;
    db->separator[sizeof db->separator - 1] = 0;
}

}  // namespace vlt

using namespace vlt;

VLT_API void VLT_CALL KOfflineDb_Constructor(KOfflineDb* db) {
    if (!db) return;
    std::memset(db, 0, sizeof *db);
    db->root_nid = -1;
    db->check_in_rec = -1;
    for (int i = 0; i < TABLE_COUNT; ++i) KOfflineTable_Constructor(&db->tables[i], db, kTableNames[i]);
}

VLT_API void VLT_CALL KOfflineDb_Destructor(KOfflineDb* db) {
    if (!db) return;
    for (KOfflineTable& table : db->tables) KOfflineTable_Destructor(&table);
    close_package(db);
    UserData::free(static_cast<char*>(db->user_data));
    db->user_data = nullptr;
    db->user_data_size = 0;
}

VLT_API void VLT_CALL KOfflineDb_Reset(KOfflineDb* db) {
    KOfflineDb_Destructor(db);
    KOfflineDb_Constructor(db);
}

VLT_API void* VLT_CALL KOfflineDb_InitUserData(KOfflineDb* db, std::int32_t size, std::int32_t keep) {
    if (!db || size < 0) return nullptr;
    const auto wanted = static_cast<std::size_t>(size);
    char* block = UserData::resize(nullptr, wanted);
    if (!block) return nullptr;
    UserData::head(block)->size = wanted;
    std::memset(block, 0, wanted);
    auto* old = static_cast<char*>(db->user_data);
    if (keep && old && db->user_data_size >= 1 && size >= db->user_data_size) {
        std::memcpy(block, old, std::min(static_cast<std::size_t>(db->user_data_size), UserData::head(old)->size));
    }
    UserData::free(old);
    db->user_data = block;
    db->user_data_size = size;
    return block;
}

VLT_API void* VLT_CALL KOfflineDb_GetUserData(KOfflineDb* db, std::int32_t* size_out) {
    if (size_out) *size_out = db ? db->user_data_size : 0;
    return db ? db->user_data : nullptr;
}

VLT_API std::int32_t VLT_CALL KOfflineDb_GetPackageHandle(KOfflineDb* db) {
    return db ? db->package : 0;
}

VLT_API void VLT_CALL KOfflineDb_GetPath(KOfflineDb* db, char* dst) {
    if (!dst) return;
    if (db) end_texts(db);
    std::strcpy(dst, db ? db->path : "");
}

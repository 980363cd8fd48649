/* SPDX-License-Identifier: MIT */
#ifndef VLT_OFFLINE_H
#define VLT_OFFLINE_H

#include <stdint.h>

#include "vlt.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Codes of KOfflineDb.error_code. */
enum {
    KOFFLINE_ERR_NONE = 0,
    KOFFLINE_ERR_MEMORY = 1,
    KOFFLINE_ERR_FILE = 2,
    KOFFLINE_ERR_SEPARATOR = 3,
    KOFFLINE_ERR_FIELD = 4,
    KOFFLINE_ERR_INDEX = 5,
    KOFFLINE_ERR_RECORD = 6,
    KOFFLINE_ERR_SCHEMA_WRITE = 7,
    KOFFLINE_ERR_TABLE = 8
};

typedef struct KOfflineDb KOfflineDb;
typedef struct KOfflineRecord KOfflineRecord;

typedef struct KOfflineField {
    char field_name[33];
    int32_t* index;
} KOfflineField;

typedef struct KOfflineTable {
    KOfflineDb* db;
    char table_name[32];
    KOfflineField* fields;
    int32_t field_count;
    int32_t indexes_stale;
    KOfflineRecord** records;
    int32_t record_capacity;
    int32_t record_count;
    int32_t nid_watermark;
} KOfflineTable;

struct KOfflineDb {
    int32_t package;
    char path[260];
    int32_t user_data_size;
    void* user_data;
    int32_t root_nid;
    int32_t field_slots[27];
    KOfflineTable tables[6];
    char separator[16];
    int32_t check_in_rec;
    int32_t error_code;
    char error_text[256];
};

/* Tables. */
VLT_API void VLT_CALL KOfflineTable_Constructor(KOfflineTable* table, KOfflineDb* db, const char* name);
VLT_API void VLT_CALL KOfflineTable_Destructor(KOfflineTable* table);
VLT_API void VLT_CALL KOfflineTable_Clear(KOfflineTable* table);
VLT_API KOfflineDb* VLT_CALL KOfflineTable_GetOfflineDb(KOfflineTable* table);
VLT_API const char* VLT_CALL KOfflineTable_GetTblName(KOfflineTable* table);
VLT_API int32_t VLT_CALL KOfflineTable_AddFld(KOfflineTable* table, const char* name);
VLT_API int32_t VLT_CALL KOfflineTable_GetFldsCount(KOfflineTable* table);
VLT_API int32_t VLT_CALL KOfflineTable_GetFldIndex(KOfflineTable* table, const char* name);
VLT_API int32_t VLT_CALL KOfflineTable_GetFldName(KOfflineTable* table, int32_t field, char* name);
VLT_API int32_t VLT_CALL KOfflineTable_GetRecsCount(KOfflineTable* table);
VLT_API int32_t VLT_CALL KOfflineTable_AddRec(KOfflineTable* table, const char* line, const char* separator);
VLT_API int32_t VLT_CALL KOfflineTable_SetFldValue(KOfflineTable* table, int32_t rec, int32_t field, const char* value);
VLT_API const char* VLT_CALL KOfflineTable_GetFldValue(KOfflineTable* table, int32_t rec, int32_t field);
VLT_API int32_t VLT_CALL KOfflineTable_DelRec(KOfflineTable* table, int32_t rec);
VLT_API int32_t VLT_CALL KOfflineTable_CopyRec(KOfflineTable* table, int32_t rec);
VLT_API int32_t VLT_CALL KOfflineTable_GetRecNID(KOfflineTable* table, int32_t rec);
VLT_API int32_t VLT_CALL KOfflineTable_SetRecNID(KOfflineTable* table, int32_t rec, int32_t nid);
VLT_API int32_t VLT_CALL KOfflineTable_WriteFile(KOfflineTable* table, const char* path, const char* separator);
VLT_API int32_t VLT_CALL KOfflineTable_LoadIdx(KOfflineTable* table, const char* name);
VLT_API int32_t* VLT_CALL KOfflineTable_GetIndexRecs(KOfflineTable* table, int32_t field);
VLT_API int32_t VLT_CALL KOfflineTable_Search(KOfflineTable* table, int32_t field, const char* key, int32_t* recs,
                                              int32_t capacity);

/* Databases. */
VLT_API void VLT_CALL KOfflineDb_Constructor(KOfflineDb* db);
VLT_API void VLT_CALL KOfflineDb_Destructor(KOfflineDb* db);
VLT_API void VLT_CALL KOfflineDb_Reset(KOfflineDb* db);
VLT_API void* VLT_CALL KOfflineDb_InitUserData(KOfflineDb* db, int32_t size, int32_t keep);
VLT_API void* VLT_CALL KOfflineDb_GetUserData(KOfflineDb* db, int32_t* size_out);
VLT_API int32_t VLT_CALL KOfflineDb_GetPackageHandle(KOfflineDb* db);
VLT_API void VLT_CALL KOfflineDb_GetPath(KOfflineDb* db, char* dst);
VLT_API int32_t VLT_CALL KOfflineDb_StrSwap(const char* src, char* dst, int32_t dst_size, int32_t direction);
VLT_API int32_t VLT_CALL KOfflineDb_Load(KOfflineDb* db, const char* path);
VLT_API int32_t VLT_CALL KOfflineDb_Save(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_SaveAs(KOfflineDb* db, const char* path);

#ifdef __cplusplus
}
#endif

#endif

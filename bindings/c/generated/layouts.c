/* SPDX-License-Identifier: MIT */
/* Made by bindings/generate.py from the public headers. */
#include <stdio.h>

#include "vlt.h"
#include "offline.h"

int main(void) {
    printf("KOfflineField %d\n", (int)sizeof(KOfflineField));
    printf("KOfflineField.field_name %d\n", (int)offsetof(KOfflineField, field_name));
    printf("KOfflineField.index %d\n", (int)offsetof(KOfflineField, index));
    printf("KOfflineTable %d\n", (int)sizeof(KOfflineTable));
    printf("KOfflineTable.db %d\n", (int)offsetof(KOfflineTable, db));
    printf("KOfflineTable.table_name %d\n", (int)offsetof(KOfflineTable, table_name));
    printf("KOfflineTable.fields %d\n", (int)offsetof(KOfflineTable, fields));
    printf("KOfflineTable.field_count %d\n", (int)offsetof(KOfflineTable, field_count));
    printf("KOfflineTable.indexes_stale %d\n", (int)offsetof(KOfflineTable, indexes_stale));
    printf("KOfflineTable.records %d\n", (int)offsetof(KOfflineTable, records));
    printf("KOfflineTable.record_capacity %d\n", (int)offsetof(KOfflineTable, record_capacity));
    printf("KOfflineTable.record_count %d\n", (int)offsetof(KOfflineTable, record_count));
    printf("KOfflineTable.nid_watermark %d\n", (int)offsetof(KOfflineTable, nid_watermark));
    printf("KOfflineDb %d\n", (int)sizeof(KOfflineDb));
    printf("KOfflineDb.package %d\n", (int)offsetof(KOfflineDb, package));
    printf("KOfflineDb.path %d\n", (int)offsetof(KOfflineDb, path));
    printf("KOfflineDb.user_data_size %d\n", (int)offsetof(KOfflineDb, user_data_size));
    printf("KOfflineDb.user_data %d\n", (int)offsetof(KOfflineDb, user_data));
    printf("KOfflineDb.root_nid %d\n", (int)offsetof(KOfflineDb, root_nid));
    printf("KOfflineDb.field_slots %d\n", (int)offsetof(KOfflineDb, field_slots));
    printf("KOfflineDb.tables %d\n", (int)offsetof(KOfflineDb, tables));
    printf("KOfflineDb.separator %d\n", (int)offsetof(KOfflineDb, separator));
    printf("KOfflineDb.check_in_rec %d\n", (int)offsetof(KOfflineDb, check_in_rec));
    printf("KOfflineDb.error_code %d\n", (int)offsetof(KOfflineDb, error_code));
    printf("KOfflineDb.error_text %d\n", (int)offsetof(KOfflineDb, error_text));
    return 0;
}

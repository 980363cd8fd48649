/* SPDX-License-Identifier: MIT */
/*
 * exchange PACKAGE: edits a package that another target wrote. Loads its database, adds an item, saves, appends to
 * one file, deletes another, makes one, gives every file the same times, and prints each file's size and a sum of its
 * bytes. After that nothing in the package depends on the clock: on every target it has the same bytes.
 */
#include "offline.h"
#include "vlt.h"

#include <stdio.h>

static int edit_database(const char* path) {
    static KOfflineDb db;
    KOfflineTable* items = KOfflineDb_GetTable_BITM(&db);
    int32_t made;
    int done;
    KOfflineDb_Constructor(&db);
    if (!KOfflineDb_Load(&db, path)) return 0;
    made = KOfflineTable_AddRec(items, "", db.separator);
    done = KOfflineTable_SetFldValue(items, made, KOfflineDb_GetFld_BITM_CCODE(&db), "EQ-830") &&
           KOfflineTable_SetFldValue(items, made, KOfflineDb_GetFld_BITM_CNAME(&db), "Basket, 20 l / front") &&
           KOfflineDb_Save(&db);
    KOfflineDb_Destructor(&db);
    return done;
}

/* The new file takes the entry of the deleted one. */
static int edit_files(int32_t package) {
    static const char piece[10000] = "appended";
    const uint32_t file = (uint32_t)vlt_file_open(package, "bcapp.txt", VLT_MODE_APPEND, 0, 0, NULL);
    return vlt_file_write(file, piece, sizeof piece) && vlt_file_close(file) &&
           vlt_file_delete(package, "bitdwg.txt") &&
           vlt_file_close((uint32_t)vlt_file_open(package, "new", VLT_MODE_WRITE, 0, 0, NULL));
}

static uint32_t sum_of(int32_t package, const char* name) {
    unsigned char piece[1000];
    uint32_t sum = 1;
    int32_t length;
    const uint32_t file = (uint32_t)vlt_file_open(package, name, VLT_MODE_READ, 0, 0, NULL);
    while ((length = vlt_file_read(file, piece, sizeof piece)) > 0) {
        for (int32_t i = 0; i < length; ++i) sum = sum * 31 + piece[i];
    }
    vlt_file_close(file);
    return sum;
}

static int list(int32_t package) {
    char name[VLT_NAME_MAX + 1];
    int64_t size;
    int32_t at = 0;
    while ((at = vlt_package_enum(package, at, name, NULL, &size, NULL, NULL, NULL)) != 0) {
        printf("%s %d %lu\n", name, (int)size, (unsigned long)sum_of(package, name));
        if (!vlt_file_set_time(package, name, 20050321.140709, 20061231.235959, 0)) return 0;
    }
    return 1;
}

int main(int count, char** arguments) {
    int32_t package;
    if (count != 2 || !edit_database(arguments[1])) return 1;
    package = vlt_package_open(arguments[1], 0, 0, "", "", NULL, NULL);
    return edit_files(package) && list(package) && vlt_package_close(package) ? 0 : 1;
}

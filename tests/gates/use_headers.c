/* SPDX-License-Identifier: MIT */
/* Compiled as C and as C++: includes each public header and calls both halves of the library. */
#include "offline.h"
#include "vlt.h"

#include <stdio.h>
#include <string.h>

static int store_works(void) {
    const char text[] = "twelve bytes";
    char back[sizeof text] = "";
    uint32_t error = 0;
    if (!vlt_package_create("gate.vlt", 0, 0, NULL, NULL)) return 0;
    const int32_t package = vlt_package_open("gate.vlt", 0, 0, NULL, NULL, NULL, NULL);
    const uint32_t file = (uint32_t)vlt_file_open(package, "a", VLT_MODE_WRITE, 0, 1, &error);
    if (!file || !vlt_file_write(file, text, (int32_t)sizeof text) || !vlt_file_set_pos_bof(file)) return 0;
    if (vlt_file_read(file, back, (int32_t)sizeof back) != (int32_t)sizeof text) return 0;
    return strcmp(back, text) == 0 && vlt_file_close(file) && vlt_package_close(package);
}

static int database_works(void) {
    static KOfflineDb db;
    KOfflineDb_Constructor(&db);
    const int32_t loaded = KOfflineDb_Load(&db, "no such file");
    const int32_t code = db.error_code;
    KOfflineDb_Destructor(&db);
    return !loaded && code == KOFFLINE_ERR_FILE;
}

int main(void) {
    if (!store_works()) return puts("the store failed"), 1;
    if (!database_works()) return puts("the database failed"), 1;
    return 0;
}

/* SPDX-License-Identifier: MIT */
/*
 * A client as MSVC's conventions make it: compiled by clang for the windows-msvc target, once as C and once as C++,
 * and linked with vlt.lib and ExitProcess alone. It has no runtime library, so it brings its own entry point and
 * compares by itself; it ends with the number of the step that failed, or with 0.
 */
#include "offline.h"
#include "vlt.h"

#ifdef __cplusplus
extern "C" {
#endif
int _fltused = 0; /* what MSVC's linker asks for where numbers with a point are used */
void start(void);
__declspec(dllimport) void __stdcall ExitProcess(unsigned int status);
#ifdef __cplusplus
}
#endif

static KOfflineDb db;
static const char text[] = "twelve bytes";

static int same(const char* one, const char* other) {
    while (*one && *one == *other) ++one, ++other;
    return *one == *other;
}

static int store_fails(void) {
    char back[sizeof text] = "";
    uint32_t error = 9;
    uint32_t kind = 0;
    int64_t size = 0;
    double created = 0;
    double written = 0;
    int32_t package;
    uint32_t file;
    if (!vlt_package_create("msvc.vlt", 0, 0, 0, 0)) return 1;
    package = vlt_package_open_ex("msvc.vlt", 0, 0, 0, 0, 0, 0, 0, 0, 0);
    file = (uint32_t)vlt_file_open(package, "a", VLT_MODE_WRITE, 0, 1, &error);
    if (!file || error != VLT_FILE_OK || !vlt_file_write(file, text, sizeof text)) return 2;
    if (!vlt_file_set_pos(file, 7) || vlt_file_read(file, back, sizeof back) != sizeof text - 7) return 3;
    if (!same(back, "bytes") || !vlt_file_close(file)) return 4;
    if (!vlt_file_set_time(package, "a", 20050321.140709, 0, 20061231.235959)) return 5;
    if (!vlt_file_get_info(package, "a", &kind, &size, &created, 0, &written)) return 6;
    if (size != sizeof text || created != 20050321.140709 || written != 20061231.235959) return 7;
    return vlt_package_close(package) ? 0 : 8;
}

static int database_fails(void) {
    KOfflineTable* table = KOfflineDb_GetTable_BITCAP(&db);
    KOfflineDb_Constructor(&db);
    if (KOfflineDb_Load(&db, "no such file") || db.error_code != KOFFLINE_ERR_FILE) return 9;
    KOfflineTable_AddFld(table, "NID");
    if (KOfflineTable_AddRec(table, "41", ",") != 0 || KOfflineTable_AddRec(table, "", ",") != 1) return 10;
    if (!same(table->table_name, "BITCAP") || table->record_count != 2 || table->db != &db) return 11;
    if (!same(KOfflineTable_GetFldValue(table, 1, 0), "42")) return 12;
    KOfflineDb_Destructor(&db);
    return 0;
}

/* A return would end this thread alone, and the process only where the system has started no other in it. */
void start(void) {
    const int failed = store_fails();
    ExitProcess((unsigned int)(failed ? failed : database_fails()));
}

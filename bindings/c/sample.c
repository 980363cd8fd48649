/* SPDX-License-Identifier: MIT */
/* sample FOLDER PACKAGE: packs the database of a folder, lists the package, prints the bill of material. C99. */
#include "offline.h"
#include "vlt.h"

#include <stdio.h>
#include <stdlib.h>

static const char* const files[] = {"kdbmain.txt", "bitm.txt",  "bbom.txt",  "bdwg.txt",
                                    "bitdwg.txt",  "bcapp.txt", "bitcap.txt"};

static int fail(const char* what) {
    fprintf(stderr, "sample: %s\n", what);
    exit(1);
}

static void pack_file(int32_t package, const char* folder, const char* name) {
    char path[1024];
    char piece[4096];
    size_t length;
    FILE* source;
    const uint32_t target = (uint32_t)vlt_file_open(package, name, VLT_MODE_WRITE, 0, 1, NULL);
    snprintf(path, sizeof path, "%s/%s", folder, name);
    source = fopen(path, "rb");
    if (!source || !target) fail(path);
    while ((length = fread(piece, 1, sizeof piece, source)) > 0) {
        if (!vlt_file_write(target, piece, (int32_t)length)) fail("cannot write");
    }
    vlt_file_close(target);
    fclose(source);
}

static void list(int32_t package) {
    char name[VLT_NAME_MAX + 1];
    int64_t size;
    int32_t at = 0;
    while ((at = vlt_package_enum(package, at, name, NULL, &size, NULL, NULL, NULL)) != 0) {
        printf("%s %ld\n", name, (long)size);
    }
}

static const char* value(KOfflineTable* table, int32_t record, int32_t field) {
    const char* text = KOfflineTable_GetFldValue(table, record, field);
    return text ? text : "";
}

/* Prints an item and below it, in the order of the lines, what it consists of. */
static void print_item(KOfflineDb* db, int32_t item, const char* quantity, int level) {
    KOfflineTable* items = KOfflineDb_GetTable_BITM(db);
    KOfflineTable* lines = KOfflineDb_GetTable_BBOM(db);
    const int32_t count = KOfflineTable_GetRecsCount(lines);
    const int32_t nid = KOfflineTable_GetRecNID(items, item);
    int32_t line;
    printf("%*s%s x %s %s\n", 2 * level, "", quantity, value(items, item, KOfflineDb_GetFld_BITM_CCODE(db)),
           value(items, item, KOfflineDb_GetFld_BITM_CNAME(db)));
    for (line = 0; line < count && level < 100; ++line) {
        if (atoi(value(lines, line, KOfflineDb_GetFld_BBOM_NPID(db))) == nid) {
            const int32_t child = atoi(value(lines, line, KOfflineDb_GetFld_BBOM_NCID(db)));
            print_item(db, KOfflineDb_GetRecByNID_BITM(db, child),
                       value(lines, line, KOfflineDb_GetFld_BBOM_FCOUNT(db)), level + 1);
        }
    }
}

int main(int count, char** arguments) {
    static KOfflineDb db;
    int32_t roots[16];
    int32_t found;
    int32_t package;
    if (count != 3) fail("FOLDER PACKAGE");

    if (!vlt_package_create(arguments[2], 0, 1, "", "")) fail("cannot make the package");
    package = vlt_package_open(arguments[2], 0, 0, "", "", NULL, NULL);
    for (size_t i = 0; i < sizeof files / sizeof files[0]; ++i) pack_file(package, arguments[1], files[i]);
    list(package);
    vlt_package_close(package);

    KOfflineDb_Constructor(&db);
    if (!KOfflineDb_Load(&db, arguments[2])) fail(db.error_text);
    found = KOfflineDb_GetRootNodes(&db, roots, 16);
    for (int32_t i = 0; i < found && i < 16; ++i) print_item(&db, roots[i], "1", 0);
    KOfflineDb_Destructor(&db);
    return 0;
}

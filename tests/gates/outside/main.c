/* SPDX-License-Identifier: MIT */
#include <offline.h>
#include <stdio.h>
#include <vlt.h>

int main(void) {
    KOfflineDb db;
    KOfflineDb_Constructor(&db);
    KOfflineDb_Destructor(&db);
    void* memory = vlt_alloc_mem(100);
    vlt_free_mem(memory);
    puts(memory ? "the installed library works" : "no memory");
    return memory ? 0 : 1;
}

# SPDX-License-Identifier: MIT
# Binds the functions __wrap_NAME of host_faults.cpp in front of those of the library, in a program or in whatever
# links the library `target`.
function(vlt_host_faults target)
    foreach(function IN ITEMS
            heap_alloc heap_alloc_zeroed heap_resize heap_free
            mutex_create mutex_destroy mutex_lock mutex_unlock
            host_open host_close host_read host_write host_size host_extend
            disk_open disk_read disk_write disk_size disk_flush disk_close)
        target_link_options(${target} PUBLIC LINKER:--wrap=${function})
    endforeach()
endfunction()

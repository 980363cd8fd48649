// SPDX-License-Identifier: MIT
#include "platform/mutex.h"

#include <windows.h>

namespace vlt {

namespace {

HANDLE native(HostMutex* mutex) {
    return reinterpret_cast<HANDLE>(mutex);  // a HostMutex is the kernel's handle itself
}

}  // namespace

HostMutex* mutex_create() {
    return reinterpret_cast<HostMutex*>(::CreateMutexA(nullptr, FALSE, nullptr));
}

void mutex_destroy(HostMutex* mutex) {
    ::CloseHandle(native(mutex));
}

void mutex_lock(HostMutex* mutex) {
    ::WaitForSingleObject(native(mutex), INFINITE);
}

void mutex_unlock(HostMutex* mutex) {
    ::ReleaseMutex(native(mutex));
}

}  // namespace vlt

// SPDX-License-Identifier: MIT
#include "platform/mutex.h"

#include <pthread.h>
#include <new>

#include "base/heap.h"

namespace vlt {

struct HostMutex {
    pthread_mutex_t native;
};

HostMutex* mutex_create() {
    auto* mutex = static_cast<HostMutex*>(heap_alloc(sizeof(HostMutex)));
    if (mutex && pthread_mutex_init(&mutex->native, nullptr) != 0) {
        heap_free(mutex);
        return nullptr;
    }
    return mutex;
}

void mutex_destroy(HostMutex* mutex) {
    pthread_mutex_destroy(&mutex->native);
    heap_free(mutex);
}

void mutex_lock(HostMutex* mutex) {
    pthread_mutex_lock(&mutex->native);
}

void mutex_unlock(HostMutex* mutex) {
    pthread_mutex_unlock(&mutex->native);
}

}  // namespace vlt

// SPDX-License-Identifier: MIT
// The mutex of one package.
#pragma once

namespace vlt {

struct HostMutex;

extern "C" {

/// A new mutex that nobody holds, or null when the system refuses one.
HostMutex* mutex_create();
void mutex_destroy(HostMutex* mutex);

/// Waits without time limit.
void mutex_lock(HostMutex* mutex);
void mutex_unlock(HostMutex* mutex);

}  // extern "C"

/// Holds a mutex for one scope.
class MutexHold {
public:
    explicit MutexHold(HostMutex* mutex) : mutex_(mutex) { mutex_lock(mutex_); }
    ~MutexHold() { mutex_unlock(mutex_); }
    MutexHold(const MutexHold&) = delete;
    MutexHold& operator=(const MutexHold&) = delete;

private:
    HostMutex* mutex_;
};

}  // namespace vlt

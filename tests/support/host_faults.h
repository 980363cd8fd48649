// SPDX-License-Identifier: MIT
// Doubles for the library's host calls and allocations, bound in front of the real ones at link time: they make the
// n-th call fail, and count what is held. fault_tests and the fuzz targets link them.
#pragma once

#include <cstdint>

/// The calls that may fail. A set of them is a sum.
enum FaultCall : unsigned {
    kFaultOpen = 1,
    kFaultRead = 2,
    kFaultWrite = 4,
    kFaultSize = 8,
    kFaultExtend = 16,
    kFaultDisk = 32,  // every call of a disk stream
    kFaultMemory = 64,
    kFaultMutex = 128,
    kFaultHost = kFaultOpen + kFaultRead + kFaultWrite + kFaultSize + kFaultExtend + kFaultDisk,
    kFaultSystem = kFaultMemory + kFaultMutex
};

/// How a call fails. Where a manner means nothing to a call, it fails cleanly.
enum class FaultManner {
    cleanly,     // nothing is done
    cut_short,   // half of the bytes are read, written or added
    lost_reply,  // everything is done, and failure is reported
    stops        // half of the bytes of the first call that fails, nothing from then on: a process that ends
};

/// From now on host files hold no bytes at this offset and beyond: what fits is written, and a write that does not
/// fit fails.
void LimitHostFiles(std::int64_t length);
/// Whether the present limit made a write fail.
bool HostLimitReached();

/// Makes calls fail for the length of its scope; one at a time.
class Fault {
public:
    /// The `nth` call (from 1) of the set fails; with `from_then_on` every later one too, whatever they are.
    Fault(unsigned calls, int nth, FaultManner manner = FaultManner::cleanly, bool from_then_on = false);
    ~Fault();
    Fault(const Fault&) = delete;
    Fault& operator=(const Fault&) = delete;

    /// Whether the call came that was to fail.
    bool hit() const;
};

/// What the library holds at this moment.
struct HeldResources {
    long blocks = 0;   // of the heap
    long files = 0;    // host files
    long streams = 0;  // disk streams
    long mutexes = 0;
    long locks = 0;
    bool operator==(const HeldResources&) const = default;
};

HeldResources HeldNow();

// SPDX-License-Identifier: MIT
#include "fuzz/support.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "platform/clock.h"
#include "platform/multibyte.h"
#include "tests/support/host_faults.h"

using namespace vlt;

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kFirstSecond = 1'100'000'000;
constexpr std::int64_t kLongestFile = 64 << 20;  // what a damaged package can ask for must not fill the machine

class Folder {
public:
    Folder() {
        std::string made = (fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path()) / "vlt_fuzz.XXXXXX";
        Require(::mkdtemp(made.data()) != nullptr);
        path = made;
        LimitHostFiles(kLongestFile);
    }
    ~Folder() { fs::remove_all(path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    fs::path path;
};

Folder& ScratchFolder() {
    static Folder folder;
    return folder;
}

std::int64_t seconds_now = kFirstSecond;
bool double_bytes = false;

}  // namespace

void Require(bool holds, const char* file, int line) {
    if (holds) return;
    std::fprintf(stderr, "%s:%d: a property does not hold\n", file, line);
    std::abort();
}

void RequireNone(const std::string& faults, const char* file, int line) {
    if (!faults.empty()) std::fprintf(stderr, "%s\n", faults.c_str());
    Require(faults.empty(), file, line);
}

std::string Scratch(const std::string& name) {
    return ScratchFolder().path / name;
}

void ResetHost() {
    LimitHostFiles(kLongestFile);
    UseDoubleBytes(false);
    seconds_now = kFirstSecond;
    Require(HeldNow() == HeldResources{});
    for (const fs::directory_entry& entry : fs::directory_iterator(ScratchFolder().path)) fs::remove_all(entry);
}

void TickClock(int seconds) {
    seconds_now += seconds;
}

void UseDoubleBytes(bool on) {
    double_bytes = on;
}

extern "C" {

/// Freed blocks are kept from reuse for a while, but not for so long that every input pays for fresh memory.
const char* __asan_default_options() {
    return "quarantine_size_mb=8";
}

const char* __real_multibyte_next(const char* text);
bool __real_multibyte_ascii_is_whole();

std::int64_t __wrap_clock_seconds() {
    return seconds_now;
}

const char* __wrap_multibyte_next(const char* text) {
    if (!double_bytes || static_cast<unsigned char>(*text) < 0x81) return __real_multibyte_next(text);
    return text + (text[1] ? 2 : 1);
}

bool __wrap_multibyte_ascii_is_whole() {
    return !double_bytes && __real_multibyte_ascii_is_whole();
}

}  // extern "C"

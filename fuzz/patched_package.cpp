// SPDX-License-Identifier: MIT
#include "fuzz/patched_package.h"

#include <map>

#include "fuzz/package_script.h"
#include "fuzz/support.h"
#include "tests/support/store_calls.h"

namespace {

constexpr std::size_t kBlock = 4096;

void AppendTo(std::int32_t package, const char* name, std::size_t length) {
    const std::uint32_t file = OpenFile(package, name, VLT_MODE_APPEND);
    Require(WriteTo(file, Pattern(name, length)) && vlt_file_close(file) == 1);
}

Bytes MakeBase(Base base, const std::string& path) {
    if (base == kBaseZeros) return Bytes(16 * kBlock);
    Require(vlt_package_create(path.c_str(), base == kBaseWide, base == kBaseFull ? 3 : 0, "r", "w") == 1);
    const std::int32_t package = vlt_package_open(path.c_str(), 0, 0, "r", "w", nullptr, nullptr);
    for (const std::size_t length : {3001U, 6002U, 9003U})
        for (const char* name : {"f0", "f1", "F2"}) AppendTo(package, name, length);
    if (base == kBaseFull) AppendTo(package, "f3", 981 * kBlock);  // one header block has words for 998 blocks
    vlt_package_close_all();
    Bytes host = ReadHostFile(path);
    ResetHost();
    Require(base != kBaseFull || host.size() == 998 * kBlock);
    return host;
}

void PatchEntry(Input& input, Bytes& host, std::size_t base) {
    static const std::int64_t values[] = {0, 1, 2, 3, 255, 4095, 4096, 8193, -1, INT64_MAX, INT64_MIN, 1LL << 40};
    const std::size_t size = base < host.size() && host[base] == 'w' ? 1063 : 550;
    const std::size_t entry = base + kBlock + input.Byte() % 8 * size;  // the directory's first block is block 1
    const std::uint8_t field = input.Byte() % 4, number = input.Byte();
    if (entry + 45 > host.size()) return;
    if (field == 0) StoreAt(host, entry, number);
    if (field == 1) StoreAt(host, entry + 1, std::uint32_t{number});
    if (field == 2) StoreAt(host, entry + 5, values[number % std::size(values)]);
    if (field == 3) std::fill_n(host.begin() + static_cast<std::ptrdiff_t>(entry) + 37, 8, number);
}

void ApplyPatches(Input& input, Bytes& host, std::size_t base) {
    for (std::uint8_t patch; (patch = input.Byte() % kPatchCount) != kPatchEnd;) {
        if (patch == kPatchEntry) PatchEntry(input, host, base);
        if (patch == kPatchWord || patch == kPatchBytes) {
            std::size_t at = base + (patch == kPatchWord ? 101 + std::size_t{4} * input.Byte() : input.Number(3));
            for (int i = 0, count = patch == kPatchWord ? 4 : input.Byte(); i < count; ++i, ++at) {
                const std::uint8_t value = input.Byte();
                if (at < host.size()) host[at] = value;
            }
        }
        if (patch == kPatchLength) host.resize(std::min<std::size_t>(input.Number(3), host.size() + 3 * kBlock));
    }
}

}  // namespace

Bytes PatchedPackage(Input& input, const std::string& scratch, std::size_t* base) {
    static std::map<Base, Bytes> images;
    const std::uint8_t pick = input.Byte();
    const Base kind = pick == kBaseFull ? kBaseFull : static_cast<Base>(pick % kBaseFull);  // the full one is slow
    if (images[kind].empty()) images[kind] = MakeBase(kind, scratch);
    *base = kind == kBaseBehind ? 10000 : 0;
    Bytes host(*base, 0x55);
    host.insert(host.end(), images[kind].begin(), images[kind].end());
    ApplyPatches(input, host, *base);
    return host;
}

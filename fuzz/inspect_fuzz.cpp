// SPDX-License-Identifier: MIT
// The reader that works without the library, on a package, sound or damaged: it takes no more steps and bytes than
// the host file has, what it calls sound the library reads as it does, and there it finds nothing to recover.
#include "fuzz/patched_package.h"
#include "fuzz/support.h"
#include "inspect/check.h"
#include "inspect/claims.h"
#include "inspect/recover.h"
#include "inspect/stored_bytes.h"
#include "tests/support/store_calls.h"

namespace {

struct Findings {
    std::int64_t all = 0, damage = 0;
};

Findings Count(const inspect::Package& package) {
    Findings count;
    inspect::Check(package, [&](const inspect::Finding& finding) {
        ++count.all;
        count.damage += inspect::SeverityOf(finding.kind) == inspect::Severity::damage;
    });
    const std::int64_t things = 4 * std::int64_t{package.block_count()} + package.entry_count() + 100;
    Require(count.all <= 10 * things);
    return count;
}

Bytes Stored(const inspect::Package& package, const inspect::Entry& entry, std::int64_t size) {
    Bytes bytes;
    inspect::ReadStored(package, entry.start(), size, [&](const std::uint8_t* piece, std::size_t count) {
        bytes.insert(bytes.end(), piece, piece + count);
    });
    return bytes;
}

/// Reads what there is of each file; none gives more bytes than the package has.
void ReadFiles(const inspect::Package& package) {
    const std::int64_t most = std::int64_t{package.block_count()} * inspect::kBlock;
    inspect::ForEachFile(package, [&](const inspect::FileState& file) {
        Require(std::ssize(Stored(package, file.entry, file.bytes)) == std::min(file.bytes, most));
    });
}

std::uint32_t OpenInLibrary(std::int32_t handle, const inspect::Package& package, const std::u16string& name) {
    const std::string narrow(name.begin(), name.end());
    const WideName wide(name.begin(), name.end());
    return static_cast<std::uint32_t>(package.wide()
                                          ? vltw_file_open(handle, wide.c_str(), VLT_MODE_READ, 0, 0, nullptr)
                                          : vlt_file_open(handle, narrow.c_str(), VLT_MODE_READ, 0, 0, nullptr));
}

void CompareWithTheLibrary(const inspect::Package& package, const std::string& path) {
    std::int32_t code = 0;
    const std::int32_t handle = vlt_package_open_ex(path.c_str(), 1, static_cast<std::uint32_t>(package.base()), 0, 1,
                                                    0, "r", "w", nullptr, &code);
    Require(handle != 0 || code == VLT_OPEN_CREDENTIALS);
    package.ForEachEntry([&](const inspect::Entry& entry) {
        if (handle == 0 || entry.kind != inspect::kStoredFile) return;
        const std::uint32_t file = OpenInLibrary(handle, package, entry.name);
        Require(file != 0 &&
                ReadFrom(file, static_cast<std::int32_t>(entry.size) + 1) == Stored(package, entry, entry.size));
    });
    vlt_package_close_all();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = Scratch("a.vlt");
    Input input(data, size);
    std::size_t base = 0;
    WriteHostFile(path, PatchedPackage(input, path, &base));
    {
        const inspect::HostFile host(path);
        inspect::Package package(host, base);
        const Findings before = Count(package);
        ReadFiles(package);
        if (before.damage == 0) CompareWithTheLibrary(package, path);
        const inspect::Recovered recovered = inspect::Recover(package, inspect::ScanBlocks(package));
        Require(before.all > 0 || !(recovered.width || recovered.header || recovered.directory));
        Count(package);
        ReadFiles(package);
    }
    ResetHost();
    return 0;
}

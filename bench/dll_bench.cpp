// SPDX-License-Identifier: MIT
// Wall times of a few rows with nothing but the library, so that two builds of the DLL can be compared under Wine:
// run it with one vlt.dll beside it, then with the other.
//
//   dll_bench [items]

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "offline.h"
#include "product_data.h"
#include "vlt.h"

namespace {

constexpr int piece = 32 * 1024;
constexpr std::int64_t size = 64 << 20;

void need(bool holds) {
    if (!holds) std::exit(1);
}

template <typename Work>
void time_row(const char* row, Work work) {
    double best = 1e9;
    for (int round = 0; round < 3; ++round) {
        const auto start = std::chrono::steady_clock::now();
        work();
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    std::printf("%-40s %9.1f ms\n", row, best * 1e3);
}

}  // namespace

int main(int argc, char** argv) {
    const int items = argc > 1 ? std::atoi(argv[1]) : 20000;
    const char* path = "dll_bench.vlt";
    std::vector<char> buffer(piece, 'x');
    std::uint32_t file = 0;
    const auto fresh = [&] {
        vlt_package_close_all();
        need(vlt_package_create(path, 0, static_cast<int>(size >> 20) + 2, nullptr, nullptr) == 1);
        const std::int32_t package = vlt_package_open(path, 0, 0, nullptr, nullptr, nullptr, nullptr);
        file = static_cast<std::uint32_t>(vlt_file_open(package, "big", VLT_MODE_WRITE, 0, 0, nullptr));
    };
    time_row("create a package, W1 64 MiB into it", [&] {
        fresh();
        for (std::int64_t at = 0; at < size; at += piece) need(vlt_file_write(file, buffer.data(), piece) == 1);
    });
    std::mt19937 random(7);
    time_row("R2 20,000 random 4 KiB reads", [&] {
        for (int i = 0; i < 20000; ++i) {
            vlt_file_set_pos(file, static_cast<std::int64_t>(random() % (size / 4096)) * 4096);
            need(vlt_file_read(file, buffer.data(), 4096) == 4096);
        }
    });
    vlt_package_close_all();
    std::remove(path);
    bench::write_product("dll_bench.db", items);
    time_row("L1 load with 15 indexes", [&] {
        static KOfflineDb db;
        KOfflineDb_Constructor(&db);
        need(KOfflineDb_Load(&db, "dll_bench.db") == 1);
        KOfflineDb_Destructor(&db);
    });
    std::filesystem::remove_all("dll_bench.db");
}

// SPDX-License-Identifier: MIT
// Eight threads on one package and on packages side by side. Meant for the thread sanitizer; the results are compared
// with what each thread knows that it wrote.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <thread>

#include "tests/support/store_calls.h"

namespace {

constexpr int kThreads = 8, kRounds = 25;

std::int32_t Open(const char* path) {
    return vlt_package_open(path, 0, 0, nullptr, nullptr, nullptr, nullptr);
}

void RunAll(void (*body)(int thread, std::int32_t package), const std::vector<std::int32_t>& packages) {
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back(body, i, packages[static_cast<std::size_t>(i) % packages.size()]);
    for (std::thread& thread : threads) thread.join();
}

/// Writes, appends, reads, truncates and deletes files of its own, and checks each.
void KeepOwnFiles(int thread, std::int32_t package) {
    const std::string name = "own" + std::to_string(thread);
    for (int round = 0; round < kRounds; ++round) {
        const Bytes bytes =
            Pattern(name + std::to_string(round), static_cast<std::size_t>(1000 + 3000 * (round % 5)));
        std::uint32_t file = OpenFile(package, name, VLT_MODE_WRITE, {.truncate = true});
        EXPECT_TRUE(WriteTo(file, bytes));
        vlt_file_set_pos_bof(file);
        EXPECT_EQ(ReadFrom(file, 100000), bytes);
        vlt_file_close(file);
        file = OpenFile(package, name, VLT_MODE_APPEND);
        EXPECT_TRUE(WriteTo(file, bytes));
        EXPECT_EQ(PositionOf(file), 2 * static_cast<std::int64_t>(bytes.size()));
        EXPECT_EQ(Delete(package, name), 0);
        vlt_file_close(file);
        if (round % 3 == 0) {
            EXPECT_EQ(Delete(package, name), 1);
        }
    }
}

/// Thread 0 appends numbered blocks to one file; the others read it while it grows, or list the files that come and
/// go.
void AppendReadAndList(int thread, std::int32_t package) {
    static std::atomic<int> written{0};
    if (thread == 0) {
        const std::uint32_t file = OpenFile(package, "grows", VLT_MODE_APPEND);
        for (written = 0; written < kRounds * 4; ++written)
            EXPECT_TRUE(WriteTo(file, Bytes(3000, static_cast<std::uint8_t>(written))));
        vlt_file_close(file);
    } else if (thread < 4) {
        const std::uint32_t file = OpenFile(package, "grows", VLT_MODE_READ);
        int read = 0;
        for (int round = 0; round < kRounds * 8 && read < kRounds * 4; ++round) {
            const Bytes bytes = ReadFrom(file, 3000);
            if (bytes.empty()) continue;
            EXPECT_EQ(bytes, Bytes(3000, static_cast<std::uint8_t>(read++)));
            EXPECT_LE(read, written + 1);
        }
        vlt_file_close(file);
    } else if (thread < 6) {
        for (int round = 0; round < kRounds * 2; ++round) {
            const std::string name = "comes" + std::to_string(thread);
            vlt_file_close(OpenFile(package, name, VLT_MODE_WRITE));
            EXPECT_EQ(SetTime(package, name, 1, 2, 3), 1);
            EXPECT_EQ(Delete(package, name), 1);
        }
    } else {
        for (int round = 0; round < kRounds * 2; ++round) {
            int grows = 0;
            FileInfo info;
            for (std::int32_t cursor = 0; (cursor = Enumerate(package, cursor, &info)) != 0;)
                grows += info.name == "grows" && info.size % 3000 == 0;
            EXPECT_EQ(grows, 1);
        }
    }
}

class Threads : public testing::Test {
protected:
    ~Threads() override {
        vlt_package_close_all();
        for (const std::string& path : paths_) {
            EXPECT_EQ(Faults(PackageImage(ReadHostFile(path))), "");
            std::remove(path.c_str());
        }
    }
    std::int32_t Make(const std::string& path) {
        paths_.push_back(path);
        vlt_package_create(path.c_str(), 0, 0, nullptr, nullptr);
        return Open(path.c_str());
    }

private:
    std::vector<std::string> paths_;
};

TEST_F(Threads, KeepTheirFilesInOnePackage) {
    const std::int32_t base = Make("threads.pkg");
    RunAll(KeepOwnFiles, {base, Open("threads.pkg"), Open("threads.pkg")});
}

TEST_F(Threads, ReadAndListWhatGrows) {
    const std::int32_t base = Make("threads.pkg");
    vlt_file_close(OpenFile(base, "grows", VLT_MODE_WRITE));
    RunAll(AppendReadAndList, {base, Open("threads.pkg")});
}

TEST_F(Threads, UsePackagesSideBySide) {
    std::vector<std::int32_t> packages;
    for (int i = 0; i < kThreads; ++i) packages.push_back(Make("threads" + std::to_string(i) + ".pkg"));
    RunAll(KeepOwnFiles, packages);
}

}  // namespace

// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

namespace tool {

/// Reads files one after the other on a thread of its own, ahead of their use: whoever stores the bytes does not wait
/// for those of the next file. Where the system gives no thread, they are read when they are asked for.
class ReadAhead {
public:
    /// Reads the next bytes of a file that is open; fewer than there is room for anywhere, none at its end only.
    using Read = std::function<std::size_t(char* to, std::size_t room)>;
    struct File {
        Read read;
        std::int64_t size;  // what it is expected to have, so that small files are read whole
    };
    /// Opens a file, given its number. It and what it returns are called on the other thread.
    using Open = std::function<File(std::size_t number)>;

    /// Files are numbered from 0 to `count` - 1.
    ReadAhead(std::size_t count, Open open);
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    /// The next bytes of a file, until the next call; empty at its end. The number never falls: the rest of the files
    /// before is left unread. Throws what the opening or the reading of this file threw, and what ended all reading.
    std::string_view next(std::size_t number);

private:
    static constexpr std::size_t kRoom = 1 << 19, kBatches = 4;
    static constexpr std::size_t kMostParts = 1000;  // empty files take no room

    /// A part of a file, or its end, which has no bytes.
    struct Part {
        std::size_t number, start, length;
        std::exception_ptr failure;
    };
    struct Batch {
        std::vector<char> bytes;
        std::vector<Part> parts;
        std::size_t used = 0;
    };

    bool fill(Batch& batch);
    bool read_part(Batch& batch);
    void end_file(Batch& batch, std::exception_ptr failure);
    void work();
    bool take_batch();

    const std::size_t count_;
    const Open open_;

    // Of the reading thread.
    std::size_t reading_ = 0;  // the number of the file that is open, or is next
    File file_{};

    // Of the caller.
    Batch* batch_ = nullptr;
    std::size_t part_ = 0;

    std::atomic<std::size_t> wanted_{0};  // files before this one are not asked for any more
    std::array<Batch, kBatches> batches_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t filled_ = 0, taken_ = 0;  // batches so far
    bool ended_ = false, stop_ = false;
    std::exception_ptr failure_;  // what ended the reading of all files
    std::thread thread_;          // the last member: it uses the others
};

}  // namespace tool

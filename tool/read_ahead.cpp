// SPDX-License-Identifier: MIT
#include "tool/read_ahead.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace tool {

ReadAhead::ReadAhead(std::size_t count, Open open) : count_(count), open_(std::move(open)) {
    try {
        thread_ = std::thread([this] { work(); });
    } catch (const std::system_error&) {
    }
}

ReadAhead::~ReadAhead() {
    if (!thread_.joinable()) return;
    wanted_ = count_;  // nothing more is read for the batch in work
    {
        const std::lock_guard lock(mutex_);
        stop_ = true;
    }
    changed_.notify_one();
    thread_.join();
}

std::string_view ReadAhead::next(std::size_t number) {
    wanted_ = number;
    for (;; ++part_) {
        while (!batch_ || part_ == batch_->parts.size())
            if (!take_batch()) return {};
        const Part& part = batch_->parts[part_];
        if (part.number < number) continue;
        if (part.number > number) return {};
        ++part_;
        if (part.failure) std::rethrow_exception(part.failure);
        return {batch_->bytes.data() + part.start, part.length};
    }
}

/// Gives the batch in hand back, and takes the next one; false when there is none left.
bool ReadAhead::take_batch() {
    std::unique_lock lock(mutex_);
    if (batch_) {
        batch_ = nullptr;
        ++taken_;
        changed_.notify_one();
    }
    part_ = 0;
    if (!thread_.joinable() && !ended_) {
        ended_ = !fill(batches_[0]);
        ++filled_;
    }
    changed_.wait(lock, [&] { return ended_ || filled_ > taken_; });
    if (filled_ > taken_) batch_ = &batches_[thread_.joinable() ? taken_ % kBatches : 0];
    if (!batch_ && failure_) std::rethrow_exception(failure_);
    return batch_ != nullptr;
}

void ReadAhead::work() {
    for (std::unique_lock lock(mutex_); !ended_; changed_.notify_one()) {
        changed_.wait(lock, [&] { return stop_ || filled_ - taken_ < kBatches; });
        if (stop_) return;
        Batch& batch = batches_[filled_ % kBatches];
        lock.unlock();
        bool more = false;
        std::exception_ptr failure;
        try {
            more = fill(batch);
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        failure_ = failure;
        if (!failure) ++filled_;
        ended_ = !more;
    }
}

/// Fills a batch; false when it is the last one.
bool ReadAhead::fill(Batch& batch) {
    batch.parts.clear();
    batch.used = 0;
    batch.bytes.resize(kRoom);
    while (reading_ < count_)
        if (!read_part(batch)) return true;
    return false;
}

/// Reads the next part of the file that is open, or opens the next file; false when the batch has no room for it.
bool ReadAhead::read_part(Batch& batch) {
    if (reading_ < wanted_) {
        file_ = {};
        reading_ = std::min<std::size_t>(wanted_, count_);
        return true;
    }
    try {
        if (!file_.read) file_ = open_(reading_);
        const std::size_t room = kRoom - batch.used;
        if (batch.parts.size() >= kMostParts) return false;
        // One more than the file has, for its end to be seen.
        const auto wanted = static_cast<std::size_t>(std::clamp<std::int64_t>(file_.size, 0, kRoom - 1)) + 1;
        if (room < wanted && batch.used > 0) return false;
        const std::size_t length = file_.read(batch.bytes.data() + batch.used, room);
        if (length == 0) return end_file(batch, nullptr), true;
        batch.parts.push_back({reading_, batch.used, length, nullptr});
        batch.used += length;
        file_.size -= static_cast<std::int64_t>(length);
    } catch (...) {
        end_file(batch, std::current_exception());
    }
    return true;
}

void ReadAhead::end_file(Batch& batch, std::exception_ptr failure) {
    batch.parts.push_back({reading_, 0, 0, std::move(failure)});
    file_ = {};
    ++reading_;
}

}  // namespace tool

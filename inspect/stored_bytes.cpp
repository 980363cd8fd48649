// SPDX-License-Identifier: MIT
#include "inspect/stored_bytes.h"

#include <algorithm>

namespace inspect {

namespace {

constexpr std::int32_t kPiece = 256;  // blocks that are read at once

/// Reads run after run, as `next` tells them.
template <typename NextRun>
std::int64_t ReadPieces(const Package& package, std::int64_t size, const Sink& sink, NextRun next) {
    Bytes bytes(static_cast<std::size_t>(std::clamp<std::int64_t>(BlocksFor(size), 0, kPiece)) * kBlock);
    std::int64_t done = 0;
    for (Run run; done < size && next(run);) {
        const auto wanted =
            static_cast<std::size_t>(std::min<std::int64_t>(size - done, run.count * std::int64_t{kBlock}));
        const std::size_t there = package.source().Read(package.OffsetOf(run.block), bytes.data(), wanted);
        sink(bytes.data(), there);
        done += static_cast<std::int64_t>(there);
        if (there < wanted) break;
    }
    return done;
}

}  // namespace

std::int64_t ReadStored(const Package& package, std::int32_t start, std::int64_t size, const Sink& sink) {
    // No file has more blocks than there are: a chain that loops would give bytes for ever.
    ChainRuns runs(package.map(), start, std::min<std::int64_t>(BlocksFor(size), package.block_count()));
    return ReadPieces(package, size, sink, [&](Run& run) { return runs.Next(run, kPiece); });
}

std::int64_t ReadRuns(const Package& package, const std::vector<Run>& runs, std::int64_t size, const Sink& sink) {
    auto at = runs.begin();
    Run left;
    return ReadPieces(package, size, sink, [&](Run& run) {
        while (left.count == 0 && at != runs.end()) left = *at++;
        run = {left.block, std::min(left.count, kPiece)};
        left = {left.block + run.count, left.count - run.count};
        return run.count > 0 && package.map().Inside(run.block) && package.map().Inside(run.block + run.count - 1);
    });
}

}  // namespace inspect

// SPDX-License-Identifier: MIT
// The bytes of a stored file, in pieces.
#pragma once

#include <functional>

#include "inspect/package.h"

namespace inspect {

using Sink = std::function<void(const std::uint8_t* bytes, std::size_t count)>;

/// Hands over the first bytes of the chain that starts at a block index. Returns how many that were: fewer than asked
/// for where the chain or the host file ends early.
std::int64_t ReadStored(const Package& package, std::int32_t start, std::int64_t size, const Sink& sink);

/// The same for bytes that lie in given runs of blocks.
std::int64_t ReadRuns(const Package& package, const std::vector<Run>& runs, std::int64_t size, const Sink& sink);

}  // namespace inspect

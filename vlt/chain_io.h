// SPDX-License-Identifier: MIT
// Bytes in and out of chains. Everything in a package is addressed as (chain, offset within the chain).
#pragma once

#include <cstdint>

#include "vlt/store.h"

namespace vlt {

/// Reads `length` bytes at `offset` of a chain. What exists is read even when the chain ends too early; false then,
/// and when the host file fails. A data chain must have been begun with `begin_chain`.
bool vlt_chain_read(Store& store, KnownChain& chain, std::int64_t offset, void* buffer, std::int32_t length);

/// Writes `length` bytes at `offset` of a chain, in the same manner.
bool vlt_chain_write(Store& store, KnownChain& chain, std::int64_t offset, const void* data, std::int32_t length);

/// Gets a data chain ready for use: makes its first block known. `first_block` is a block number, 0 for none. False
/// when that is no block that a stored file can own, or memory runs out.
bool begin_chain(Store& store, KnownChain& chain, std::uint32_t first_block);

/// Makes the chain known up to `position`, or as far as it goes. A chain cannot be longer than the package, so one
/// that loops ends there. False when memory runs out.
bool follow_chain(Store& store, KnownChain& chain, std::int64_t position);

}  // namespace vlt

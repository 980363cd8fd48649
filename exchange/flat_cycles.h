// SPDX-License-Identifier: MIT
#pragma once

#include "exchange/flat_bom.h"

namespace exchange {

/// Adds a finding for each cycle, with its path; cycles that share an item may count as one.
void note_cycles(FlatBom& bom);

}  // namespace exchange

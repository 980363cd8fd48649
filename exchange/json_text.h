// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "exchange/output.h"

namespace exchange {

/// Keys that stand for something else than a field in a record or a line.
inline constexpr std::string_view kJsonReserved[] = {"table", "schema"};

/// Appends a text as a JSON string; bytes that are no UTF-8 as an object: {"hex":"ff00"}.
void add_json(Output& output, std::string_view text);

}  // namespace exchange

// SPDX-License-Identifier: MIT
// Which heading means what.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "exchange/flat_table.h"

namespace exchange {

/// A heading in small letters, with one blank for whatever stands between its words.
std::string heading_words(std::string_view heading);

using Roles = std::array<std::optional<std::size_t>, kRoleCount>;

/// The columns whose headings are known; the more usual heading goes first where several are. Columns that are
/// `taken` already are left alone.
void guess_roles(std::span<const std::string> headings, const std::vector<bool>& taken, Roles& roles);

/// The role of this name, or none.
std::optional<Role> role_of(std::string_view name);

/// A heading as the name of a field: without what a schema cannot hold, and not longer than it may be.
std::string field_name(std::string_view heading);

}  // namespace exchange

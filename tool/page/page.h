// SPDX-License-Identifier: MIT
// The parts of a product's page, as the build embeds them. The markup has marks such as @STYLE@ where other parts go.
#pragma once

#include <string_view>

namespace tool::page {

extern const std::string_view markup, style, script;

}  // namespace tool::page

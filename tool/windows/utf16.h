// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tool {

std::wstring to_utf16(std::string_view text);
std::string to_utf8(std::wstring_view wide);

}  // namespace tool

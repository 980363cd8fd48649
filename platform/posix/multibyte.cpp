// SPDX-License-Identifier: MIT
#include "platform/multibyte.h"

#include <langinfo.h>
#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace vlt {

const char* multibyte_next(const char* text) {
    const auto lead = static_cast<unsigned char>(*text);
    if (lead < 0x80) return lead ? text + 1 : text;
    std::mbstate_t state{};
    const std::size_t length = std::mbrlen(text, MB_CUR_MAX, &state);
    if (length == 0 || length > MB_CUR_MAX) return text + 1;  // no character: the byte stands for itself
    return text + length;
}

bool multibyte_ascii_is_whole() {
    return MB_CUR_MAX == 1 || std::strcmp(::nl_langinfo(CODESET), "UTF-8") == 0;
}

}  // namespace vlt

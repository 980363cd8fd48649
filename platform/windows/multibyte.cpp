// SPDX-License-Identifier: MIT
#include "platform/multibyte.h"

#include <mbctype.h>
#include <mbstring.h>

namespace vlt {

const char* multibyte_next(const char* text) {
    if (text[0] == 0) return text;
    if (text[1] == 0) return text + 1;  // the runtime library would step over the terminator after a lead byte
    return reinterpret_cast<const char*>(::_mbsinc(reinterpret_cast<const unsigned char*>(text)));
}

bool multibyte_ascii_is_whole() {
    return ::_getmbcp() == 0;  // every double-byte code page has trail bytes from 0x40 on
}

}  // namespace vlt

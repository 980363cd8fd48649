// SPDX-License-Identifier: MIT
#include "tests/support/double_byte.h"

#ifdef _WIN32
#include <mbctype.h>

DoubleByteScope::DoubleByteScope() : entered_(::_setmbcp(936) == 0) {}

DoubleByteScope::~DoubleByteScope() {
    ::_setmbcp(_MB_CP_ANSI);
}
#else
#include <clocale>

DoubleByteScope::DoubleByteScope() : entered_(std::setlocale(LC_CTYPE, "zh_CN.GBK") != nullptr) {}

DoubleByteScope::~DoubleByteScope() {
    std::setlocale(LC_CTYPE, "C");
}
#endif

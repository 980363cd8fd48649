// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>

namespace exchange {

/// Something that cannot be read or stored; the text says what and where.
struct Error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace exchange

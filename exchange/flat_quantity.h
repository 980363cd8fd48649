// SPDX-License-Identifier: MIT
// Quantities as spreadsheets write them: 0,25 or 1.234,5 or 1 000.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace exchange {

/// Learns from all quantities of a file whether the comma or the point stands before the decimals.
class DecimalMark {
public:
    /// `usual` counts where no quantity tells, as in 1,234.
    explicit DecimalMark(char usual) : mark_(usual) {}

    void learn(std::string_view quantity);
    char mark() const { return mark_; }

private:
    char mark_;
    bool sure_ = false;
};

/// The quantity with a point and without superfluous zeros; nothing for a text that is no number.
std::optional<std::string> plain_quantity(std::string_view text, char decimal_mark);

}  // namespace exchange

// SPDX-License-Identifier: MIT
#include "exchange/flat_quantity.h"

#include <algorithm>

namespace exchange {

namespace {

constexpr std::string_view kDigits = "0123456789";

bool is_digits(std::string_view text) {
    return !text.empty() && text.find_first_not_of(kDigits) == text.npos;
}

/// The digits of a whole number in groups of three, 1.234.567; nothing for groups of other lengths.
std::optional<std::string> ungrouped(std::string_view text, std::string_view separators) {
    std::string digits;
    std::size_t end = text.find_first_of(separators);
    if (end == 0 || (end != text.npos && end > 3)) return {};
    while (true) {
        digits += text.substr(0, end);
        if (end == text.npos) break;
        text.remove_prefix(end + 1);
        end = text.find_first_of(separators);
        if (std::min(end, text.size()) != 3) return {};
    }
    if (!is_digits(digits)) return {};
    return digits;
}

}  // namespace

/// A mark decides when it comes last after another one, or when its digits cannot be a group of thousands.
void DecimalMark::learn(std::string_view quantity) {
    const std::size_t last = quantity.find_last_of(",.");
    if (sure_ || last == quantity.npos) return;
    const std::size_t first = quantity.find_first_of(",.");
    const bool two_marks = quantity[first] != quantity[last], many = first != last && !two_marks;
    const bool no_group = quantity.size() - last - 1 != 3 || last == 0 || last > 3 || quantity[0] == '0';
    if (many) return;
    if (!two_marks && !no_group) return;
    mark_ = quantity[last];
    sure_ = true;
}

std::optional<std::string> plain_quantity(std::string_view text, char decimal_mark) {
    std::string sign;
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        if (text[0] == '-') sign = "-";
        text.remove_prefix(1);
    }
    const std::size_t point = std::min(text.find(decimal_mark), text.size());
    std::string_view decimals = text.substr(std::min(point + 1, text.size()));
    if (!decimals.empty() && !is_digits(decimals)) return {};
    std::optional<std::string> whole = ungrouped(text.substr(0, point), decimal_mark == ',' ? ". '" : ", '");
    if (!whole && (point != 0 || decimals.empty())) return {};
    const std::string digits = whole.value_or("0");
    const std::string number = digits.substr(std::min(digits.find_first_not_of('0'), digits.size() - 1));
    decimals = decimals.substr(0, decimals.find_last_not_of('0') + 1);
    return (number == "0" && decimals.empty() ? "" : sign) + number + (decimals.empty() ? "" : ".") +
           std::string(decimals);
}

}  // namespace exchange

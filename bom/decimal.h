// SPDX-License-Identifier: MIT
// Numbers with decimals, held exactly. Quantities are decimal text, and 0.1 is no binary fraction.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace bom {

/// Thrown where a result has more digits than a Decimal holds.
struct Overflow : std::overflow_error {
    Overflow() : std::overflow_error("a number has more than 38 digits") {}
};

/// 38 digits always fit, up to 38 of them behind the point. No zeros are kept at the end of what is behind the point.
class Decimal {
public:
    constexpr Decimal() = default;
    constexpr explicit Decimal(std::uint32_t whole) : low_(whole) {}

    /// Reads digits with or without a sign and one point: "12", "-0.25", ".5". Nothing for any other text, and for a
    /// number that does not fit.
    static std::optional<Decimal> parse(std::string_view text);

    /// The number in 32 bits, where it has few digits and no sign; and back again.
    std::optional<std::uint32_t> packed() const;
    static Decimal unpacked(std::uint32_t bits);

    /// As few characters as say it: "0.25", "-3".
    std::string text() const;

    Decimal& operator+=(const Decimal& other);
    Decimal& operator*=(const Decimal& other);
    friend Decimal operator*(Decimal a, const Decimal& b) { return a *= b; }
    friend bool operator<(const Decimal& a, const Decimal& b);
    friend bool operator==(const Decimal&, const Decimal&) = default;

private:
    friend struct Wide;

    static std::optional<Decimal> parse_short(std::string_view text);
    bool add_short(const Decimal& other);
    bool multiply_short(const Decimal& other);
    void drop_zeros();

    // The digits without the point are high_ * 2^64 + low_; the last scale_ of them stand behind the point.
    std::uint64_t low_ = 0, high_ = 0;
    std::uint8_t scale_ = 0;
    bool negative_ = false;
};

}  // namespace bom

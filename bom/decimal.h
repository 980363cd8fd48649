// SPDX-License-Identifier: MIT
// Numbers with decimals, held exactly. Quantities are decimal text, and 0.1 is no binary fraction.
#pragma once

#include <algorithm>
#include <array>
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

    /// The number in 32 bits, where it has few digits and no sign; kNotPacked for any other. And back again.
    static constexpr std::uint32_t kNotPacked = 0xFFFFFFFF;
    std::uint32_t packed() const;
    static Decimal unpacked(std::uint32_t bits) {
        Decimal result(bits >> kScaleBits);
        result.scale_ = static_cast<std::uint8_t>(bits & ((1U << kScaleBits) - 1));
        return result;
    }

    /// What `parse` and `packed` make of a text of few characters; kNotPacked where they may make more of it.
    static std::uint32_t parse_packed(const char* text);

    /// As few characters as say it: "0.25", "-3".
    std::string text() const;
    std::size_t text_size() const;

    Decimal& operator+=(const Decimal& other);
    Decimal& operator*=(const Decimal& other);
    friend Decimal operator*(Decimal a, const Decimal& b) { return a *= b; }

    /// Adds a * b. Zeros may stay at the end of a sum while it grows: `drop_zeros` ends it, before anything else is
    /// done with it.
    void add_product(const Decimal& a, const Decimal& b) {
        if (!add_product_short(a, b)) add_product_long(a, b);
    }
    void drop_zeros();

    friend bool operator<(const Decimal& a, const Decimal& b);
    friend bool operator==(const Decimal&, const Decimal&) = default;

private:
    friend struct Wide;

    static constexpr unsigned kScaleBits = 4;  // of a packed number

    static constexpr int kPowers = 20;
    static constexpr auto kPowerOfTen = [] {
        std::array<std::uint64_t, kPowers> powers{1};
        for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
        return powers;
    }();

    static std::optional<Decimal> parse_short(std::string_view text);
    std::string short_text() const;
    bool has_short_text() const { return !high_ && scale_ < kPowers; }
    bool add_short(const Decimal& other);
    bool multiply_short(const Decimal& other);
    bool add_product_short(const Decimal& a, const Decimal& b);
    void add_product_long(Decimal a, Decimal b);  // copies, so that the short way has no need of them in memory

    // The digits without the point are high_ * 2^64 + low_; the last scale_ of them stand behind the point.
    std::uint64_t low_ = 0, high_ = 0;
    std::uint8_t scale_ = 0;
    bool negative_ = false;
};

/// Nearly all numbers fit into 64 bits. Both sides are brought to as many decimals, whichever has fewer: a branch
/// that nobody can foresee would cost more than a multiplication by 1.
inline bool Decimal::add_product_short(const Decimal& a, const Decimal& b) {
    if ((high_ | a.high_ | b.high_) || (negative_ | a.negative_ | b.negative_)) return false;
    const unsigned decimals = unsigned{a.scale_} + b.scale_, most = std::max<unsigned>(scale_, decimals);
    if (most >= kPowers) return false;
    std::uint64_t mine = 0, added = 0;
    if (__builtin_mul_overflow(a.low_, b.low_, &added) ||
        __builtin_mul_overflow(added, kPowerOfTen[most - decimals], &added) ||
        __builtin_mul_overflow(low_, kPowerOfTen[most - scale_], &mine) || __builtin_add_overflow(mine, added, &mine))
        return false;
    low_ = mine;
    scale_ = static_cast<std::uint8_t>(most);
    return true;
}

}  // namespace bom

// SPDX-License-Identifier: MIT
#include "bom/decimal.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace bom {

namespace {

constexpr int kMostDecimals = 38;
constexpr int kLimbs = 8;

}  // namespace

/// The digits of a number with room for the product of two, in limbs of 32 bits, the lowest first.
struct Wide {
    std::array<std::uint32_t, kLimbs> limb{};
    int scale = 0;
    bool negative = false;

    Wide() = default;
    explicit Wide(const Decimal& d) : scale(d.scale_), negative(d.negative_) {
        limb[0] = static_cast<std::uint32_t>(d.low_), limb[1] = static_cast<std::uint32_t>(d.low_ >> 32);
        limb[2] = static_cast<std::uint32_t>(d.high_), limb[3] = static_cast<std::uint32_t>(d.high_ >> 32);
    }

    bool is_zero() const {
        return std::all_of(limb.begin(), limb.end(), [](std::uint32_t part) { return part == 0; });
    }

    bool fits() const {
        return std::all_of(limb.begin() + kLimbs / 2, limb.end(), [](std::uint32_t part) { return part == 0; });
    }

    /// Turns the digits into ten times as many and `digit`.
    void append(std::uint32_t digit) {
        std::uint64_t carry = digit;
        for (std::uint32_t& part : limb) {
            carry += std::uint64_t{part} * 10;
            part = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
    }

    /// Takes the last digit off and returns it.
    std::uint32_t take_last() {
        std::uint64_t rest = 0;
        for (auto part = limb.rbegin(); part != limb.rend(); ++part) {
            rest = rest << 32 | *part;
            *part = static_cast<std::uint32_t>(rest / 10);
            rest %= 10;
        }
        return static_cast<std::uint32_t>(rest);
    }

    void drop_zeros() {
        while (scale > 0) {
            Wide shorter = *this;
            if (shorter.take_last() != 0) return;
            shorter.scale = scale - 1;
            *this = shorter;
        }
    }

    void extend_to(int decimals) {
        for (; scale < decimals; ++scale) append(0);
    }

    /// The number, or nothing when it does not fit.
    std::optional<Decimal> narrowed() {
        drop_zeros();
        if (!fits() || scale > kMostDecimals) return std::nullopt;
        Decimal d;
        d.low_ = std::uint64_t{limb[1]} << 32 | limb[0];
        d.high_ = std::uint64_t{limb[3]} << 32 | limb[2];
        d.scale_ = static_cast<std::uint8_t>(scale);
        d.negative_ = negative && !is_zero();
        return d;
    }
};

namespace {

Decimal narrow(Wide wide) {
    const std::optional<Decimal> result = wide.narrowed();
    if (!result) throw Overflow();
    return *result;
}

bool smaller(const Wide& a, const Wide& b) {
    return std::lexicographical_compare(a.limb.rbegin(), a.limb.rend(), b.limb.rbegin(), b.limb.rend());
}

void add_digits(Wide& to, const Wide& other) {
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < kLimbs; ++i) {
        carry += std::uint64_t{to.limb[i]} + other.limb[i];
        to.limb[i] = static_cast<std::uint32_t>(carry);
        carry >>= 32;
    }
}

void subtract_digits(Wide& from, const Wide& smaller_one) {
    std::uint64_t borrow = 0;
    for (std::size_t i = 0; i < kLimbs; ++i) {
        const std::uint64_t part = std::uint64_t{from.limb[i]} - smaller_one.limb[i] - borrow;
        from.limb[i] = static_cast<std::uint32_t>(part);
        borrow = part >> 63;
    }
}

Wide sum(Wide a, Wide b) {
    a.extend_to(b.scale), b.extend_to(a.scale);
    if (a.negative == b.negative) {
        add_digits(a, b);
        return a;
    }
    if (smaller(a, b)) std::swap(a, b);
    subtract_digits(a, b);
    return a;
}

Wide product(const Wide& a, const Wide& b) {
    Wide result;
    for (std::size_t i = 0; i < kLimbs / 2; ++i) {
        std::uint64_t carry = 0;
        for (std::size_t j = 0; j < kLimbs / 2; ++j) {
            carry += std::uint64_t{a.limb[i]} * b.limb[j] + result.limb[i + j];
            result.limb[i + j] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        result.limb[i + kLimbs / 2] = static_cast<std::uint32_t>(carry);
    }
    result.scale = a.scale + b.scale;
    result.negative = a.negative != b.negative;
    return result;
}

/// Hands the digits of a number to `append`, and notes sign and decimals in `number`. False for a text that is no
/// number, or when `append` has no room.
template <typename Number, typename Append>
bool read_digits(std::string_view text, Number& number, Append append) {
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        number.negative = text[0] == '-';
        text.remove_prefix(1);
    }
    bool point = false;
    for (const char c : text) {
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (c < '0' || c > '9') return false;
        number.scale += point;
        if (!append(static_cast<std::uint32_t>(c - '0'))) return false;
    }
    return text.size() > (point ? 1U : 0U);
}

/// A number of few digits while it is read.
struct Digits {
    std::uint64_t value = 0;
    int scale = 0;
    bool negative = false;
};

constexpr std::size_t kShortText = 18;     // any number of so many characters fits into 64 bits
constexpr std::ptrdiff_t kPackedText = 8;  // and of so many, packed, into 32

}  // namespace

std::optional<Decimal> Decimal::parse(std::string_view text) {
    if (const auto short_one = parse_short(text)) return short_one;
    Wide number;
    const bool room = read_digits(text, number, [&](std::uint32_t digit) {
        if (number.scale > 2 * kMostDecimals || !number.fits()) return false;
        number.append(digit);
        return true;
    });
    return room ? number.narrowed() : std::nullopt;
}

std::optional<Decimal> Decimal::parse_short(std::string_view text) {
    Digits number;
    const bool room = read_digits(text, number, [&](std::uint32_t digit) {
        number.value = number.value * 10 + digit;
        return true;
    });
    if (!room || text.size() > kShortText) return std::nullopt;
    Decimal result;
    result.low_ = number.value;
    result.scale_ = static_cast<std::uint8_t>(number.scale);
    result.negative_ = number.negative && number.value != 0;
    result.drop_zeros();
    return result;
}

std::uint32_t Decimal::packed() const {
    if (negative_ || high_ || low_ >> (32 - kScaleBits) || scale_ >> kScaleBits) return kNotPacked;
    return static_cast<std::uint32_t>(low_) << kScaleBits | scale_;
}

std::uint32_t Decimal::parse_packed(const char* text) {
    std::uint32_t digits = 0, decimals = 0;
    bool point = false;
    const char* at = text;
    for (; at - text < kPackedText; ++at) {
        const auto digit = static_cast<std::uint32_t>(*at) - '0';
        if (digit < 10) {
            digits = digits * 10 + digit, decimals += point;
        } else {
            if (*at != '.' || point) break;
            point = true;
        }
    }
    if (*at || at - text == point) return kNotPacked;
    for (; decimals > 0 && digits % 10 == 0; --decimals) digits /= 10;
    return digits << kScaleBits | decimals;
}

std::string Decimal::short_text() const {
    std::string text = std::to_string(low_);
    if (text.size() <= scale_) text.insert(0, scale_ + 1 - text.size(), '0');
    if (scale_ > 0) text.insert(text.size() - scale_, 1, '.');
    if (negative_) text.insert(0, 1, '-');
    return text;
}

std::size_t Decimal::text_size() const {
    if (!has_short_text()) return text().size();
    const auto digits =
        std::upper_bound(kPowerOfTen.begin() + scale_ + 1, kPowerOfTen.end(), low_) - kPowerOfTen.begin();
    return static_cast<std::size_t>(digits) + (scale_ > 0) + negative_;
}

std::string Decimal::text() const {
    if (has_short_text()) return short_text();
    char reversed[2 * kMostDecimals + 4];
    std::size_t length = 0;
    Wide wide(*this);
    for (std::uint64_t rest = low_, digit = 0; digit <= scale_ || (high_ ? !wide.is_zero() : rest != 0); ++digit) {
        if (digit > 0 && digit == scale_) reversed[length++] = '.';
        reversed[length++] = static_cast<char>('0' + (high_ ? wide.take_last() : rest % 10));
        rest /= 10;
    }
    if (negative_) reversed[length++] = '-';
    return {std::reverse_iterator(reversed + length), std::reverse_iterator(reversed)};
}

// Nearly all numbers fit into 64 bits: these go without the wide form.

bool Decimal::add_short(const Decimal& other) {
    const Decimal& coarse = scale_ < other.scale_ ? *this : other;
    Decimal result = scale_ < other.scale_ ? other : *this;
    const int decimals = result.scale_ - coarse.scale_;
    if (high_ || other.high_ || negative_ || other.negative_ || decimals >= kPowers) return false;
    std::uint64_t aligned = 0;
    if (__builtin_mul_overflow(coarse.low_, kPowerOfTen[static_cast<std::size_t>(decimals)], &aligned)) return false;
    if (__builtin_add_overflow(result.low_, aligned, &result.low_)) return false;
    result.drop_zeros();
    *this = result;
    return true;
}

bool Decimal::multiply_short(const Decimal& other) {
    std::uint64_t digits = 0;
    if (high_ || other.high_ || scale_ + other.scale_ > kMostDecimals) return false;
    if (__builtin_mul_overflow(low_, other.low_, &digits)) return false;
    low_ = digits;
    scale_ = static_cast<std::uint8_t>(scale_ + other.scale_);
    negative_ = negative_ != other.negative_ && digits != 0;
    drop_zeros();
    return true;
}

void Decimal::drop_zeros() {
    if (high_) return;  // such a number is made without zeros
    for (; scale_ > 0 && low_ % 10 == 0; --scale_) low_ /= 10;
}

Decimal& Decimal::operator+=(const Decimal& other) {
    if (!add_short(other)) *this = narrow(sum(Wide(*this), Wide(other)));
    return *this;
}

Decimal& Decimal::operator*=(const Decimal& other) {
    if (!multiply_short(other)) *this = narrow(product(Wide(*this), Wide(other)));
    return *this;
}

void Decimal::add_product_long(Decimal a, Decimal b) {
    drop_zeros();
    *this += a *= b;
}

bool operator<(const Decimal& a, const Decimal& b) {
    if (a.negative_ != b.negative_) return a.negative_;
    Wide left(a), right(b);
    left.extend_to(right.scale), right.extend_to(left.scale);
    return a.negative_ ? smaller(right, left) : smaller(left, right);
}

}  // namespace bom

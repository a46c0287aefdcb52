// SPDX-License-Identifier: MIT
// A signed 128-bit integer of two 64-bit halves, for the few exact products in scan conversion
// that pass 64 bits. Compilers for 32-bit targets have no __int128, and every target must give
// the same answers, so this is plain 64-bit arithmetic: unsigned, wrapping, no undefined overflow.
#pragma once

#include <cstdint>

namespace quillon::region_detail {

class Wide {
public:
    constexpr Wide() noexcept = default;
    constexpr Wide(std::int64_t v) noexcept // NOLINT: widening, as the built-in type does
        : high_(v < 0 ? ~std::uint64_t(0) : 0), low_(static_cast<std::uint64_t>(v)) {}

    // The exact product of two 64-bit integers.
    static constexpr Wide product(std::int64_t a, std::int64_t b) noexcept
    {
        const bool negative = (a < 0) != (b < 0);
        const Wide magnitude = unsignedProduct(magnitudeOf(a), magnitudeOf(b));
        return negative ? -magnitude : magnitude;
    }

    // floor(a / b) for b > 0.
    static constexpr Wide floorDiv(const Wide& a, std::int64_t b) noexcept
    {
        const std::uint64_t divisor = static_cast<std::uint64_t>(b);
        const Wide m = a.negative() ? -a : a; // 2^127 stays 2^127 read as unsigned
        // The high half first, then the low half a bit at a time below the remainder (< b < 2^63).
        std::uint64_t high = m.high_ / divisor, remainder = m.high_ % divisor, low = 0;
        for (int bit = 63; bit >= 0; --bit) {
            remainder = (remainder << 1) | ((m.low_ >> bit) & 1);
            low <<= 1;
            if (remainder >= divisor) remainder -= divisor, low |= 1;
        }
        Wide q;
        q.high_ = high;
        q.low_ = low;
        if (!a.negative()) return q;
        q = -q;
        return remainder != 0 ? q - Wide(1) : q;
    }

    constexpr bool negative() const noexcept { return (high_ >> 63) != 0; }
    // Whether the value is a 64-bit integer, and that integer.
    constexpr bool fits64() const noexcept { return high_ == (negative() ? ~std::uint64_t(0) : 0) && ((low_ >> 63) != 0) == negative(); }
    constexpr std::int64_t to64() const noexcept
    {
        // Two's complement without an implementation-defined conversion.
        return (low_ >> 63) ? -static_cast<std::int64_t>(~low_) - 1 : static_cast<std::int64_t>(low_);
    }
    constexpr std::uint64_t high() const noexcept { return high_; }
    constexpr std::uint64_t low() const noexcept { return low_; }

    friend constexpr Wide operator-(const Wide& a) noexcept
    {
        Wide r;
        r.low_ = ~a.low_ + 1;
        r.high_ = ~a.high_ + (r.low_ == 0 ? 1 : 0);
        return r;
    }
    friend constexpr Wide operator+(const Wide& a, const Wide& b) noexcept
    {
        Wide r;
        r.low_ = a.low_ + b.low_;
        r.high_ = a.high_ + b.high_ + (r.low_ < a.low_ ? 1 : 0);
        return r;
    }
    friend constexpr Wide operator-(const Wide& a, const Wide& b) noexcept { return a + -b; }
    friend constexpr bool operator==(const Wide& a, const Wide& b) noexcept { return a.high_ == b.high_ && a.low_ == b.low_; }
    friend constexpr bool operator!=(const Wide& a, const Wide& b) noexcept { return !(a == b); }
    friend constexpr bool operator<(const Wide& a, const Wide& b) noexcept
    {
        if (a.high_ != b.high_) return (a.high_ ^ (std::uint64_t(1) << 63)) < (b.high_ ^ (std::uint64_t(1) << 63));
        return a.low_ < b.low_;
    }
    friend constexpr bool operator>(const Wide& a, const Wide& b) noexcept { return b < a; }

private:
    static constexpr std::uint64_t magnitudeOf(std::int64_t v) noexcept
    {
        return v < 0 ? ~static_cast<std::uint64_t>(v) + 1 : static_cast<std::uint64_t>(v);
    }
    static constexpr Wide unsignedProduct(std::uint64_t a, std::uint64_t b) noexcept
    {
        // Four 32-bit partial products, each exact in 64 bits.
        const std::uint64_t a0 = a & 0xFFFFFFFFu, a1 = a >> 32, b0 = b & 0xFFFFFFFFu, b1 = b >> 32;
        const std::uint64_t p00 = a0 * b0, p01 = a0 * b1, p10 = a1 * b0, p11 = a1 * b1;
        const std::uint64_t middle = (p00 >> 32) + (p01 & 0xFFFFFFFFu) + (p10 & 0xFFFFFFFFu);
        Wide r;
        r.low_ = (middle << 32) | (p00 & 0xFFFFFFFFu);
        r.high_ = p11 + (p01 >> 32) + (p10 >> 32) + (middle >> 32);
        return r;
    }

    std::uint64_t high_ = 0, low_ = 0;
};

} // namespace quillon::region_detail

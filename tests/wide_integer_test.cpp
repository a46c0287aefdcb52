// SPDX-License-Identifier: MIT
// The two-half 128-bit integer of scan conversion: products, sums, comparisons and floor division
// by identities that hold on every target, and against the compiler's own 128-bit type where there
// is one, on seeded values near the limits of the 64-bit factors.
#include "../src/platform/Wide.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace {

using quillon::region_detail::Wide;

std::vector<std::int64_t> factors()
{
    const std::int64_t most = std::numeric_limits<std::int64_t>::max();
    std::vector<std::int64_t> v = {0, 1, -1, 2, -2, 3, most, -most, -most - 1, std::int64_t(1) << 32,
                                   -(std::int64_t(1) << 32), (std::int64_t(1) << 32) - 1, std::int64_t(1) << 62};
    std::mt19937_64 rng(20261125);
    for (int i = 0; i < 400; ++i) {
        const int bits = static_cast<int>(rng() % 63);
        const std::int64_t m = static_cast<std::int64_t>(rng() >> (63 - bits) >> 1);
        v.push_back(rng() & 1 ? -m : m);
    }
    return v;
}

TEST(WideInteger, FloorDivisionUndoesTheProduct)
{
    const auto values = factors();
    for (const std::int64_t a : values) {
        for (const std::int64_t b : values) {
            if (b <= 0) continue;
            const Wide p = Wide::product(a, b);
            // floor((a b + r) / b) = a for 0 <= r < b, and a - 1 for -b <= r < 0.
            ASSERT_EQ(Wide::floorDiv(p, b), Wide(a)) << a << " " << b;
            ASSERT_EQ(Wide::floorDiv(p + Wide(b - 1), b), Wide(a)) << a << " " << b;
            ASSERT_EQ(Wide::floorDiv(p - Wide(1), b), Wide(a) - Wide(1)) << a << " " << b;
            ASSERT_EQ(Wide::floorDiv(p - Wide(b), b), Wide(a) - Wide(1)) << a << " " << b;
            ASSERT_TRUE(Wide::floorDiv(p, b).fits64());
            ASSERT_EQ(Wide::floorDiv(p, b).to64(), a);
        }
    }
}

TEST(WideInteger, ProductSignsAndOrder)
{
    const auto values = factors();
    for (const std::int64_t a : values) {
        for (const std::int64_t b : values) {
            const Wide p = Wide::product(a, b);
            ASSERT_EQ(p, Wide::product(b, a));
            if (b != std::numeric_limits<std::int64_t>::min()) {
                ASSERT_EQ(-p, Wide::product(a, -b));
            }
            ASSERT_EQ(p.negative(), (a < 0) != (b < 0) && a != 0 && b != 0);
            ASSERT_EQ(Wide(a) < Wide(b), a < b);
            ASSERT_EQ(Wide(a) > Wide(b), a > b);
            ASSERT_EQ(p < p + Wide(1), true);
            ASSERT_EQ(Wide(a) + Wide(b) - Wide(b), Wide(a));
        }
    }
    // 2^126 is the largest magnitude a product of 64-bit factors can have, reached by -2^63 squared.
    const Wide top = Wide::product(std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(top.high(), std::uint64_t(1) << 62);
    EXPECT_EQ(top.low(), 0u);
    EXPECT_FALSE(top.fits64());
}

#if defined(__SIZEOF_INT128__)
// Where the compiler has a 128-bit type, every result has its bits.
TEST(WideInteger, AgreesWithTheBuiltInType)
{
    const auto values = factors();
    auto same = [](const Wide& w, __int128 v) {
        const auto u = static_cast<unsigned __int128>(v);
        return w.high() == static_cast<std::uint64_t>(u >> 64) && w.low() == static_cast<std::uint64_t>(u);
    };
    for (const std::int64_t a : values) {
        for (const std::int64_t b : values) {
            const __int128 p = static_cast<__int128>(a) * b;
            ASSERT_TRUE(same(Wide::product(a, b), p)) << a << " " << b;
            const std::int64_t magnitude = b == std::numeric_limits<std::int64_t>::min() ? 0 : b < 0 ? -b : b;
            for (const std::int64_t c : {std::int64_t(1), std::int64_t(3), std::int64_t(1000003), magnitude}) {
                if (c <= 0) continue;
                const __int128 sum = p + static_cast<__int128>(a) * 7 - b;
                const __int128 q = sum / c;
                const __int128 floor = (q * c > sum) ? q - 1 : q;
                ASSERT_TRUE(same(Wide::floorDiv(Wide::product(a, b) + Wide::product(a, 7) - Wide(b), c), floor))
                    << a << " " << b << " " << c;
            }
        }
    }
}
#endif

} // namespace

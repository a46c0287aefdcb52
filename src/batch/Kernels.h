// SPDX-License-Identifier: MIT
// The mapping kernels behind quillon::mapPoints, one set per instruction set, and the body they
// share. Each kernel maps the first n - n % width points of the array (whole groups of `width`
// points, read as a block before the block is written, so the arrays may be one and the same)
// and returns how many it mapped; the caller maps the rest one by one.
//
// m is rows 0 to 2 of the transform, twelve elements in linear order, already in double. Every
// lane computes, for its own point and row r,
//   ((m[4r] * x + m[4r + 1] * y) + m[4r + 2] * z) + m[4r + 3]
// in double, one operation at a time: the products and sums of the per-point operator in its
// order. The kernel translation units are compiled without contraction, so no multiply and add
// fuse, and float results are rounded once, by the conversion the scalar code uses too.
#ifndef QUILLON_BATCH_KERNELS_H
#define QUILLON_BATCH_KERNELS_H

#include <cstddef>

namespace quillon::batch::kernels {

// Points of three doubles; roundIn rounds each component to float first (a Transform<float>
// taking a double vector).
using MapDoubles = std::size_t (*)(const double* m, const double* in, double* out, std::size_t n, bool roundIn) noexcept;
// Points of three floats, widened on the way in and rounded to float on the way out.
using MapFloats = std::size_t (*)(const double* m, const float* in, float* out, std::size_t n) noexcept;

std::size_t mapDoublesSse2(const double* m, const double* in, double* out, std::size_t n, bool roundIn) noexcept;
std::size_t mapFloatsSse2(const double* m, const float* in, float* out, std::size_t n) noexcept;
std::size_t mapDoublesAvx2(const double* m, const double* in, double* out, std::size_t n, bool roundIn) noexcept;
std::size_t mapFloatsAvx2(const double* m, const float* in, float* out, std::size_t n) noexcept;
std::size_t mapDoublesAvx512(const double* m, const double* in, double* out, std::size_t n, bool roundIn) noexcept;
std::size_t mapFloatsAvx512(const double* m, const float* in, float* out, std::size_t n) noexcept;

} // namespace quillon::batch::kernels

#ifdef QUILLON_BATCH_KERNEL_BODY
// The body, written once over a lane type L that gives, for its instruction set:
//   V, width                    a vector of `width` doubles
//   set1, add, mul              broadcast and lane-wise IEEE double arithmetic
//   loadDoubles, storeDoubles   3 * width doubles, unaligned, as three vectors
//   loadFloats, storeFloats     3 * width floats widened to / rounded from three vectors
//   toFloatAndBack              each lane rounded to float and widened again
//   split, join                 three vectors of interleaved x, y, z to one vector each, and back
namespace {

template <class L>
struct Rows {
    typename L::V e[12];
    explicit Rows(const double* m) noexcept
    {
        for (int k = 0; k < 12; ++k) e[k] = L::set1(m[k]);
    }
    typename L::V row(int r, typename L::V x, typename L::V y, typename L::V z) const noexcept
    {
        return L::add(L::add(L::add(L::mul(e[4 * r], x), L::mul(e[4 * r + 1], y)), L::mul(e[4 * r + 2], z)),
                      e[4 * r + 3]);
    }
};

template <class L>
std::size_t mapDoublesBody(const double* m, const double* in, double* out, std::size_t n, bool roundIn) noexcept
{
    const Rows<L> rows(m);
    const std::size_t whole = n - n % L::width;
    for (std::size_t i = 0; i < whole; i += L::width) {
        typename L::V a, b, c, x, y, z;
        L::loadDoubles(in + 3 * i, a, b, c);
        L::split(a, b, c, x, y, z);
        if (roundIn) {
            x = L::toFloatAndBack(x);
            y = L::toFloatAndBack(y);
            z = L::toFloatAndBack(z);
        }
        L::join(rows.row(0, x, y, z), rows.row(1, x, y, z), rows.row(2, x, y, z), a, b, c);
        L::storeDoubles(out + 3 * i, a, b, c);
    }
    return whole;
}

template <class L>
std::size_t mapFloatsBody(const double* m, const float* in, float* out, std::size_t n) noexcept
{
    const Rows<L> rows(m);
    const std::size_t whole = n - n % L::width;
    for (std::size_t i = 0; i < whole; i += L::width) {
        typename L::V a, b, c, x, y, z;
        L::loadFloats(in + 3 * i, a, b, c);
        L::split(a, b, c, x, y, z);
        L::join(rows.row(0, x, y, z), rows.row(1, x, y, z), rows.row(2, x, y, z), a, b, c);
        L::storeFloats(out + 3 * i, a, b, c);
    }
    return whole;
}

} // namespace
#endif

#endif

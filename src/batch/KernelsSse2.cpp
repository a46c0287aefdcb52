// SPDX-License-Identifier: MIT
// The kernels for SSE2, the baseline of every x86-64 processor: two points at a time.
#define QUILLON_BATCH_KERNEL_BODY
#include "Kernels.h"

#include <emmintrin.h>

namespace {

struct Sse2 {
    using V = __m128d;
    static constexpr std::size_t width = 2;
    static V set1(double v) noexcept { return _mm_set1_pd(v); }
    static V add(V a, V b) noexcept { return _mm_add_pd(a, b); }
    static V mul(V a, V b) noexcept { return _mm_mul_pd(a, b); }
    static V toFloatAndBack(V a) noexcept { return _mm_cvtps_pd(_mm_cvtpd_ps(a)); }

    static void loadDoubles(const double* p, V& a, V& b, V& c) noexcept
    {
        a = _mm_loadu_pd(p), b = _mm_loadu_pd(p + 2), c = _mm_loadu_pd(p + 4);
    }
    static void storeDoubles(double* p, V a, V b, V c) noexcept
    {
        _mm_storeu_pd(p, a), _mm_storeu_pd(p + 2, b), _mm_storeu_pd(p + 4, c);
    }
    // Two floats, 8 bytes, in and out.
    static V loadPair(const float* p) noexcept
    {
        return _mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))));
    }
    static void storePair(float* p, V a) noexcept
    {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_castps_si128(_mm_cvtpd_ps(a)));
    }
    static void loadFloats(const float* p, V& a, V& b, V& c) noexcept
    {
        a = loadPair(p), b = loadPair(p + 2), c = loadPair(p + 4);
    }
    static void storeFloats(float* p, V a, V b, V c) noexcept
    {
        storePair(p, a), storePair(p + 2, b), storePair(p + 4, c);
    }

    // a = (x0, y0), b = (z0, x1), c = (y1, z1).
    static void split(V a, V b, V c, V& x, V& y, V& z) noexcept
    {
        x = _mm_shuffle_pd(a, b, 0b10);
        y = _mm_shuffle_pd(a, c, 0b01);
        z = _mm_shuffle_pd(b, c, 0b10);
    }
    static void join(V x, V y, V z, V& a, V& b, V& c) noexcept
    {
        a = _mm_shuffle_pd(x, y, 0b00);
        b = _mm_shuffle_pd(z, x, 0b10);
        c = _mm_shuffle_pd(y, z, 0b11);
    }
};

} // namespace

namespace quillon::batch::kernels {
std::size_t mapDoublesSse2(const double* m, const double* in, double* out, std::size_t n, bool roundIn) noexcept
{
    return mapDoublesBody<Sse2>(m, in, out, n, roundIn);
}
std::size_t mapFloatsSse2(const double* m, const float* in, float* out, std::size_t n) noexcept
{
    return mapFloatsBody<Sse2>(m, in, out, n);
}
} // namespace quillon::batch::kernels

// SPDX-License-Identifier: MIT
// The kernels for AVX2 (compiled with -mavx2 and nothing more, and called only where the
// processor and the operating system support it): four points at a time.
#define QUILLON_BATCH_KERNEL_BODY
#include "Kernels.h"

#include <immintrin.h>

namespace {

struct Avx2 {
    using V = __m256d;
    static constexpr std::size_t width = 4;
    static V set1(double v) noexcept { return _mm256_set1_pd(v); }
    static V add(V a, V b) noexcept { return _mm256_add_pd(a, b); }
    static V mul(V a, V b) noexcept { return _mm256_mul_pd(a, b); }
    static V toFloatAndBack(V a) noexcept { return _mm256_cvtps_pd(_mm256_cvtpd_ps(a)); }

    static void loadDoubles(const double* p, V& a, V& b, V& c) noexcept
    {
        a = _mm256_loadu_pd(p), b = _mm256_loadu_pd(p + 4), c = _mm256_loadu_pd(p + 8);
    }
    static void storeDoubles(double* p, V a, V b, V c) noexcept
    {
        _mm256_storeu_pd(p, a), _mm256_storeu_pd(p + 4, b), _mm256_storeu_pd(p + 8, c);
    }
    static void loadFloats(const float* p, V& a, V& b, V& c) noexcept
    {
        a = _mm256_cvtps_pd(_mm_loadu_ps(p)), b = _mm256_cvtps_pd(_mm_loadu_ps(p + 4)),
        c = _mm256_cvtps_pd(_mm_loadu_ps(p + 8));
    }
    static void storeFloats(float* p, V a, V b, V c) noexcept
    {
        _mm_storeu_ps(p, _mm256_cvtpd_ps(a)), _mm_storeu_ps(p + 4, _mm256_cvtpd_ps(b)),
            _mm_storeu_ps(p + 8, _mm256_cvtpd_ps(c));
    }

    // a = (x0 y0 z0 x1), b = (y1 z1 x2 y2), c = (z2 x3 y3 z3). Regrouped by 128-bit halves,
    // each half holds two points as the SSE2 kernel reads them: points 0 and 1 in the low
    // halves, 2 and 3 in the high ones; the shuffles then work half by half.
    static void split(V a, V b, V c, V& x, V& y, V& z) noexcept
    {
        const V p = _mm256_permute2f128_pd(a, b, 0x30); // x0 y0 | x2 y2
        const V q = _mm256_permute2f128_pd(a, c, 0x21); // z0 x1 | z2 x3
        const V r = _mm256_permute2f128_pd(b, c, 0x30); // y1 z1 | y3 z3
        x = _mm256_shuffle_pd(p, q, 0b1010);
        y = _mm256_shuffle_pd(p, r, 0b0101);
        z = _mm256_shuffle_pd(q, r, 0b1010);
    }
    static void join(V x, V y, V z, V& a, V& b, V& c) noexcept
    {
        const V p = _mm256_shuffle_pd(x, y, 0b0000); // x0 y0 | x2 y2
        const V q = _mm256_shuffle_pd(z, x, 0b1010); // z0 x1 | z2 x3
        const V r = _mm256_shuffle_pd(y, z, 0b1111); // y1 z1 | y3 z3
        a = _mm256_permute2f128_pd(p, q, 0x20);
        b = _mm256_permute2f128_pd(r, p, 0x30);
        c = _mm256_permute2f128_pd(q, r, 0x31);
    }
};

} // namespace

namespace quillon::batch::kernels {
std::size_t mapDoublesAvx2(const double* m, const double* in, double* out, std::size_t n, bool roundIn) noexcept
{
    return mapDoublesBody<Avx2>(m, in, out, n, roundIn);
}
std::size_t mapFloatsAvx2(const double* m, const float* in, float* out, std::size_t n) noexcept
{
    return mapFloatsBody<Avx2>(m, in, out, n);
}
} // namespace quillon::batch::kernels

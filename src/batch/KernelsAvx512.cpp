// SPDX-License-Identifier: MIT
// The kernels for AVX-512 (compiled with -mavx512f and nothing more, and called only where the
// processor and the operating system support it): eight points at a time.
#define QUILLON_BATCH_KERNEL_BODY
#include "Kernels.h"

#include <immintrin.h>

// GCC 12's _mm512_cvtpd_ps starts from an undefined vector and warns about it when inlined.
#if defined(__GNUC__) && !defined(__clang__)
#  pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

namespace {

struct Avx512 {
    using V = __m512d;
    static constexpr std::size_t width = 8;
    static V set1(double v) noexcept { return _mm512_set1_pd(v); }
    static V add(V a, V b) noexcept { return _mm512_add_pd(a, b); }
    static V mul(V a, V b) noexcept { return _mm512_mul_pd(a, b); }
    static V toFloatAndBack(V a) noexcept { return _mm512_cvtps_pd(_mm512_cvtpd_ps(a)); }

    static void loadDoubles(const double* p, V& a, V& b, V& c) noexcept
    {
        a = _mm512_loadu_pd(p), b = _mm512_loadu_pd(p + 8), c = _mm512_loadu_pd(p + 16);
    }
    static void storeDoubles(double* p, V a, V b, V c) noexcept
    {
        _mm512_storeu_pd(p, a), _mm512_storeu_pd(p + 8, b), _mm512_storeu_pd(p + 16, c);
    }
    static void loadFloats(const float* p, V& a, V& b, V& c) noexcept
    {
        a = _mm512_cvtps_pd(_mm256_loadu_ps(p)), b = _mm512_cvtps_pd(_mm256_loadu_ps(p + 8)),
        c = _mm512_cvtps_pd(_mm256_loadu_ps(p + 16));
    }
    static void storeFloats(float* p, V a, V b, V c) noexcept
    {
        _mm256_storeu_ps(p, _mm512_cvtpd_ps(a)), _mm256_storeu_ps(p + 8, _mm512_cvtpd_ps(b)),
            _mm256_storeu_ps(p + 16, _mm512_cvtpd_ps(c));
    }

    // Two-source permutes: an index below 8 takes that lane of the first source, 8 + k lane k
    // of the second. Lanes marked 0 in a first step are filled by the second.
    static __m512i index(long long i0, long long i1, long long i2, long long i3, long long i4, long long i5,
                         long long i6, long long i7) noexcept
    {
        return _mm512_set_epi64(i7, i6, i5, i4, i3, i2, i1, i0);
    }
    static V pick(V first, __m512i at, V second) noexcept { return _mm512_permutex2var_pd(first, at, second); }

    // a, b, c hold the 24 components of points 0 to 7 in order: component k of point i is at
    // place 3i + k, in a (places 0-7), b (8-15) or c (16-23).
    static void split(V a, V b, V c, V& x, V& y, V& z) noexcept
    {
        x = pick(pick(a, index(0, 3, 6, 9, 12, 15, 0, 0), b), index(0, 1, 2, 3, 4, 5, 10, 13), c);
        y = pick(pick(a, index(1, 4, 7, 10, 13, 0, 0, 0), b), index(0, 1, 2, 3, 4, 8, 11, 14), c);
        z = pick(pick(a, index(2, 5, 8, 11, 14, 0, 0, 0), b), index(0, 1, 2, 3, 4, 9, 12, 15), c);
    }
    static void join(V x, V y, V z, V& a, V& b, V& c) noexcept
    {
        a = pick(pick(x, index(0, 8, 0, 1, 9, 0, 2, 10), y), index(0, 1, 8, 3, 4, 9, 6, 7), z);
        b = pick(pick(x, index(0, 3, 11, 0, 4, 12, 0, 5), y), index(10, 1, 2, 11, 4, 5, 12, 7), z);
        c = pick(pick(x, index(13, 0, 6, 14, 0, 7, 15, 0), y), index(0, 13, 2, 3, 14, 5, 6, 15), z);
    }
};

} // namespace

namespace quillon::batch::kernels {
std::size_t mapDoublesAvx512(const double* m, const double* in, double* out, std::size_t n, bool roundIn) noexcept
{
    return mapDoublesBody<Avx512>(m, in, out, n, roundIn);
}
std::size_t mapFloatsAvx512(const double* m, const float* in, float* out, std::size_t n) noexcept
{
    return mapFloatsBody<Avx512>(m, in, out, n);
}
} // namespace quillon::batch::kernels

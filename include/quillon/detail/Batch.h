// SPDX-License-Identifier: MIT
// Quillon batch mapping: n points through one transform in a single call.
//
//   quillon::mapPoints(t, in, out, n);   // out[i] = t * in[i] for i < n, bit for bit
//
// For every pair of Transform<A> and ThreeDVector<B> (A = float, double, guarddouble; B = int,
// float, double, guardint, guardfloat, guarddouble) each out[i] has the bits the per-point
// operator gives (a NaN may carry another payload). out may be in itself (mapping in place); other
// overlaps are not allowed. Any n, including 0, and any alignment the element type permits.
//
// The pairs of float and double transforms with float and double vectors run in the kernels of
// libquillon_batch (brought in by Quillon::quillon), which use the vector units the processor
// has: SSE2, AVX2 or AVX-512 on x86-64, chosen at run time, so a program compiled for plain
// x86-64 still uses the wider units where they exist. Each lane does the per-point operator's
// products and sums in its order, without fused multiply-add. The other pairs map point by point
// through the operator itself.
#ifndef QUILLON_BATCH
#define QUILLON_BATCH

#include <quillon/Transform>

#include <cstddef>
#include <type_traits>

namespace quillon {

namespace batch {
// The kernels' instruction sets. Plain is the point-by-point loop.
enum class Path : int { Plain = 0, Sse2 = 1, Avx2 = 2, Avx512 = 3 };

// Whether this build and this processor can run the path.
bool supported(Path path) noexcept;
// The path in use: the widest supported one, unless forcePath chose another.
Path currentPath() noexcept;
// Makes every later call in the program use the path (for tests and measurements: every path
// gives the same bits); false, changing nothing, if the path is not supported.
bool forcePath(Path path) noexcept;

// The kernels' entries: m holds rows 0 to 2 of the matrix in linear order, widened to double;
// in and out hold three components per point.
void mapDoubles(const double (&m)[12], const double* in, double* out, std::size_t n, bool roundIn) noexcept;
void mapFloats(const double (&m)[12], const float* in, float* out, std::size_t n) noexcept;
} // namespace batch

template <class A, class B>
void mapPoints(const Transform<A>& t, const ThreeDVector<B>* in, ThreeDVector<B>* out, std::size_t n) noexcept
{
    constexpr bool plainA = std::is_same_v<A, float> || std::is_same_v<A, double>;
    constexpr bool plainB = std::is_same_v<B, float> || std::is_same_v<B, double>;
    if constexpr (plainA && plainB) {
        // A vector of either type is its three components and nothing else.
        static_assert(std::is_standard_layout_v<ThreeDVector<B>> && sizeof(ThreeDVector<B>) == 3 * sizeof(B));
        A e[16] = {}; // written by Function_2416
        t.Function_2416(e);
        double m[12];
        for (int k = 0; k < 12; ++k) m[k] = static_cast<double>(e[k]);
        if constexpr (std::is_same_v<B, double>) {
            // A Transform<float> rounds a double component to float as it reads it.
            batch::mapDoubles(m, reinterpret_cast<const double*>(in), reinterpret_cast<double*>(out), n,
                              std::is_same_v<A, float>);
        } else {
            // A float component enters either transform's arithmetic exactly; the sum is rounded
            // to float once.
            batch::mapFloats(m, reinterpret_cast<const float*>(in), reinterpret_cast<float*>(out), n);
        }
    } else {
        for (std::size_t i = 0; i < n; ++i) out[i] = t * in[i];
    }
}

} // namespace quillon

#endif

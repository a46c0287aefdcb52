// SPDX-License-Identifier: MIT
// quillon::mapPoints' library side: which kernels this processor runs, chosen once from its
// features (and changed only by forcePath), and the plain loop that maps whatever the kernels
// leave: the last points of an array, and everything where no kernel fits.
#include <quillon/Batch>

#include "Kernels.h"

#include <atomic>
#include <cstdint>
#include <initializer_list>

namespace quillon::batch {
namespace {

struct Kernels {
    kernels::MapDoubles doubles;
    kernels::MapFloats floats;
};

Kernels kernelsOf(Path path) noexcept
{
    switch (path) {
#if defined(QUILLON_BATCH_SSE2)
    case Path::Sse2: return {kernels::mapDoublesSse2, kernels::mapFloatsSse2};
#endif
#if defined(QUILLON_BATCH_AVX)
    case Path::Avx2: return {kernels::mapDoublesAvx2, kernels::mapFloatsAvx2};
    case Path::Avx512: return {kernels::mapDoublesAvx512, kernels::mapFloatsAvx512};
#endif
    default: return {nullptr, nullptr};
    }
}

bool processorHas(Path path) noexcept
{
    switch (path) {
    case Path::Plain: return true;
#if defined(QUILLON_BATCH_SSE2)
    case Path::Sse2: return true; // every processor the library is built for has it
#endif
#if defined(QUILLON_BATCH_AVX)
    // The compiler's feature test counts AVX features only where the operating system saves the
    // wide registers.
    case Path::Avx2: __builtin_cpu_init(); return __builtin_cpu_supports("avx2");
    case Path::Avx512: __builtin_cpu_init(); return __builtin_cpu_supports("avx512f");
#endif
    default: return false;
    }
}

Path best() noexcept
{
    for (Path p : {Path::Avx512, Path::Avx2, Path::Sse2})
        if (processorHas(p)) return p;
    return Path::Plain;
}

constexpr int kUnset = -1;
std::atomic<int> chosen{kUnset};

Path active() noexcept
{
    int p = chosen.load(std::memory_order_relaxed);
    if (p == kUnset) {
        p = static_cast<int>(best());
        chosen.store(p, std::memory_order_relaxed);
    }
    return static_cast<Path>(p);
}

// The per-point operator's arithmetic, on the twelve elements in double.
double row(const double* m, int r, double x, double y, double z) noexcept
{
    return ((m[4 * r] * x + m[4 * r + 1] * y) + m[4 * r + 2] * z) + m[4 * r + 3];
}

} // namespace

bool supported(Path path) noexcept { return processorHas(path); }

Path currentPath() noexcept { return active(); }

bool forcePath(Path path) noexcept
{
    if (!processorHas(path)) return false;
    chosen.store(static_cast<int>(path), std::memory_order_relaxed);
    return true;
}

// How many points to map one at a time before the kernel, so that the kernel's stores start on
// a 64-byte line and no vector store straddles two: at most one line's worth of points, and none
// where no point of the line starts on it (an output not aligned to its element).
template <class T>
std::size_t pointsBeforeLine(const T* out, std::size_t n) noexcept
{
    constexpr std::size_t line = 64, perLine = line / sizeof(T);
    for (std::size_t k = 0; k < perLine && k < n; ++k)
        if (reinterpret_cast<std::uintptr_t>(out + 3 * k) % line == 0) return k;
    return 0;
}

void mapDoubles(const double (&m)[12], const double* in, double* out, std::size_t n, bool roundIn) noexcept
{
    const auto one = [&](std::size_t i) {
        double x = in[3 * i], y = in[3 * i + 1], z = in[3 * i + 2];
        if (roundIn) {
            x = static_cast<float>(x);
            y = static_cast<float>(y);
            z = static_cast<float>(z);
        }
        out[3 * i] = row(m, 0, x, y, z);
        out[3 * i + 1] = row(m, 1, x, y, z);
        out[3 * i + 2] = row(m, 2, x, y, z);
    };
    const std::size_t head = pointsBeforeLine(out, n);
    for (std::size_t i = 0; i < head; ++i) one(i);
    std::size_t done = head;
    if (const auto kernel = kernelsOf(active()).doubles)
        done += kernel(m, in + 3 * head, out + 3 * head, n - head, roundIn);
    for (std::size_t i = done; i < n; ++i) one(i);
}

void mapFloats(const double (&m)[12], const float* in, float* out, std::size_t n) noexcept
{
    const auto one = [&](std::size_t i) {
        const double x = in[3 * i], y = in[3 * i + 1], z = in[3 * i + 2];
        out[3 * i] = static_cast<float>(row(m, 0, x, y, z));
        out[3 * i + 1] = static_cast<float>(row(m, 1, x, y, z));
        out[3 * i + 2] = static_cast<float>(row(m, 2, x, y, z));
    };
    const std::size_t head = pointsBeforeLine(out, n);
    for (std::size_t i = 0; i < head; ++i) one(i);
    std::size_t done = head;
    if (const auto kernel = kernelsOf(active()).floats) done += kernel(m, in + 3 * head, out + 3 * head, n - head);
    for (std::size_t i = done; i < n; ++i) one(i);
}

} // namespace quillon::batch

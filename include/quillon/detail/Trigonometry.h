// SPDX-License-Identifier: MIT
// The sine and cosine behind every rotation: by default the library's own, correctly rounded to
// nearest, so the same bits on every platform and with every C library. They live in
// libquillon_trig, a static library that Quillon::quillon and quillon.pc link into the caller (the
// members using them are inline). Built with QUILLON_PLATFORM_TRIG, rotations take the C
// library's sin and cos instead, as Quillon.dll does for the programs that load it.
#pragma once

#include <cmath>

namespace quillon {
/// sin x rounded to nearest: sin(-0) = -0, infinities and NaN give NaN.
double sine(double x) noexcept;
/// cos x rounded to nearest: infinities and NaN give NaN.
double cosine(double x) noexcept;

/// sin x and cos x, the same bits as sine(x) and cosine(x).
struct SineCosine {
    double sin; ///< sine(x)
    double cos; ///< cosine(x)
};
/// Both at once: the argument is reduced once (what a rotation needs).
SineCosine sineCosine(double x) noexcept;

// sin and cos of the platform's C library, whose last bits vary by platform and by release.
// mingw-w64 links replacements of its own ahead of the Windows C runtime's; the runtime's are
// called through their import entries instead.
#if defined(__MINGW32__)
#  if defined(__i386__)
extern "C" double (*const quillon_crt_sin)(double) __asm__("__imp__sin");
extern "C" double (*const quillon_crt_cos)(double) __asm__("__imp__cos");
#  else
extern "C" double (*const quillon_crt_sin)(double) __asm__("__imp_sin");
extern "C" double (*const quillon_crt_cos)(double) __asm__("__imp_cos");
#  endif
inline double platformSin(double a) noexcept { return quillon_crt_sin(a); }
inline double platformCos(double a) noexcept { return quillon_crt_cos(a); }
#else
inline double platformSin(double a) noexcept { return std::sin(a); } ///< sin of the platform's C library
inline double platformCos(double a) noexcept { return std::cos(a); } ///< cos of the platform's C library
#endif

/// The sine and cosine of an angle of a rotation (the Euler constructor and the turns).
#if defined(QUILLON_PLATFORM_TRIG)
inline SineCosine rotationSineCosine(double a) noexcept { return {platformSin(a), platformCos(a)}; }
#else
inline SineCosine rotationSineCosine(double a) noexcept { return sineCosine(a); }
#endif
} // namespace quillon

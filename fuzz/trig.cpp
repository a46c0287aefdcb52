// SPDX-License-Identifier: MIT
// quillon::sine, cosine and sineCosine against MPFR on arbitrary bits: every 8 bytes of the input
// are one double, whose sine and cosine must be MPFR's round-to-nearest result, bit for bit.
#include <quillon/detail/Trigonometry.h>

#include <mpfr.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {
double reference(double x, bool cosine)
{
    static const bool ready = [] {
        mpfr_set_emin(-1073);
        mpfr_set_emax(1024);
        return true;
    }();
    (void)ready;
    mpfr_t v;
    mpfr_init2(v, 53);
    mpfr_set_d(v, x, MPFR_RNDN);
    const int t = cosine ? mpfr_cos(v, v, MPFR_RNDN) : mpfr_sin(v, v, MPFR_RNDN);
    mpfr_subnormalize(v, t, MPFR_RNDN);
    const double r = mpfr_get_d(v, MPFR_RNDN);
    mpfr_clear(v);
    return r;
}

void expect(const char* what, double x, double got, double want)
{
    if (std::memcmp(&got, &want, sizeof got) == 0 || (got != got && want != want))
        return;
    std::fprintf(stderr, "%s(%a) = %a, MPFR gives %a\n", what, x, got, want);
    std::abort();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    for (std::size_t at = 0; at + 8 <= size; at += 8) {
        double x;
        std::memcpy(&x, data + at, sizeof x);
        const double s = reference(x, false), c = reference(x, true);
        expect("sine", x, quillon::sine(x), s);
        expect("cosine", x, quillon::cosine(x), c);
        const quillon::SineCosine both = quillon::sineCosine(x);
        expect("sineCosine().sin", x, both.sin, s);
        expect("sineCosine().cos", x, both.cos, c);
    }
    return 0;
}

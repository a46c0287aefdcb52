// SPDX-License-Identifier: MIT
// Writes src/trig/Tables.cpp, the constants of quillon::sine and quillon::cosine, from MPFR:
//   generate_trig_tables > src/trig/Tables.cpp
// The test trig_tables runs it again and compares, so the committed file cannot drift.
#include <mpfr.h>

#include <cstdint>
#include <cstdio>
#include <initializer_list>

namespace {
constexpr int kTwoOverPiWords = 64; // 2048 bits: the largest exponent (971) plus the widest window
constexpr int kPiOverTwoWords = 18; // the integer word and 17 fraction words (544 bits)
constexpr int kTableLast = 204;     // sin and cos of i/256 up to just past pi/4 (201.06)

// v in 32-bit words, most significant first, truncated: with integerWord, word 0 is the integer
// part (below 2^32) and word i >= 1 is floor(v * 2^(32 i)) mod 2^32; without, word i is
// floor(v * 2^(32 (i + 1))) mod 2^32.
void words(mpfr_t v, int count, bool integerWord, const char* name)
{
    mpfr_t t, w;
    mpfr_inits2(4096, t, w, (mpfr_ptr)nullptr);
    mpfr_set(t, v, MPFR_RNDN);
    std::printf("const std::uint32_t %s[%d] = {", name, count);
    for (int i = 0; i < count; ++i) {
        if (i > 0 || !integerWord)
            mpfr_mul_2ui(t, t, 32, MPFR_RNDN);
        mpfr_floor(w, t);
        const unsigned long word = mpfr_get_ui(w, MPFR_RNDN);
        mpfr_sub(t, t, w, MPFR_RNDN);
        std::printf("%s0x%08lx,", i % 6 == 0 ? "\n    " : " ", word);
    }
    std::printf("\n};\n\n");
    mpfr_clears(t, w, (mpfr_ptr)nullptr);
}

// v rounded to `bits` significant bits, as a double; v becomes the remainder.
double peel(mpfr_t v, int bits)
{
    mpfr_t p;
    mpfr_init2(p, bits);
    mpfr_set(p, v, MPFR_RNDN);
    const double d = mpfr_get_d(p, MPFR_RNDN);
    mpfr_sub(v, v, p, MPFR_RNDN);
    mpfr_clear(p);
    return d;
}
} // namespace

int main()
{
    mpfr_t pi, v, a, s, c;
    mpfr_inits2(4096, pi, v, a, s, c, (mpfr_ptr)nullptr);
    mpfr_const_pi(pi, MPFR_RNDN);

    std::printf("// SPDX-License-Identifier: MIT\n"
                "// Written by tools/trig-tables/generate_trig_tables.cpp from MPFR; do not edit.\n"
                "#include \"Tables.h\"\n\n"
                "namespace quillon::trig {\n\n");

    mpfr_ui_div(v, 2, pi, MPFR_RNDN);
    words(v, kTwoOverPiWords, false, "kTwoOverPi");
    mpfr_div_2ui(v, pi, 1, MPFR_RNDN);
    words(v, kPiOverTwoWords, true, "kPiOverTwo");

    // pi/2 = kCody[0] + kCody[1] + kCody[2] + kCody[3] + d: 31, 31, 31 and 53 significant bits.
    mpfr_div_2ui(v, pi, 1, MPFR_RNDN);
    const double c1 = peel(v, 31), c2 = peel(v, 31), c3 = peel(v, 31), c4 = peel(v, 53);
    std::printf("const double kCody[4] = {%a, %a, %a, %a};\n", c1, c2, c3, c4);
    std::printf("// |pi/2 - (kCody[0] + kCody[1] + kCody[2] + kCody[3])| = %.3e < 2^%ld\n\n", mpfr_get_d(v, MPFR_RNDN),
                (long)mpfr_get_exp(v));

    // For k < 2^8: pi/2 = kCodyShort[0] + kCodyShort[1] + kCodyShort[2] + d, 45, 45 and 53 bits.
    mpfr_div_2ui(v, pi, 1, MPFR_RNDN);
    const double d1 = peel(v, 45), d2 = peel(v, 45), d3 = peel(v, 53);
    std::printf("const double kCodyShort[3] = {%a, %a, %a};\n", d1, d2, d3);
    std::printf("// |pi/2 - (kCodyShort[0] + kCodyShort[1] + kCodyShort[2])| = %.3e < 2^%ld\n\n",
                mpfr_get_d(v, MPFR_RNDN), (long)mpfr_get_exp(v));

    // Each row: sin(i/256) as hi + lo, and as its leading 26 bits plus the nearest double to the
    // rest; then the same for cos(i/256).
    std::printf("const double kSinCos[%d][2][4] = {\n", kTableLast + 1);
    for (int i = 0; i <= kTableLast; ++i) {
        mpfr_set_ui(a, (unsigned long)i, MPFR_RNDN);
        mpfr_div_2ui(a, a, 8, MPFR_RNDN);
        mpfr_sin_cos(s, c, a, MPFR_RNDN);
        std::printf("    {");
        for (mpfr_ptr f : {s, c}) {
            mpfr_set(v, f, MPFR_RNDN);
            const double hi = peel(v, 53), lo = peel(v, 53);
            mpfr_set(v, f, MPFR_RNDN);
            const double lead = peel(v, 26), rest = peel(v, 53);
            std::printf("{%a, %a, %a, %a}%s", hi, lo, lead, rest, f == s ? ", " : "");
        }
        std::printf("},\n");
    }
    std::printf("};\n\n} // namespace quillon::trig\n");
    mpfr_clears(pi, v, a, s, c, (mpfr_ptr)nullptr);
    mpfr_free_cache();
}

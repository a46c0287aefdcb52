// SPDX-License-Identifier: MIT
// quillon::sine, cosine and sineCosine against MPFR (round to nearest): every hard-to-round
// argument of tests/data/trig-hard-cases with both signs, and a seeded battery over every binade,
// every quadrant and the neighbourhoods of multiples of pi/2. Each argument also checks:
//   - sineCosine gives the bits of sine and cosine;
//   - the fast path's estimate lies within the bound it claims (the rounding test trusts it);
//   - the accurate path alone, at 256 and at 512 bits, gives MPFR's result (every 16th argument).
// usage: quillon_trig_check [--hard DIR] [--count N] [--seed S]
// Exit status 0 when every result agrees, 1 with the first disagreements printed otherwise.
#include "quillon/detail/Trigonometry.h"

#include "../src/trig/Accurate.h"
#include "../src/trig/Fast.h"

#include <mpfr.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {
struct Checker {
    mpfr_t value, wide, sum;
    long checked = 0, failures = 0;
    double worstEstimate = 0; // the largest error of an estimate over its bound

    Checker()
    {
        mpfr_set_emin(-1073); // binary64's range, subnormals included
        mpfr_set_emax(1024);
        mpfr_init2(value, 53);
        mpfr_inits2(400, wide, sum, (mpfr_ptr) nullptr);
    }
    ~Checker()
    {
        mpfr_clears(value, wide, sum, (mpfr_ptr) nullptr);
        mpfr_free_cache();
    }

    double reference(double x, bool cosine)
    {
        mpfr_set_d(value, x, MPFR_RNDN);
        const int t = cosine ? mpfr_cos(value, value, MPFR_RNDN) : mpfr_sin(value, value, MPFR_RNDN);
        mpfr_subnormalize(value, t, MPFR_RNDN);
        return mpfr_get_d(value, MPFR_RNDN);
    }

    void fail(const char* what, double x, double got, double want)
    {
        if (++failures <= 20)
            std::printf("%s(%a) = %a, expected %a\n", what, x, got, want);
    }

    static bool same(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0 || (a != a && b != b); }

    // |exact - (hi + lo)| / bound for the fast path's estimate, where it takes the argument.
    void checkEstimate(double x, bool cosine)
    {
        const double ax = std::fabs(x);
        if (!(ax < INFINITY) || ax < (cosine ? 0x1p-27 : 0x1p-26))
            return;
        const quillon::trig::Estimate e = quillon::trig::estimate(x, cosine);
        mpfr_set_d(wide, x, MPFR_RNDN);
        cosine ? mpfr_cos(wide, wide, MPFR_RNDN) : mpfr_sin(wide, wide, MPFR_RNDN);
        mpfr_set_d(sum, e.hi, MPFR_RNDN);
        mpfr_add_d(sum, sum, e.lo, MPFR_RNDN);
        mpfr_sub(sum, sum, wide, MPFR_RNDN);
        const double ratio = std::fabs(mpfr_get_d(sum, MPFR_RNDN)) / e.bound;
        if (ratio > worstEstimate)
            worstEstimate = ratio;
        if (ratio > 1)
            fail(cosine ? "estimate of cos beyond its bound" : "estimate of sin beyond its bound", x, ratio, 1);
    }

    void check(double x, bool accurateToo)
    {
        const double s = reference(x, false), c = reference(x, true);
        const double gs = quillon::sine(x), gc = quillon::cosine(x);
        const quillon::SineCosine both = quillon::sineCosine(x);
        ++checked;
        if (!same(gs, s))
            fail("sine", x, gs, s);
        if (!same(gc, c))
            fail("cosine", x, gc, c);
        if (!same(both.sin, s))
            fail("sineCosine().sin", x, both.sin, s);
        if (!same(both.cos, c))
            fail("sineCosine().cos", x, both.cos, c);
        checkEstimate(x, false);
        checkEstimate(x, true);
        if (accurateToo && std::fabs(x) >= 0x1p-26 && std::fabs(x) < INFINITY)
            for (const bool cosine : {false, true}) {
                const double want = cosine ? c : s;
                for (const int words : {8, quillon::trig::kMaxWords}) {
                    double got;
                    const bool decided = quillon::trig::accurate(x, cosine, words, got);
                    if (!decided || !same(got, want))
                        fail(words == 8 ? (cosine ? "accurate cos, 256 bits" : "accurate sin, 256 bits")
                                        : (cosine ? "accurate cos, 512 bits" : "accurate sin, 512 bits"),
                             x, got, want);
                }
            }
    }
};

// Every line of DIR/sin.txt and DIR/cos.txt, with both signs.
bool hardCases(Checker& checker, const std::string& dir)
{
    for (const char* name : {"sin.txt", "cos.txt"}) {
        std::ifstream in(dir + "/" + name);
        if (!in) {
            std::fprintf(stderr, "quillon_trig_check: cannot read %s/%s\n", dir.c_str(), name);
            return false;
        }
        long lines = 0;
        for (std::string line; std::getline(in, line);) {
            if (line.empty())
                continue;
            const double x = std::strtod(line.c_str(), nullptr);
            checker.check(x, lines % 16 == 0);
            checker.check(-x, lines % 16 == 8);
            ++lines;
        }
        std::printf("%s: %ld arguments, both signs\n", name, lines);
    }
    return true;
}

// count arguments from the seed: a random binade with random bits; a double next to a multiple
// of pi/2 (k up to 2^60, from MPFR); a few units from the thresholds 2^-27 and 2^-26 and from
// k pi/4; and [-10, 10]. A fixed seed gives the same arguments on every machine.
void battery(Checker& checker, long count, std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    mpfr_t pi, k;
    mpfr_inits2(1200, pi, k, (mpfr_ptr) nullptr);
    mpfr_const_pi(pi, MPFR_RNDN);
    const auto fromBits = [](std::uint64_t b) {
        double d;
        std::memcpy(&d, &b, sizeof d);
        return d;
    };
    const auto nudge = [&](double d, int steps) {
        std::uint64_t b;
        std::memcpy(&b, &d, sizeof b);
        return fromBits(b + static_cast<std::uint64_t>(static_cast<std::int64_t>(steps)));
    };
    for (long i = 0; i < count; ++i) {
        const std::uint64_t r = random();
        const std::uint64_t sign = (r & 1) << 63;
        double x;
        switch (i % 4) {
        case 0: // any binade, subnormals included
            x = fromBits(sign | ((random() % 2047) << 52) | (random() & ((std::uint64_t{1} << 52) - 1)));
            break;
        case 1: { // the doubles next to k pi/2 or k pi/4
            const int bits = 1 + static_cast<int>(random() % 60);
            mpfr_set_ui(k, static_cast<unsigned long>(random() >> (64 - bits)) | 1, MPFR_RNDN);
            mpfr_mul(k, k, pi, MPFR_RNDN);
            mpfr_div_2ui(k, k, (r >> 1) % 3 == 0 ? 2 : 1, MPFR_RNDN);
            x = nudge(mpfr_get_d(k, MPFR_RNDN), static_cast<int>((r >> 8) % 9) - 4);
            x = sign ? -x : x;
            break;
        }
        case 2: // next to where the tiny cases end
            x = nudge((r >> 1) % 2 ? 0x1p-27 : 0x1p-26, static_cast<int>((r >> 2) % 2001) - 1000);
            x = sign ? -x : x;
            break;
        default:
            x = std::uniform_real_distribution<double>(-10.0, 10.0)(random);
        }
        checker.check(x, i % 16 == 3);
    }
    mpfr_clears(pi, k, (mpfr_ptr) nullptr);
    std::printf("battery: %ld arguments from seed %llu\n", count, static_cast<unsigned long long>(seed));
}
} // namespace

int main(int argc, char** argv)
{
    std::string hard;
    long count = 0;
    std::uint64_t seed = 1;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (i + 1 < argc && a == "--hard")
            hard = argv[++i];
        else if (i + 1 < argc && a == "--count")
            count = std::strtol(argv[++i], nullptr, 10);
        else if (i + 1 < argc && a == "--seed")
            seed = std::strtoull(argv[++i], nullptr, 10);
        else {
            std::fprintf(stderr, "usage: quillon_trig_check [--hard DIR] [--count N] [--seed S]\n");
            return 2;
        }
    }
    Checker checker;
    // The special values, whatever the data holds.
    for (const double x : {0.0, -0.0, double(INFINITY), -double(INFINITY), double(NAN), 0x1p-1074, -0x1p-1074, 0x1p-1022, 0x1.fffffffffffffp+1023,
                           -0x1.fffffffffffffp+1023})
        checker.check(x, true);
    if (!hard.empty() && !hardCases(checker, hard))
        return 2;
    if (count > 0)
        battery(checker, count, seed);
    std::printf("%ld arguments, %ld disagreements; the largest estimate error is %.3f of its bound\n", checker.checked,
                checker.failures, checker.worstEstimate);
    return checker.failures == 0 ? 0 : 1;
}

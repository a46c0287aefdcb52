// SPDX-License-Identifier: MIT
// quillon::mapPoints against the per-point operator: for all 18 pairs of transform and vector
// types, on every kernel path this processor runs, every length from 0 to 40 and a few
// thousands, arrays starting at offsets that break every vector alignment, separate and in place,
// the same bits in every component (NaN payloads aside), and nothing written past the last point.
#include <quillon/Batch>

#include "test_support.h"

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using quillon::batch::Path;

constexpr Path kPaths[] = {Path::Plain, Path::Sse2, Path::Avx2, Path::Avx512};
const char* name(Path p)
{
    switch (p) {
    case Path::Plain: return "plain";
    case Path::Sse2: return "SSE2";
    case Path::Avx2: return "AVX2";
    case Path::Avx512: return "AVX-512";
    }
    return "?";
}

// Puts the default path back when a test is done with forcing.
struct RestorePath {
    Path saved = quillon::batch::currentPath();
    ~RestorePath() { quillon::batch::forcePath(saved); }
};

const double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();

// Components where a kernel that strays from the operator shows: non-finite values, the guard
// limits, 2^24 and its neighbours (float ties once a translation of 0.5 or 1 is added), values
// whose float and double roundings differ, float overflow and underflow, int range edges.
double component(std::mt19937_64& rng)
{
    static const double special[] = {0.0, -0.0, kNaN, kInf, -kInf, kL, -kL, kLf, -kLf, kLi, -kLi,
                                     0x1p24, 0x1p24 + 1, 0x1p24 + 3, -0x1p24 - 1, 0x1p53 + 2, 0.1, 1.0 / 3.0,
                                     0.5 + 0x1p-25, 1e39, -1e39, 1e-45, 0x1p-1074, 3.0e9, 2147483647.5,
                                     -2147483648.5, 0.5, -0.5, 1.5, 2.5};
    switch (rng() % 6) {
    case 0: return special[rng() % std::size(special)];
    case 1: return static_cast<double>(static_cast<int>(rng() % 2001) - 1000) / 4;
    case 2: return std::ldexp(std::uniform_real_distribution<double>(-1, 1)(rng), static_cast<int>(rng() % 80) - 20);
    default: return std::uniform_real_distribution<double>(-5000, 5000)(rng);
    }
}

double element(std::mt19937_64& rng, int k)
{
    static const double special[] = {0.5, 1.0, -1.0, 0x1p-30, 0x1p24, 1e300, kNaN, kInf, 0.0, -0.0, kL};
    if (rng() % 8 == 0) return special[rng() % std::size(special)];
    if (k % 4 == 3 && rng() % 2) return static_cast<double>(static_cast<int>(rng() % 9) - 4) / 2; // a translation in halves
    return std::uniform_real_distribution<double>(-3, 3)(rng);
}

template <class A>
std::vector<Transform<A>> transforms(std::mt19937_64& rng)
{
    std::vector<Transform<A>> out;
    Transform<A> turned;
    turned.Function_2424(0.5235987755982988);
    turned.Function_2428('x', A(0.5));
    out.push_back(turned);
    out.push_back(Transform<A>());
    for (int n = 0; n < 4; ++n) {
        A e[16];
        for (int k = 0; k < 16; ++k) e[k] = quillon::Element<A>::fromDouble(element(rng, k));
        out.push_back(Transform<A>(e));
    }
    return out;
}

template <class B>
bool sameComponent(const B& a, const B& b)
{
    if constexpr (std::is_floating_point_v<B> || std::is_same_v<B, guardfloat> || std::is_same_v<B, guarddouble>) {
        if (std::isnan(val(a)) || std::isnan(val(b))) return std::isnan(val(a)) && std::isnan(val(b));
    }
    return bits(a) == bits(b);
}

template <class B>
bool sameVector(const ThreeDVector<B>& a, const ThreeDVector<B>& b)
{
    return sameComponent(a.GetX(), b.GetX()) && sameComponent(a.GetY(), b.GetY()) && sameComponent(a.GetZ(), b.GetZ());
}

template <class A, class B>
void checkPair(std::mt19937_64& rng, const std::string& path)
{
    const std::vector<Transform<A>> ts = transforms<A>(rng);
    std::vector<std::size_t> lengths;
    for (std::size_t n = 0; n <= 40; ++n) lengths.push_back(n);
    lengths.insert(lengths.end(), {1000, 4099});
    using E = quillon::Element<B>;
    const ThreeDVector<B> sentinel(E::fromDouble(-77.0), E::fromDouble(-88.0), E::fromDouble(-99.0));
    std::size_t which = 0;
    for (const std::size_t n : lengths) {
        const Transform<A>& t = ts[which++ % ts.size()];
        // Offsets of 0 to 7 elements from the start of the buffers put the arrays at every
        // position relative to 16-, 32- and 64-byte boundaries, input and output apart.
        const std::size_t inAt = n % 8, outAt = (3 * n + 5) % 8;
        std::vector<ThreeDVector<B>> in(n + 8), out(n + 10, sentinel), inPlace(n + 10, sentinel);
        for (std::size_t i = 0; i < n; ++i)
            in[inAt + i] = ThreeDVector<B>(E::fromDouble(component(rng)), E::fromDouble(component(rng)),
                                           E::fromDouble(component(rng)));
        for (std::size_t i = 0; i < n; ++i) inPlace[outAt + i] = in[inAt + i];

        quillon::mapPoints(t, in.data() + inAt, out.data() + outAt, n);
        quillon::mapPoints(t, inPlace.data() + outAt, inPlace.data() + outAt, n);

        for (std::size_t i = 0; i < n; ++i) {
            const ThreeDVector<B> want = t * in[inAt + i];
            ASSERT_TRUE(sameVector(out[outAt + i], want)) << path << ", n = " << n << ", point " << i;
            ASSERT_TRUE(sameVector(inPlace[outAt + i], want)) << path << " in place, n = " << n << ", point " << i;
        }
        for (std::size_t i : {outAt + n, outAt + n + 1}) {
            ASSERT_TRUE(sameVector(out[i], sentinel)) << path << ": written past the end, n = " << n;
            ASSERT_TRUE(sameVector(inPlace[i], sentinel)) << path << ": written past the end in place, n = " << n;
        }
        if (outAt > 0) {
            ASSERT_TRUE(sameVector(out[outAt - 1], sentinel)) << path << ": written before the start";
        }
    }
}

template <class A>
void checkTransform(std::mt19937_64& rng, const std::string& path)
{
    checkPair<A, int>(rng, path);
    checkPair<A, float>(rng, path);
    checkPair<A, double>(rng, path);
    checkPair<A, guardint>(rng, path);
    checkPair<A, guardfloat>(rng, path);
    checkPair<A, guarddouble>(rng, path);
}

TEST(BatchMapping, EveryPairOnEveryPathGivesTheOperatorsBits)
{
    const RestorePath restore;
    int ran = 0;
    for (const Path p : kPaths) {
        if (!quillon::batch::supported(p)) continue;
        ASSERT_TRUE(quillon::batch::forcePath(p));
        ASSERT_EQ(quillon::batch::currentPath(), p);
        std::mt19937_64 rng(0x5eed + static_cast<int>(p));
        checkTransform<float>(rng, name(p));
        checkTransform<double>(rng, name(p));
        checkTransform<guarddouble>(rng, name(p));
        if (HasFatalFailure()) return;
        ++ran;
    }
    EXPECT_GE(ran, 1);
}

TEST(BatchMapping, PathsAreChosenFromTheProcessorAndCanBeForced)
{
    const RestorePath restore;
    EXPECT_TRUE(quillon::batch::supported(Path::Plain));
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
    EXPECT_TRUE(quillon::batch::supported(Path::Sse2)); // every x86-64 processor has it
#endif
#if defined(__x86_64__) && defined(__GNUC__) && !defined(_WIN32)
    // The paths this processor has, as the compiler reads its features: each one must run here.
    EXPECT_EQ(quillon::batch::supported(Path::Avx2), __builtin_cpu_supports("avx2") != 0);
    EXPECT_EQ(quillon::batch::supported(Path::Avx512), __builtin_cpu_supports("avx512f") != 0);
#endif
    // The default is the widest supported path.
    Path widest = Path::Plain;
    for (const Path p : kPaths)
        if (quillon::batch::supported(p)) widest = p;
    EXPECT_EQ(restore.saved, widest);
    // An unsupported path is refused and changes nothing.
    for (const Path p : kPaths) {
        if (quillon::batch::supported(p)) continue;
        ASSERT_TRUE(quillon::batch::forcePath(Path::Plain));
        EXPECT_FALSE(quillon::batch::forcePath(p)) << name(p);
        EXPECT_EQ(quillon::batch::currentPath(), Path::Plain);
    }
}

TEST(BatchMapping, NoPointsTouchNothing)
{
    const RestorePath restore;
    for (const Path p : kPaths) {
        if (!quillon::batch::forcePath(p)) continue;
        // Null arrays with n = 0 are never read or written.
        quillon::mapPoints(Transform<double>(), static_cast<const ThreeDVector<double>*>(nullptr),
                           static_cast<ThreeDVector<double>*>(nullptr), 0);
        quillon::mapPoints(Transform<float>(), static_cast<const ThreeDVector<float>*>(nullptr),
                           static_cast<ThreeDVector<float>*>(nullptr), 0);
        quillon::mapPoints(Transform<guarddouble>(), static_cast<const ThreeDVector<int>*>(nullptr),
                           static_cast<ThreeDVector<int>*>(nullptr), 0);
        ThreeDVector<double> kept(1, 2, 3);
        quillon::mapPoints(Transform<double>(), &kept, &kept, 0);
        EXPECT_EQ(kept, ThreeDVector<double>(1, 2, 3)) << name(p);
    }
}

// Cases where one rule decides, spelled out: a kernel that skipped the rounding of a double input
// under Transform<float>, rounded a float result twice, fused a multiply and an add, or added the
// translation earlier, would give another answer here.
TEST(BatchMapping, HandPickedRoundings)
{
    const RestorePath restore;
    for (const Path p : kPaths) {
        if (!quillon::batch::forcePath(p)) continue;
        // Transform<float> reads a double as a float: 2^24 + 3 becomes 2^24 + 4, plus 1.
        Transform<float> f;
        f.Function_2428('x', 1.0f);
        std::vector<ThreeDVector<double>> d(9, ThreeDVector<double>(0x1p24 + 3, 0.1, 0));
        quillon::mapPoints(f, d.data(), d.data(), d.size());
        for (const auto& v : d) {
            EXPECT_EQ(v.GetX(), 0x1p24 + 5) << name(p);
            EXPECT_EQ(v.GetY(), static_cast<double>(0.1f)) << name(p);
        }
        // Transform<double> on floats: 2^24 + 1 is a tie, rounded once to 2^24 (even).
        Transform<double> g;
        g.Function_2428('x', 1.0);
        std::vector<ThreeDVector<float>> s(9, ThreeDVector<float>(0x1p24f, 0, 0)), r(9);
        quillon::mapPoints(g, s.data(), r.data(), s.size());
        for (const auto& v : r) EXPECT_EQ(v.GetX(), 0x1p24f) << name(p);
        // Unfused: (1 + 2^-30)^2 - (1 + 2^-29) is 0 with the product rounded, 2^-60 fused.
        const double u = 1 + 0x1p-30;
        const double e[16] = {u, -(1 + 0x1p-29), 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        std::vector<ThreeDVector<double>> q(9, ThreeDVector<double>(u, 1, 0));
        quillon::mapPoints(Transform<double>(e), q.data(), q.data(), q.size());
        for (const auto& v : q) EXPECT_EQ(bits(v.GetX()), bits(0.0)) << name(p);
    }
}

} // namespace

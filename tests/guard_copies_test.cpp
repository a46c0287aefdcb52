// SPDX-License-Identifier: MIT
// libguardscalars exports a copy of every guard operation that the header defines inline: the
// copy a caller links and the code a caller inlines give the same bits, over the values where the
// rules bite.
#include <quillon/GuardScalars>

#include <gtest/gtest.h>

#if !defined(_WIN32)
#include <dlfcn.h>

#include <bit>
#include <cstdint>
#include <vector>

namespace {

const std::vector<double>& edges()
{
    static const std::vector<double> values = {
        0.0, -0.0, 0.5, -0.5, 2.5, -2.5, 0.75, -1.75, 1.0, 3.0, 16777217.0, 0x1p1022, -0x1p1022,
        0x1p1021, -0x1p1021, 0x1.fffffffffffffp1021, 0x1p-1021, 0x1p-1022, 1.0e-300, 1.0e300,
        0x1p126, -0x1p126, 0x1p125, 3.0e38, 2147483646.5, -2147483646.5, 2147483647.0, -2147483648.0,
        2147483520.0, 1.0e308, -1.0e308, 0x1p-1074, 1.0 / 0.0, -1.0 / 0.0, 0.0 / 0.0};
    return values;
}

// Bits of a result, with every NaN one NaN.
std::uint64_t key(double v) { return v != v ? 1 : std::bit_cast<std::uint64_t>(v); }
std::uint64_t key(float v) { return v != v ? 1 : std::bit_cast<std::uint32_t>(v); }
std::uint64_t key(int v) { return static_cast<std::uint32_t>(v); }
template <class G>
auto key(const G& g) -> decltype(key(g.value())) { return key(g.value()); }

// The library's exported copy of a symbol.
template <class F>
F copyOf(const char* symbol)
{
    void* library = dlopen("libguardscalars.so.1", RTLD_NOW | RTLD_LOCAL);
    void* at = library ? dlsym(library, symbol) : nullptr;
    EXPECT_NE(at, nullptr) << symbol << " is not exported";
    return reinterpret_cast<F>(at);
}

// Every pair of edge values through the inline operation and the exported copy.
template <class R, class A, class B>
void samePair(const char* symbol, R (*inlined)(const A&, const B&), A (*makeA)(double), B (*makeB)(double))
{
    const auto copy = copyOf<R (*)(const A&, const B&)>(symbol);
    if (!copy) return;
    for (double x : edges())
        for (double y : edges()) {
            const A a = makeA(x);
            const B b = makeB(y);
            EXPECT_EQ(key(inlined(a, b)), key(copy(a, b))) << symbol << " of " << x << " and " << y;
        }
}

template <class G>
G make(double x) { return G(x); }
int makeInt(double x) { return quillon::guard::truncate(x); }
double makeDouble(double x) { return x; }
guardint makeGuardint(double x) { return guardint(quillon::guard::truncate(x)); } // sentinels and INT32_MIN too

} // namespace

TEST(GuardCopies, FreeOperatorsMatchTheInlineCode)
{
    using D = guarddouble;
    using F = guardfloat;
    using I = guardint;
    samePair("_ZplRK11guarddoubleS1_", +[](const D& a, const D& b) { return a + b; }, make<D>, make<D>);
    samePair("_ZmiRK11guarddoubleS1_", +[](const D& a, const D& b) { return a - b; }, make<D>, make<D>);
    samePair("_ZmlRK11guarddoubleS1_", +[](const D& a, const D& b) { return a * b; }, make<D>, make<D>);
    samePair("_ZdvRK11guarddoubleS1_", +[](const D& a, const D& b) { return a / b; }, make<D>, make<D>);
    samePair("_ZmiRK11guarddoubleRKd", +[](const D& a, const double& b) { return a - b; }, make<D>, makeDouble);
    samePair("_ZmlRKiRK11guarddouble", +[](const int& a, const D& b) { return a * b; }, makeInt, make<D>);
    samePair("_ZeqRK11guarddoubleS1_", +[](const D& a, const D& b) { return a == b; }, make<D>, make<D>);
    samePair("_ZneRK11guarddoubleS1_", +[](const D& a, const D& b) { return a != b; }, make<D>, make<D>);
    samePair("_ZltRK11guarddoubleS1_", +[](const D& a, const D& b) { return a < b; }, make<D>, make<D>);
    samePair("_ZgtRK11guarddoubleS1_", +[](const D& a, const D& b) { return a > b; }, make<D>, make<D>);
    samePair("_ZplRK10guardfloatS1_", +[](const F& a, const F& b) { return a + b; }, make<F>, make<F>);
    samePair("_ZmiRK10guardfloatS1_", +[](const F& a, const F& b) { return a - b; }, make<F>, make<F>);
    samePair("_ZmlRK10guardfloatS1_", +[](const F& a, const F& b) { return a * b; }, make<F>, make<F>);
    samePair("_ZltRK10guardfloatS1_", +[](const F& a, const F& b) { return a < b; }, make<F>, make<F>);
    samePair("_ZplRK8guardintS1_", +[](const I& a, const I& b) { return a + b; }, makeGuardint, makeGuardint);
    samePair("_ZmiRK8guardintS1_", +[](const I& a, const I& b) { return a - b; }, makeGuardint, makeGuardint);
    samePair("_ZmlRK8guardintS1_", +[](const I& a, const I& b) { return a * b; }, makeGuardint, makeGuardint);
    samePair("_ZltRK8guardintS1_", +[](const I& a, const I& b) { return a < b; }, makeGuardint, makeGuardint);
}

TEST(GuardCopies, MembersAndConversionsMatchTheInlineCode)
{
    const auto nintD = copyOf<int (*)(const guarddouble*)>("_ZNK11guarddouble4nintEv");
    const auto nintF = copyOf<int (*)(const guardfloat*)>("_ZNK10guardfloat4nintEv");
    const auto fromD = copyOf<void (*)(guardint*, const guarddouble&)>("_ZN8guardintC2ERK11guarddouble");
    const auto fromDouble = copyOf<void (*)(guardint*, double)>("_ZN8guardintC2Ed");
    const auto addD = copyOf<guarddouble& (*)(guarddouble*, const guarddouble&)>("_ZN11guarddoublepLERKS_");
    const auto divideF = copyOf<guardfloat& (*)(guardfloat*, const guardfloat&)>("_ZN10guardfloatdVERKS_");
    const auto round = copyOf<void (*)(guarddouble*)>("_ZN11guarddouble12RoundToWholeEv");
    if (!nintD || !nintF || !fromD || !fromDouble || !addD || !divideF || !round) return;
    for (double x : edges()) {
        const guarddouble d(x);
        const guardfloat f(x);
        EXPECT_EQ(d.nint(), nintD(&d)) << x;
        EXPECT_EQ(f.nint(), nintF(&f)) << x;
        guardint viaCopy, viaDouble;
        fromD(&viaCopy, d);
        fromDouble(&viaDouble, x);
        EXPECT_EQ(key(guardint(d)), key(viaCopy)) << x;
        EXPECT_EQ(key(guardint(x)), key(viaDouble)) << x;
        guarddouble rounded = d, roundedCopy = d;
        rounded.RoundToWhole();
        round(&roundedCopy);
        EXPECT_EQ(key(rounded), key(roundedCopy)) << x;
        for (double y : edges()) {
            guarddouble sum = d, sumCopy = d;
            sum += guarddouble(y);
            addD(&sumCopy, guarddouble(y));
            EXPECT_EQ(key(sum), key(sumCopy)) << x << " + " << y;
            guardfloat quotient = f, quotientCopy = f;
            quotient /= guardfloat(y);
            divideF(&quotientCopy, guardfloat(y));
            EXPECT_EQ(key(quotient), key(quotientCopy)) << x << " / " << y;
        }
    }
}
#endif

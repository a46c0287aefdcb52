// SPDX-License-Identifier: MIT
// Guard scalars, ThreeDVector and Transform on arbitrary bits: every operator, conversion and
// member on values that include NaNs, infinities, limits and the most negative integer. The
// sanitizers catch any undefined behaviour, such as a float-to-int conversion out of range.
#include <quillon/GuardScalars>
#include <quillon/ThreeDVector>
#include <quillon/Transform>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstring>

namespace {

volatile int sink;

template <class T>
T take(FuzzedDataProvider& in)
{
    if constexpr (std::is_same_v<T, int>) return in.ConsumeIntegral<int>();
    else if constexpr (std::is_same_v<T, float>) {
        const std::uint32_t b = in.ConsumeIntegral<std::uint32_t>();
        float f;
        std::memcpy(&f, &b, 4);
        return f;
    } else if constexpr (std::is_same_v<T, double>) {
        const std::uint64_t b = in.ConsumeIntegral<std::uint64_t>();
        double d;
        std::memcpy(&d, &b, 8);
        return d;
    } else if constexpr (std::is_same_v<T, guardint>) return guardint(in.ConsumeIntegral<int>());
    else if constexpr (std::is_same_v<T, guardfloat>) return in.ConsumeBool() ? guardfloat(take<double>(in)) : guardfloat(take<float>(in));
    else return guarddouble(take<double>(in));
}

template <class T>
void guards(FuzzedDataProvider& in)
{
    T a = take<T>(in), b = take<T>(in);
    T c = a + b;
    c = a - b;
    c = a * b;
    if constexpr (!std::is_same_v<T, guardint>) c = c * b;
    c = a;
    c += b;
    c /= a;
    sink = (a == b) + (a != b) + (a < b) + (c == c);
    if constexpr (!std::is_same_v<T, guardint>) sink = a.nint();
}

template <class T>
ThreeDVector<T> vec(FuzzedDataProvider& in)
{
    const T x = take<T>(in), y = take<T>(in), z = take<T>(in);
    return ThreeDVector<T>(x, y, z);
}

template <class T>
void vectors(FuzzedDataProvider& in)
{
    ThreeDVector<T> a = vec<T>(in), b = vec<T>(in);
    ThreeDVector<T> c = a + b;
    c = a - b;
    c = a * b;
    c = a * take<float>(in);
    c = a * take<double>(in);
    c = a * take<guardfloat>(in);
    c = a * take<guarddouble>(in);
    c = a.Cross(b);
    sink = int(a.Dot(b) == a.Dot(&b));
    sink = int(c.Length() == c.Length());
    a.Unit();
    a.Unit(guarddouble(1.0));
    a.Normalise();
    const ScreenPoint p = a.Project(take<T>(in), ScreenPoint{in.ConsumeIntegral<int>(), in.ConsumeIntegral<int>()});
    sink = p.x ^ p.y;
    a.AddToAxis(in.ConsumeIntegral<char>(), take<T>(in));
    sink = (a == b) + (a != b);
}

template <class A, class B>
void mapOne(const Transform<A>& t, FuzzedDataProvider& in)
{
    const ThreeDVector<B> v = t * vec<B>(in);
    sink = v == v;
}

template <class A>
void transforms(FuzzedDataProvider& in)
{
    A e[16];
    for (A& x : e) x = take<A>(in);
    Transform<A> t(e), u(take<A>(in), take<A>(in), take<A>(in));
    Transform<A> p = t * u;
    p = t.Function_2415();
    p = t.Function_2412();
    sink = int(t.Function_2414() == t.Function_2414());
    p.Function_2422(take<A>(in));
    p.Function_2423(take<A>(in));
    p.Function_2424(take<A>(in));
    p.Function_2425(take<A>(in));
    p.Function_2428(in.ConsumeIntegral<char>(), take<A>(in));
    p.Function_2429();
    p = p.Function_2417();
    p = p.Function_2421();
    A out[16];
    p.Function_2416(out);
    mapOne<A, int>(t, in);
    mapOne<A, float>(t, in);
    mapOne<A, double>(t, in);
    mapOne<A, guardint>(t, in);
    mapOne<A, guardfloat>(t, in);
    mapOne<A, guarddouble>(t, in);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider in(bytes, size);
    switch (in.ConsumeIntegralInRange<int>(0, 11)) {
    case 0: guards<guardint>(in); break;
    case 1: guards<guardfloat>(in); break;
    case 2: guards<guarddouble>(in); break;
    case 3: vectors<int>(in); break;
    case 4: vectors<float>(in); break;
    case 5: vectors<double>(in); break;
    case 6: vectors<guardint>(in); break;
    case 7: vectors<guardfloat>(in); break;
    case 8: vectors<guarddouble>(in); break;
    case 9: transforms<float>(in); break;
    case 10: transforms<double>(in); break;
    default: transforms<guarddouble>(in); break;
    }
    return 0;
}

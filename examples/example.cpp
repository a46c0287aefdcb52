// SPDX-License-Identifier: MIT
// A first look at Quillon: build a transform, turn and move it, map a point through it, and see
// how the guard scalars saturate instead of overflowing.
#include <quillon/Names>

#include <cstdio>

namespace {

template <class T>
double shown(const T& v) { return quillon::Element<T>::toDouble(v); }

template <class T>
void print(const char* title, const Transform<T>& t)
{
    T e[16]{};
    quillon::elements(t, e); // t.Function_2416(e)
    std::printf("%s\n", title);
    for (int r = 0; r < 4; ++r)
        std::printf("  [ %9.5f %9.5f %9.5f %9.5f ]\n", shown(e[4 * r]), shown(e[4 * r + 1]),
                    shown(e[4 * r + 2]), shown(e[4 * r + 3]));
}

} // namespace

int main()
{
    Transform<double> t;              // the identity
    print("identity", t);
    quillon::turnZ(t, 0.5235987755982988); // turn 30 degrees about z (Function_2424)
    print("after a turn of 30 degrees about z", t);
    quillon::move(t, 'x', 10.0);           // then move 10 along x (Function_2428)
    print("after a move of 10 along x", t);

    const ThreeDVector<double> p = t * ThreeDVector<double>(1.0, 0.0, 0.0);
    std::printf("(1, 0, 0) maps to (%.17g, %.17g, %.17g)\n", p.GetX(), p.GetY(), p.GetZ());
    const ThreeDVector<int> q = t * ThreeDVector<int>(1, 0, 0);
    std::printf("as ThreeDVector<int> it maps to (%d, %d, %d): truncated toward zero\n", q.GetX(),
                q.GetY(), q.GetZ());

    guarddouble big(1.0e308);         // at or over 2^1022: the limit
    guarddouble sum = big + guarddouble(1.0e308);
    guarddouble quotient = guarddouble(1.0) / guarddouble(0.0);
    std::printf("guarddouble(1e308) = %a, + 1e308 = %a, 1 / 0 = %a\n", big.value(), sum.value(),
                quotient.value());
    guardint i(2147483000);
    i += guardint(1000);
    std::printf("guardint 2147483000 + 1000 = %d (saturated), guardint(2.5) = %d (ties toward zero)\n",
                i.value(), guardint(2.5).value());
    return 0;
}

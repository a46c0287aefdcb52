// SPDX-License-Identifier: MIT
// The operations of ThreeDVector<T> for the six element types, as C functions over arrays of raw
// components, three to a vector. Each operation is written once below; the six types differ only
// in how their raw values enter and leave the class (Raw<T>), and the result is the member's own.
#include "Interface.h"

#include <quillon/ThreeDVector>

namespace quillon::c {
namespace {

template <class T>
struct Vectors {
    using R = Raw<T>;
    using C = typename R::C;
    using V = ThreeDVector<T>;

    static V read(const C* p) noexcept { return V(R::enter(p[0]), R::enter(p[1]), R::enter(p[2])); }
    // A null vector reads as the zero vector, as Dot(const ThreeDVector*) takes a null one.
    static V readOrZero(const C* p) noexcept { return p ? read(p) : V(); }

    template <class U>
    static void write(const ThreeDVector<U>& v, typename Raw<U>::C* p) noexcept
    {
        p[0] = Raw<U>::leave(v.GetX());
        p[1] = Raw<U>::leave(v.GetY());
        p[2] = Raw<U>::leave(v.GetZ());
    }

    // The loops of the n-vector calls. Each operand vector is read whole before its result is
    // written, and result k never lies past vector k's components, so out may be an input.
    template <std::size_t Width, class Out, class Step>
    static int each(const C* a, Out* out, std::size_t n, Step step) noexcept
    {
        if (n == 0) return QUILLON_OK;
        if (!a || !out) return QUILLON_NULL_ARGUMENT;
        for (std::size_t i = 0; i < n; ++i) step(read(a + 3 * i), out + Width * i);
        return QUILLON_OK;
    }
    template <std::size_t Width, class Out, class Step>
    static int each(const C* a, const C* b, Out* out, std::size_t n, Step step) noexcept
    {
        if (n == 0) return QUILLON_OK;
        if (!a || !b || !out) return QUILLON_NULL_ARGUMENT;
        for (std::size_t i = 0; i < n; ++i) step(read(a + 3 * i), read(b + 3 * i), out + Width * i);
        return QUILLON_OK;
    }

    static int add(const C* a, const C* b, C* out, std::size_t n) noexcept
    {
        return each<3>(a, b, out, n, [](const V& x, const V& y, C* o) { write(x + y, o); });
    }
    static int sub(const C* a, const C* b, C* out, std::size_t n) noexcept
    {
        return each<3>(a, b, out, n, [](const V& x, const V& y, C* o) { write(x - y, o); });
    }
    static int mul(const C* a, const C* b, C* out, std::size_t n) noexcept
    {
        return each<3>(a, b, out, n, [](const V& x, const V& y, C* o) { write(x * y, o); });
    }
    // The four scalar products of the class, the scalar's type chosen by the caller as in C++.
    static int scaleFloat(const C* a, float s, C* out, std::size_t n) noexcept
    {
        return each<3>(a, out, n, [s](const V& x, C* o) { write(x.operator*(s), o); });
    }
    static int scaleDouble(const C* a, double s, C* out, std::size_t n) noexcept
    {
        return each<3>(a, out, n, [s](const V& x, C* o) { write(x.operator*(s), o); });
    }
    static int scaleGuardfloat(const C* a, float raw, C* out, std::size_t n) noexcept
    {
        const guardfloat s = Raw<guardfloat>::enter(raw);
        return each<3>(a, out, n, [&s](const V& x, C* o) { write(x.operator*(s), o); });
    }
    static int scaleGuarddouble(const C* a, double raw, C* out, std::size_t n) noexcept
    {
        const guarddouble s = Raw<guarddouble>::enter(raw);
        return each<3>(a, out, n, [&s](const V& x, C* o) { write(x.operator*(s), o); });
    }
    static int cross(const C* a, const C* b, C* out, std::size_t n) noexcept
    {
        return each<3>(a, b, out, n, [](const V& x, const V& y, C* o) { write(x.Cross(y), o); });
    }
    static int dot(const C* a, const C* b, C* out, std::size_t n) noexcept
    {
        return each<1>(a, b, out, n, [](const V& x, const V& y, C* o) { *o = R::leave(x.Dot(y)); });
    }
    static int length(const C* a, C* out, std::size_t n) noexcept
    {
        return each<1>(a, out, n, [](const V& x, C* o) { *o = R::leave(x.Length()); });
    }
    static int unit(const C* a, double* out, std::size_t n) noexcept
    {
        return each<3>(a, out, n, [](const V& x, double* o) { write(x.Unit(), o); });
    }
    static int unitGuarddouble(const C* a, double* out, std::size_t n) noexcept
    {
        return each<3>(a, out, n, [](const V& x, double* o) { write(x.Unit(guarddouble()), o); });
    }
    static int normalise(const C* a, C* out, std::size_t n) noexcept
    {
        return each<3>(a, out, n, [](V x, C* o) { write(x.Normalise(), o); });
    }
    static int project(const C* a, C depth, quillon_screen_point origin, quillon_screen_point* out,
                       std::size_t n) noexcept
    {
        const T d = R::enter(depth);
        const ScreenPoint at{origin.x, origin.y};
        return each<1>(a, out, n, [&d, &at](const V& x, quillon_screen_point* o) {
            const ScreenPoint s = x.Project(d, at);
            *o = quillon_screen_point{s.x, s.y};
        });
    }

    // One vector at a time.
    static void fromPoints(const C* a, const C* b, C* out) noexcept
    {
        if (out) write(V(readOrZero(a), readOrZero(b)), out);
    }
    static void addToAxis(C* v, char axis, C amount) noexcept
    {
        if (!v) return;
        V value = read(v);
        value.AddToAxis(axis, R::enter(amount));
        write(value, v);
    }
    static int equal(const C* a, const C* b) noexcept { return readOrZero(a) == readOrZero(b); }
    static int notEqual(const C* a, const C* b) noexcept { return readOrZero(a) != readOrZero(b); }
};

} // namespace
} // namespace quillon::c

#define QUILLON_C_VECTORS(P, T)                                                                                  \
    int quillon_##P##_vec_add(const Raw<T>::C* a, const Raw<T>::C* b, Raw<T>::C* out, size_t n) { return W<T>::add(a, b, out, n); } \
    int quillon_##P##_vec_sub(const Raw<T>::C* a, const Raw<T>::C* b, Raw<T>::C* out, size_t n) { return W<T>::sub(a, b, out, n); } \
    int quillon_##P##_vec_mul(const Raw<T>::C* a, const Raw<T>::C* b, Raw<T>::C* out, size_t n) { return W<T>::mul(a, b, out, n); } \
    int quillon_##P##_vec_scale_f(const Raw<T>::C* a, float s, Raw<T>::C* out, size_t n) { return W<T>::scaleFloat(a, s, out, n); } \
    int quillon_##P##_vec_scale_d(const Raw<T>::C* a, double s, Raw<T>::C* out, size_t n) { return W<T>::scaleDouble(a, s, out, n); } \
    int quillon_##P##_vec_scale_gf(const Raw<T>::C* a, float s, Raw<T>::C* out, size_t n) { return W<T>::scaleGuardfloat(a, s, out, n); } \
    int quillon_##P##_vec_scale_gd(const Raw<T>::C* a, double s, Raw<T>::C* out, size_t n) { return W<T>::scaleGuarddouble(a, s, out, n); } \
    int quillon_##P##_vec_cross(const Raw<T>::C* a, const Raw<T>::C* b, Raw<T>::C* out, size_t n) { return W<T>::cross(a, b, out, n); } \
    int quillon_##P##_vec_dot(const Raw<T>::C* a, const Raw<T>::C* b, Raw<T>::C* out, size_t n) { return W<T>::dot(a, b, out, n); } \
    int quillon_##P##_vec_length(const Raw<T>::C* a, Raw<T>::C* out, size_t n) { return W<T>::length(a, out, n); } \
    int quillon_##P##_vec_unit(const Raw<T>::C* a, double* out, size_t n) { return W<T>::unit(a, out, n); }     \
    int quillon_##P##_vec_unit_gd(const Raw<T>::C* a, double* out, size_t n) { return W<T>::unitGuarddouble(a, out, n); } \
    int quillon_##P##_vec_normalise(const Raw<T>::C* a, Raw<T>::C* out, size_t n) { return W<T>::normalise(a, out, n); } \
    int quillon_##P##_vec_project(const Raw<T>::C* a, Raw<T>::C depth, quillon_screen_point origin,             \
                                  quillon_screen_point* out, size_t n)                                           \
    {                                                                                                            \
        return W<T>::project(a, depth, origin, out, n);                                                          \
    }                                                                                                            \
    void quillon_##P##_vec_from_points(const Raw<T>::C* a, const Raw<T>::C* b, Raw<T>::C* out) { W<T>::fromPoints(a, b, out); } \
    void quillon_##P##_vec_add_to_axis(Raw<T>::C* v, char axis, Raw<T>::C amount) { W<T>::addToAxis(v, axis, amount); } \
    int quillon_##P##_vec_equal(const Raw<T>::C* a, const Raw<T>::C* b) { return W<T>::equal(a, b); }            \
    int quillon_##P##_vec_not_equal(const Raw<T>::C* a, const Raw<T>::C* b) { return W<T>::notEqual(a, b); }

using namespace quillon::c;
template <class T>
using W = Vectors<T>;

extern "C" {

QUILLON_C_VECTORS(i, int)
QUILLON_C_VECTORS(f, float)
QUILLON_C_VECTORS(d, double)
QUILLON_C_VECTORS(gi, guardint)
QUILLON_C_VECTORS(gf, guardfloat)
QUILLON_C_VECTORS(gd, guarddouble)

} // extern "C"

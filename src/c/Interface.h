// SPDX-License-Identifier: MIT
// What the C interface's functions share: how a plain C struct becomes the C++ value and back, and
// the one loop that maps many points.
#ifndef QUILLON_C_INTERFACE_H
#define QUILLON_C_INTERFACE_H

#include <quillon/Batch>
#include <quillon/Transform>
#include <quillon/quillon.h>

#include <cstddef>
#include <type_traits>
#include <cstdint>

// The n-point loop has every call in it inlined (the member and its helpers included): as a call
// per point they cost as much again as the arithmetic. The arithmetic is the same either way.
#if defined(__GNUC__)
#  define QUILLON_C_FLATTEN [[gnu::flatten]]
#else
#  define QUILLON_C_FLATTEN
#endif

namespace quillon::c {

// An element type as the C interface holds it: the plain type of its stored value; a value enters
// through the class's own conversion from that type (a guard value beyond its limit saturates) and
// leaves as the stored value.
template <class T>
struct Raw {
    using C = typename Stored<T>::Plain;
    static T enter(C v) noexcept { return T(v); }
    static C leave(const T& v) noexcept { return Stored<T>::of(v); }
};
static_assert(sizeof(Raw<int>::C) == 4 && sizeof(Raw<guardint>::C) == 4, "the C interface's integers are 32 bits");

// The C struct of each transform and point type.
template <class T>
struct CTypes;
template <>
struct CTypes<int> {
    using Point = quillon_i_point;
};
template <>
struct CTypes<float> {
    using Point = quillon_f_point;
    using Transform = quillon_f_transform;
};
template <>
struct CTypes<double> {
    using Point = quillon_d_point;
    using Transform = quillon_d_transform;
};
template <>
struct CTypes<guardint> {
    using Point = quillon_gi_point;
};
template <>
struct CTypes<guardfloat> {
    using Point = quillon_gf_point;
};
template <>
struct CTypes<guarddouble> {
    using Point = quillon_gd_point;
    using Transform = quillon_gd_transform;
};

// A null struct reads as the identity, as Transform(const T*) does with a null array.
template <class T>
Transform<T> enter(const typename CTypes<T>::Transform* t) noexcept
{
    if (!t) return Transform<T>();
    T e[16]{};
    for (int k = 0; k < 16; ++k) e[k] = Raw<T>::enter(t->e[k]);
    return Transform<T>(e);
}

// A null destination is not written.
template <class T>
void leave(const Transform<T>& t, typename CTypes<T>::Transform* out) noexcept
{
    if (!out) return;
    T e[16]{};
    t.Function_2416(e);
    for (int k = 0; k < 16; ++k) out->e[k] = Raw<T>::leave(e[k]);
}

template <class A, class B>
typename CTypes<B>::Point mapPoint(const Transform<A>& t, const typename CTypes<B>::Point& p) noexcept
{
    using R = Raw<B>;
    const ThreeDVector<B> image = t * ThreeDVector<B>(R::enter(p.x), R::enter(p.y), R::enter(p.z));
    return {R::leave(image.GetX()), R::leave(image.GetY()), R::leave(image.GetZ())};
}

// Every n-point mapping of the C interface, and through it of the Python module, runs here: float
// and double pairs through the batch call (<quillon/Batch>), the others point by point through the
// C++ operator; either way each point is read whole before its image is written, so out may be in.
template <class A, class B>
QUILLON_C_FLATTEN int mapPoints(const typename CTypes<A>::Transform* t, const typename CTypes<B>::Point* in,
              typename CTypes<B>::Point* out, std::size_t n) noexcept
{
    if (n == 0) return QUILLON_OK;
    if (!in || !out) return QUILLON_NULL_ARGUMENT;
    const Transform<A> transform = enter<A>(t);
    constexpr bool plain = (std::is_same_v<A, float> || std::is_same_v<A, double>) &&
                           (std::is_same_v<B, float> || std::is_same_v<B, double>);
    if constexpr (plain) {
        // A point of float or double is three components, as a ThreeDVector is: the batch kernels
        // take the array as it stands, with the per-point operator's bits.
        static_assert(sizeof(typename CTypes<B>::Point) == sizeof(ThreeDVector<B>));
        quillon::mapPoints(transform, reinterpret_cast<const ThreeDVector<B>*>(in),
                           reinterpret_cast<ThreeDVector<B>*>(out), n);
    } else {
        for (std::size_t i = 0; i < n; ++i) out[i] = mapPoint<A, B>(transform, in[i]);
    }
    return QUILLON_OK;
}

// Region mapping of an array of rectangles, for each transform type (Regions.cpp).
template <class T>
int mapRects(const Transform<T>& t, const std::int32_t* ltrb, std::size_t n, std::int32_t** out,
             std::size_t* outCount) noexcept;

} // namespace quillon::c

#endif

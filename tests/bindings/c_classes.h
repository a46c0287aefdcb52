// SPDX-License-Identifier: MIT
// The C++ interface's classes, each member one call into the C interface, so that the battery's
// families (tests/battery/families.h) run through the C functions unchanged. Where the C
// interface can write its result over an operand, the class calls it both ways and counts any
// difference in `differences`, as it does where n points mapped at once differ from one by one and
// where a quotient differs from the division in place.
#ifndef QUILLON_TEST_C_CLASSES_H
#define QUILLON_TEST_C_CLASSES_H

#include <quillon/quillon.h>

#include <cstring>

namespace cside {

inline int differences = 0;
// The same bits, or both NaN (which NaN a sum of NaNs gives depends on its operands' order).
template <class R>
bool same(const R* a, const R* b, int n)
{
    for (int k = 0; k < n; ++k)
        if (!(a[k] != a[k] && b[k] != b[k]) && std::memcmp(&a[k], &b[k], sizeof(R)) != 0) return false;
    return true;
}
template <class R>
void expectSame(const R* a, const R* b, int n) { differences += !same(a, b, n); }

// ---- Guard scalars: the stored value, entered through the C functions ----
struct guardint;
struct guarddouble {
    double v = 0.0;
    guarddouble() = default;
    guarddouble(double x) : v(quillon_gd_from_double(x)) {}
    guarddouble(int i) : v(quillon_gd_from_int(i)) {}
    explicit guarddouble(guardint& g);
    static guarddouble raw(double x) { guarddouble g; g.v = x; return g; }
    int nint() const { return quillon_gd_nint(v); }
    void RoundToWhole() { v = quillon_gd_round_to_whole(v); }
    guarddouble& operator+=(const guarddouble& b) { quillon_gd_add_assign(&v, b.v); return *this; }
    guarddouble& operator/=(const guarddouble& b) { quillon_gd_div_assign(&v, b.v); return *this; }
};
struct guardfloat {
    float v = 0.0f;
    guardfloat() = default;
    guardfloat(double x) : v(quillon_gf_from_double(x)) {}
    guardfloat(int i) : v(quillon_gf_from_int(i)) {}
    explicit guardfloat(guardint& g);
    static guardfloat raw(float x) { guardfloat g; g.v = x; return g; }
    int nint() const { return quillon_gf_nint(v); }
    guardfloat& operator+=(const guardfloat& b) { quillon_gf_add_assign(&v, b.v); return *this; }
    guardfloat& operator/=(const guardfloat& b)
    {
        const float quotient = quillon_gf_div(v, b.v);
        quillon_gf_div_assign(&v, b.v);
        expectSame(&quotient, &v, 1);
        return *this;
    }
};
struct guardint {
    int32_t v = 0;
    guardint() = default;
    guardint(int i) : v(quillon_gi_from_int(i)) {}
    guardint(double x) : v(quillon_gi_from_double(x)) {}
    guardint(float x) : v(quillon_gi_from_float(x)) {}
    guardint(const guarddouble& g) : v(quillon_gi_from_gd(g.v)) {}
    guardint(const guardfloat& g) : v(quillon_gi_from_gf(g.v)) {}
    static guardint raw(int32_t x) { guardint g; g.v = x; return g; }
    explicit operator double() const { return quillon_gi_to_double(v); }
    explicit operator float() const { return quillon_gi_to_float(v); }
    guardint& operator+=(const guardint& b) { quillon_gi_add_assign(&v, b.v); return *this; }
    guardint& operator/=(const guardint& b)
    {
        const int32_t quotient = quillon_gi_div(v, b.v);
        quillon_gi_div_assign(&v, b.v);
        expectSame(&quotient, &v, 1);
        return *this;
    }
};
inline guarddouble::guarddouble(guardint& g) : v(quillon_gd_from_gi(g.v)) {}
inline guardfloat::guardfloat(guardint& g) : v(quillon_gf_from_gi(g.v)) {}

#define QB_GUARD_OPS(G, P)                                                                                  \
    inline G operator+(const G& a, const G& b) { return G::raw(quillon_##P##_add(a.v, b.v)); }               \
    inline G operator-(const G& a, const G& b) { return G::raw(quillon_##P##_sub(a.v, b.v)); }               \
    inline G operator*(const G& a, const G& b) { return G::raw(quillon_##P##_mul(a.v, b.v)); }               \
    inline int operator==(const G& a, const G& b) { return quillon_##P##_eq(a.v, b.v); }                     \
    inline int operator!=(const G& a, const G& b) { return quillon_##P##_ne(a.v, b.v); }                     \
    inline int operator<(const G& a, const G& b) { return quillon_##P##_lt(a.v, b.v); }
QB_GUARD_OPS(guarddouble, gd)
QB_GUARD_OPS(guardfloat, gf)
QB_GUARD_OPS(guardint, gi)
inline guarddouble operator/(const guarddouble& a, const guarddouble& b) { return guarddouble::raw(quillon_gd_div(a.v, b.v)); }
inline guarddouble operator-(const guarddouble& a, const double& b) { return guarddouble::raw(quillon_gd_sub_double(a.v, b)); }
inline guarddouble operator*(const int& a, const guarddouble& b) { return guarddouble::raw(quillon_gd_mul_int(a, b.v)); }
inline int operator>(const guarddouble& a, const guarddouble& b) { return quillon_gd_gt(a.v, b.v); }

inline double rawOf(const guarddouble& g) { return g.v; }
inline float rawOf(const guardfloat& g) { return g.v; }
inline int rawOf(const guardint& g) { return g.v; }
inline int rawOf(int x) { return x; }
inline float rawOf(float x) { return x; }
inline double rawOf(double x) { return x; }

// An element type's stored value and back.
template <class T> struct Raw { using R = T; static T back(R x) { return x; } };
template <> struct Raw<guarddouble> { using R = double; static guarddouble back(R x) { return guarddouble::raw(x); } };
template <> struct Raw<guardfloat> { using R = float; static guardfloat back(R x) { return guardfloat::raw(x); } };
template <> struct Raw<guardint> { using R = int32_t; static guardint back(R x) { return guardint::raw(x); } };

// ---- Vectors ----
template <class T> struct VecC;
#define QB_VEC_C(T, P)                                                                                      \
    template <> struct VecC<T> {                                                                            \
        static constexpr auto add = quillon_##P##_vec_add;                                                  \
        static constexpr auto sub = quillon_##P##_vec_sub;                                                  \
        static constexpr auto mul = quillon_##P##_vec_mul;                                                  \
        static constexpr auto cross = quillon_##P##_vec_cross;                                              \
        static constexpr auto scale_f = quillon_##P##_vec_scale_f;                                          \
        static constexpr auto scale_d = quillon_##P##_vec_scale_d;                                          \
        static constexpr auto scale_gf = quillon_##P##_vec_scale_gf;                                        \
        static constexpr auto scale_gd = quillon_##P##_vec_scale_gd;                                        \
        static constexpr auto from_points = quillon_##P##_vec_from_points;                                  \
        static constexpr auto equal = quillon_##P##_vec_equal;                                              \
        static constexpr auto not_equal = quillon_##P##_vec_not_equal;                                      \
        static constexpr auto add_to_axis = quillon_##P##_vec_add_to_axis;                                  \
        static constexpr auto dot = quillon_##P##_vec_dot;                                                  \
        static constexpr auto length = quillon_##P##_vec_length;                                            \
        static constexpr auto normalise = quillon_##P##_vec_normalise;                                      \
        static constexpr auto unit = quillon_##P##_vec_unit;                                                \
        static constexpr auto unit_gd = quillon_##P##_vec_unit_gd;                                          \
        static constexpr auto project = quillon_##P##_vec_project;                                          \
    };
QB_VEC_C(int, i)
QB_VEC_C(float, f)
QB_VEC_C(double, d)
QB_VEC_C(guardint, gi)
QB_VEC_C(guardfloat, gf)
QB_VEC_C(guarddouble, gd)

struct ScreenPoint { int x, y; };

template <class T>
class ThreeDVector {
public:
    using R = typename Raw<T>::R;
    using C = VecC<T>;
    R c[3] = {};
    ThreeDVector() = default;
    ThreeDVector(const T& x, const T& y, const T& z) : c{rawOf(x), rawOf(y), rawOf(z)} {}
    ThreeDVector(const ThreeDVector& a, const ThreeDVector& b) { C::from_points(a.c, b.c, c); }
    T GetX() const { return Raw<T>::back(c[0]); }
    T GetY() const { return Raw<T>::back(c[1]); }
    T GetZ() const { return Raw<T>::back(c[2]); }
    // A pairwise call, also with its result over either operand.
    template <class F>
    ThreeDVector pairwise(F call, const ThreeDVector& b) const
    {
        ThreeDVector out, over = *this, under = b;
        call(c, b.c, out.c, 1);
        call(over.c, b.c, over.c, 1);
        call(c, under.c, under.c, 1);
        expectSame(out.c, over.c, 3);
        expectSame(out.c, under.c, 3);
        return out;
    }
    ThreeDVector operator+(const ThreeDVector& b) const { return pairwise(C::add, b); }
    ThreeDVector operator-(const ThreeDVector& b) const { return pairwise(C::sub, b); }
    ThreeDVector operator*(const ThreeDVector& b) const { return pairwise(C::mul, b); }
    ThreeDVector Cross(const ThreeDVector& b) const { return pairwise(C::cross, b); }
    ThreeDVector operator*(float s) const { ThreeDVector o; C::scale_f(c, s, o.c, 1); return o; }
    ThreeDVector operator*(double s) const { ThreeDVector o; C::scale_d(c, s, o.c, 1); return o; }
    ThreeDVector operator*(guardfloat s) const { ThreeDVector o; C::scale_gf(c, s.v, o.c, 1); return o; }
    ThreeDVector operator*(guarddouble s) const { ThreeDVector o; C::scale_gd(c, s.v, o.c, 1); return o; }
    int operator==(const ThreeDVector& b) const { return C::equal(c, b.c); }
    int operator!=(const ThreeDVector& b) const { return C::not_equal(c, b.c); }
    void AddToAxis(char axis, const T& amount) { C::add_to_axis(c, axis, rawOf(amount)); }
    T Dot(const ThreeDVector& b) const
    {
        R out[3], over[3] = {c[0], c[1], c[2]};
        C::dot(c, b.c, out, 1);
        C::dot(over, b.c, over, 1);
        expectSame(out, over, 1);
        return Raw<T>::back(out[0]);
    }
    T Length() const { R out[3] = {}; C::length(c, out, 1); return Raw<T>::back(out[0]); }
    ThreeDVector& Normalise()
    {
        ThreeDVector out;
        C::normalise(c, out.c, 1);
        C::normalise(c, c, 1);
        expectSame(out.c, c, 3);
        return *this;
    }
    ThreeDVector<double> Unit() const
    {
        ThreeDVector<double> o;
        C::unit(c, o.c, 1);
        return o;
    }
    ThreeDVector<guarddouble> Unit(guarddouble) const
    {
        ThreeDVector<guarddouble> o;
        C::unit_gd(c, o.c, 1);
        return o;
    }
    ScreenPoint Project(const T& depth, const ScreenPoint& origin) const
    {
        quillon_screen_point s = {0, 0};
        C::project(c, rawOf(depth), quillon_screen_point{origin.x, origin.y}, &s, 1);
        return {s.x, s.y};
    }
};

// ---- Transforms ----
template <class T> struct TransformC;
#define QB_MAP_C(P, Q)                                                                                      \
    static ThreeDVector<typename Point<quillon_##Q##_point>::T> map(const C* t, const ThreeDVector<typename Point<quillon_##Q##_point>::T>& v) \
    {                                                                                                       \
        const quillon_##Q##_point in[2] = {{v.c[0], v.c[1], v.c[2]}, {v.c[0], v.c[1], v.c[2]}};              \
        quillon_##Q##_point many[2];                                                                        \
        const quillon_##Q##_point one = quillon_##P##_map_##Q(t, in[0]);                                   \
        quillon_##P##_map_##Q##_n(t, in, many, 2);                                                          \
        expectSame(&one.x, &many[1].x, 3);                                                                  \
        ThreeDVector<typename Point<quillon_##Q##_point>::T> out;                                           \
        out.c[0] = one.x; out.c[1] = one.y; out.c[2] = one.z;                                               \
        return out;                                                                                         \
    }
template <class Q> struct Point;
template <> struct Point<quillon_i_point> { using T = int; };
template <> struct Point<quillon_f_point> { using T = float; };
template <> struct Point<quillon_d_point> { using T = double; };
template <> struct Point<quillon_gi_point> { using T = guardint; };
template <> struct Point<quillon_gf_point> { using T = guardfloat; };
template <> struct Point<quillon_gd_point> { using T = guarddouble; };
#define QB_TRANSFORM_C(T, P)                                                                                \
    template <> struct TransformC<T> {                                                                      \
        using C = quillon_##P##_transform;                                                                  \
        static constexpr auto identity = quillon_##P##_identity;                                            \
        static constexpr auto from_elements = quillon_##P##_from_elements;                                  \
        static constexpr auto from_angles = quillon_##P##_from_angles;                                      \
        static constexpr auto compose = quillon_##P##_compose;                                              \
        static constexpr auto adjoint = quillon_##P##_adjoint;                                              \
        static constexpr auto inverse = quillon_##P##_inverse;                                              \
        static constexpr auto transpose = quillon_##P##_transpose;                                          \
        static constexpr auto without_translation = quillon_##P##_without_translation;                      \
        static constexpr auto determinant = quillon_##P##_determinant;                                      \
        static constexpr auto copy_elements = quillon_##P##_copy_elements;                                  \
        static constexpr auto e10 = quillon_##P##_e10;                                                      \
        static constexpr auto e20 = quillon_##P##_e20;                                                      \
        static constexpr auto e30 = quillon_##P##_e30;                                                      \
        static constexpr auto turn_x = quillon_##P##_turn_x;                                                \
        static constexpr auto turn_y = quillon_##P##_turn_y;                                                \
        static constexpr auto turn_z = quillon_##P##_turn_z;                                                \
        static constexpr auto scale_x = quillon_##P##_scale_x;                                              \
        static constexpr auto scale_y = quillon_##P##_scale_y;                                              \
        static constexpr auto scale_z = quillon_##P##_scale_z;                                              \
        static constexpr auto move = quillon_##P##_move;                                                    \
        static constexpr auto transpose_in_place = quillon_##P##_transpose_in_place;                        \
        static constexpr auto reset = quillon_##P##_reset;                                                  \
        static constexpr auto clear = quillon_##P##_clear;                                                  \
        static constexpr auto map_rects = quillon_##P##_map_rects;                                          \
        QB_MAP_C(P, i) QB_MAP_C(P, f) QB_MAP_C(P, d) QB_MAP_C(P, gi) QB_MAP_C(P, gf) QB_MAP_C(P, gd)        \
    };
QB_TRANSFORM_C(float, f)
QB_TRANSFORM_C(double, d)
QB_TRANSFORM_C(guarddouble, gd)

template <class T>
class Transform {
public:
    using C = TransformC<T>;
    using R = typename Raw<T>::R;
    typename C::C t;
    Transform() { C::identity(&t); }
    explicit Transform(const T* e)
    {
        R raw[16];
        for (int k = 0; k < 16; ++k) raw[k] = e ? rawOf(e[k]) : R(0);
        C::from_elements(e ? raw : nullptr, &t);
    }
    Transform(double ax, double ay, double az) { C::from_angles(ax, ay, az, &t); }
    // A derived transform, also written over its source.
    template <class F>
    Transform derived(F call) const
    {
        Transform out, over = *this;
        call(&t, &out.t);
        call(&over.t, &over.t);
        expectSame(out.t.e, over.t.e, 16);
        return out;
    }
    Transform operator*(const Transform& b) const
    {
        Transform out, left = *this, right = b;
        C::compose(&t, &b.t, &out.t);
        C::compose(&left.t, &b.t, &left.t);
        C::compose(&t, &right.t, &right.t);
        expectSame(out.t.e, left.t.e, 16);
        expectSame(out.t.e, right.t.e, 16);
        return out;
    }
    template <class V>
    ThreeDVector<V> operator*(const ThreeDVector<V>& v) const { return C::map(&t, v); }
    Transform Function_2412() const { return derived(C::adjoint); }
    T Function_2414() const { return Raw<T>::back(C::determinant(&t)); }
    Transform Function_2415() const { return derived(C::inverse); }
    void Function_2416(T* e) const
    {
        R raw[16];
        C::copy_elements(&t, raw);
        for (int k = 0; k < 16; ++k) e[k] = Raw<T>::back(raw[k]);
    }
    Transform Function_2417() const { return derived(C::transpose); }
    T Function_2418() const { return Raw<T>::back(C::e10(&t)); }
    T Function_2419() const { return Raw<T>::back(C::e20(&t)); }
    T Function_2420() const { return Raw<T>::back(C::e30(&t)); }
    Transform Function_2421() const { return derived(C::without_translation); }
    void Function_2422(double a) { C::turn_x(&t, a); }
    void Function_2423(double a) { C::turn_y(&t, a); }
    void Function_2424(double a) { C::turn_z(&t, a); }
    void Function_2425(const T& s) { C::scale_x(&t, rawOf(s)); }
    void Function_2426(const T& s) { C::scale_y(&t, rawOf(s)); }
    void Function_2427(const T& s) { C::scale_z(&t, rawOf(s)); }
    void Function_2428(char axis, const T& amount) { C::move(&t, axis, rawOf(amount)); }
    Transform& Function_2429() { C::transpose_in_place(&t); return *this; }
    void Function_2430() { C::reset(&t); }
    void Function_2431() { C::clear(&t); }
};

} // namespace cside

#endif

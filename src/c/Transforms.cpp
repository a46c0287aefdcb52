// SPDX-License-Identifier: MIT
// The members of Transform<T> for float, double and guarddouble, and the mapping of points of all
// six element types, as C functions. Each function enters its structs into the C++ values, calls
// the member and writes the result out; the arithmetic is the C++ member's own.
#include "Interface.h"

namespace quillon::c {
namespace {

template <class T>
struct Members {
    using CT = typename CTypes<T>::Transform;
    using C = typename Raw<T>::C;

    // An in-place member on the struct: a null struct is left alone.
    template <class Step>
    static void inPlace(CT* t, Step step) noexcept
    {
        if (!t) return;
        Transform<T> value = enter<T>(t);
        step(value);
        leave(value, t);
    }

    static void identity(CT* out) noexcept { leave(Transform<T>(), out); }
    static void fromElements(const C* elements, CT* out) noexcept
    {
        if (!elements) return identity(out);
        T e[16]{};
        for (int k = 0; k < 16; ++k) e[k] = Raw<T>::enter(elements[k]);
        leave(Transform<T>(e), out);
    }
    static void fromAngles(double ax, double ay, double az, CT* out) noexcept { leave(Transform<T>(ax, ay, az), out); }
    static void compose(const CT* left, const CT* right, CT* out) noexcept { leave(enter<T>(left) * enter<T>(right), out); }
    static void adjoint(const CT* t, CT* out) noexcept { leave(enter<T>(t).Function_2412(), out); }
    static C determinant(const CT* t) noexcept { return Raw<T>::leave(enter<T>(t).Function_2414()); }
    static void inverse(const CT* t, CT* out) noexcept { leave(enter<T>(t).Function_2415(), out); }
    static void copyElements(const CT* t, C* destination) noexcept
    {
        if (!destination) return;
        T e[16]{};
        enter<T>(t).Function_2416(e);
        for (int k = 0; k < 16; ++k) destination[k] = Raw<T>::leave(e[k]);
    }
    static void transpose(const CT* t, CT* out) noexcept { leave(enter<T>(t).Function_2417(), out); }
    static void transposeInPlace(CT* t) noexcept { inPlace(t, [](Transform<T>& v) { v.Function_2429(); }); }
    static C e10(const CT* t) noexcept { return Raw<T>::leave(enter<T>(t).Function_2418()); }
    static C e20(const CT* t) noexcept { return Raw<T>::leave(enter<T>(t).Function_2419()); }
    static C e30(const CT* t) noexcept { return Raw<T>::leave(enter<T>(t).Function_2420()); }
    static void withoutTranslation(const CT* t, CT* out) noexcept { leave(enter<T>(t).Function_2421(), out); }
    static void turnX(CT* t, double a) noexcept { inPlace(t, [a](Transform<T>& v) { v.Function_2422(a); }); }
    static void turnY(CT* t, double a) noexcept { inPlace(t, [a](Transform<T>& v) { v.Function_2423(a); }); }
    static void turnZ(CT* t, double a) noexcept { inPlace(t, [a](Transform<T>& v) { v.Function_2424(a); }); }
    static void scaleX(CT* t, C f) noexcept { inPlace(t, [f](Transform<T>& v) { v.Function_2425(Raw<T>::enter(f)); }); }
    static void scaleY(CT* t, C f) noexcept { inPlace(t, [f](Transform<T>& v) { v.Function_2426(Raw<T>::enter(f)); }); }
    static void scaleZ(CT* t, C f) noexcept { inPlace(t, [f](Transform<T>& v) { v.Function_2427(Raw<T>::enter(f)); }); }
    static void move(CT* t, char axis, C amount) noexcept
    {
        inPlace(t, [axis, amount](Transform<T>& v) { v.Function_2428(axis, Raw<T>::enter(amount)); });
    }
    static void reset(CT* t) noexcept { inPlace(t, [](Transform<T>& v) { v.Function_2430(); }); }
    static void clear(CT* t) noexcept { inPlace(t, [](Transform<T>& v) { v.Function_2431(); }); }
    static int mapRects(const CT* t, const std::int32_t* ltrb, std::size_t n, std::int32_t** out,
                        std::size_t* outCount) noexcept
    {
        return c::mapRects(enter<T>(t), ltrb, n, out, outCount);
    }
};

} // namespace
} // namespace quillon::c

#define QUILLON_C_MEMBERS(P, T)                                                                                  \
    void quillon_##P##_identity(quillon_##P##_transform* out) { M<T>::identity(out); }                           \
    void quillon_##P##_from_elements(const Raw<T>::C* e, quillon_##P##_transform* out) { M<T>::fromElements(e, out); } \
    void quillon_##P##_from_angles(double ax, double ay, double az, quillon_##P##_transform* out) { M<T>::fromAngles(ax, ay, az, out); } \
    void quillon_##P##_compose(const quillon_##P##_transform* l, const quillon_##P##_transform* r, quillon_##P##_transform* out) { M<T>::compose(l, r, out); } \
    void quillon_##P##_adjoint(const quillon_##P##_transform* t, quillon_##P##_transform* out) { M<T>::adjoint(t, out); } \
    Raw<T>::C quillon_##P##_determinant(const quillon_##P##_transform* t) { return M<T>::determinant(t); }       \
    void quillon_##P##_inverse(const quillon_##P##_transform* t, quillon_##P##_transform* out) { M<T>::inverse(t, out); } \
    void quillon_##P##_copy_elements(const quillon_##P##_transform* t, Raw<T>::C* d) { M<T>::copyElements(t, d); } \
    void quillon_##P##_transpose(const quillon_##P##_transform* t, quillon_##P##_transform* out) { M<T>::transpose(t, out); } \
    void quillon_##P##_transpose_in_place(quillon_##P##_transform* t) { M<T>::transposeInPlace(t); }              \
    Raw<T>::C quillon_##P##_e10(const quillon_##P##_transform* t) { return M<T>::e10(t); }                       \
    Raw<T>::C quillon_##P##_e20(const quillon_##P##_transform* t) { return M<T>::e20(t); }                       \
    Raw<T>::C quillon_##P##_e30(const quillon_##P##_transform* t) { return M<T>::e30(t); }                       \
    void quillon_##P##_without_translation(const quillon_##P##_transform* t, quillon_##P##_transform* out) { M<T>::withoutTranslation(t, out); } \
    void quillon_##P##_turn_x(quillon_##P##_transform* t, double a) { M<T>::turnX(t, a); }                      \
    void quillon_##P##_turn_y(quillon_##P##_transform* t, double a) { M<T>::turnY(t, a); }                      \
    void quillon_##P##_turn_z(quillon_##P##_transform* t, double a) { M<T>::turnZ(t, a); }                      \
    void quillon_##P##_scale_x(quillon_##P##_transform* t, Raw<T>::C f) { M<T>::scaleX(t, f); }                  \
    void quillon_##P##_scale_y(quillon_##P##_transform* t, Raw<T>::C f) { M<T>::scaleY(t, f); }                  \
    void quillon_##P##_scale_z(quillon_##P##_transform* t, Raw<T>::C f) { M<T>::scaleZ(t, f); }                  \
    void quillon_##P##_move(quillon_##P##_transform* t, char axis, Raw<T>::C amount) { M<T>::move(t, axis, amount); } \
    void quillon_##P##_reset(quillon_##P##_transform* t) { M<T>::reset(t); }                                     \
    void quillon_##P##_clear(quillon_##P##_transform* t) { M<T>::clear(t); }                                     \
    int quillon_##P##_map_rects(const quillon_##P##_transform* t, const int32_t* ltrb, size_t n, int32_t** out, size_t* out_n) \
    {                                                                                                            \
        return M<T>::mapRects(t, ltrb, n, out, out_n);                                                           \
    }

#define QUILLON_C_MAP(P, A, Q, B)                                                                                \
    quillon_##Q##_point quillon_##P##_map_##Q(const quillon_##P##_transform* t, quillon_##Q##_point p)           \
    {                                                                                                            \
        return mapPoint<A, B>(enter<A>(t), p);                                                                   \
    }                                                                                                            \
    int quillon_##P##_map_##Q##_n(const quillon_##P##_transform* t, const quillon_##Q##_point* in,               \
                                  quillon_##Q##_point* out, size_t n)                                            \
    {                                                                                                            \
        return mapPoints<A, B>(t, in, out, n);                                                                   \
    }

#define QUILLON_C_MAPS(P, A)                                                                                     \
    QUILLON_C_MAP(P, A, i, int)                                                                                  \
    QUILLON_C_MAP(P, A, f, float)                                                                                \
    QUILLON_C_MAP(P, A, d, double)                                                                               \
    QUILLON_C_MAP(P, A, gi, guardint)                                                                            \
    QUILLON_C_MAP(P, A, gf, guardfloat)                                                                          \
    QUILLON_C_MAP(P, A, gd, guarddouble)

using namespace quillon::c;
template <class T>
using M = Members<T>;

extern "C" {

QUILLON_C_MEMBERS(f, float)
QUILLON_C_MEMBERS(d, double)
QUILLON_C_MEMBERS(gd, guarddouble)

QUILLON_C_MAPS(f, float)
QUILLON_C_MAPS(d, double)
QUILLON_C_MAPS(gd, guarddouble)

} // extern "C"

// SPDX-License-Identifier: MIT
// Readable names for the members of Transform<T>.
//
// The members keep their numbered names (Function_2412 ... Function_2431): they are the library's
// binary interface and libquillon exports exactly them. Each function here is an inline call of
// one member and nothing more, so it gives the same bits as the member, adds no export and works
// with every element type (float, double, guarddouble).
#ifndef QUILLON_DETAIL_NAMES_H
#define QUILLON_DETAIL_NAMES_H

#include <quillon/Transform>

/// Quillon's names outside its classes: the readable names of the members of Transform<T>.
namespace quillon {

namespace detail {
// The element type of a factor or an amount, taken from the transform alone, so that
// scaleX(floatTransform, 2.0) converts the 2.0 as the member call does.
template <class T>
struct ElementOf {
    using type = T;
};
} // namespace detail

/// @name Making a transform
/// @{

/// The rotation Rx(ax) Ry(ay) Rz(az), angles in radians: turns about z first, then y, then x, all
/// about the fixed axes. Transform<T>(ax, ay, az).
template <class T>
inline Transform<T> rotation(double ax, double ay, double az) noexcept
{
    return Transform<T>(ax, ay, az);
}

/// @}
/// @name Changing a transform in place
/// @{

/// Turns about x by angle radians, multiplied on the left: the turn acts after everything t did
/// before, its translation included. t.Function_2422(angle).
template <class T>
inline void turnX(Transform<T>& t, double angle) noexcept { t.Function_2422(angle); }
/// Turns about y by angle radians, multiplied on the left. t.Function_2423(angle).
template <class T>
inline void turnY(Transform<T>& t, double angle) noexcept { t.Function_2423(angle); }
/// Turns about z by angle radians, multiplied on the left; a positive angle turns +x toward +y.
/// t.Function_2424(angle).
template <class T>
inline void turnZ(Transform<T>& t, double angle) noexcept { t.Function_2424(angle); }

/// Multiplies e[0][0] by factor (the x scale of a transform without turns). t.Function_2425(factor).
template <class T>
inline void scaleX(Transform<T>& t, typename detail::ElementOf<T>::type factor) noexcept { t.Function_2425(factor); }
/// Multiplies e[1][1] by factor. t.Function_2426(factor).
template <class T>
inline void scaleY(Transform<T>& t, typename detail::ElementOf<T>::type factor) noexcept { t.Function_2426(factor); }
/// Multiplies e[2][2] by factor. t.Function_2427(factor).
template <class T>
inline void scaleZ(Transform<T>& t, typename detail::ElementOf<T>::type factor) noexcept { t.Function_2427(factor); }

/// Adds amount to the translation along axis 'x', 'y' or 'z' (either case); any other letter
/// does nothing. t.Function_2428(axis, amount).
template <class T>
inline void move(Transform<T>& t, char axis, typename detail::ElementOf<T>::type amount) noexcept { t.Function_2428(axis, amount); }

/// Transposes t in place and returns it. t.Function_2429().
template <class T>
inline Transform<T>& transposeInPlace(Transform<T>& t) noexcept { return t.Function_2429(); }
/// Makes t the identity again. t.Function_2430().
template <class T>
inline void reset(Transform<T>& t) noexcept { t.Function_2430(); }
/// Sets all sixteen elements of t to 0. t.Function_2431().
template <class T>
inline void clear(Transform<T>& t) noexcept { t.Function_2431(); }

/// @}
/// @name Reading a transform
/// @{

/// The inverse: each element a cofactor divided by the determinant. A singular matrix
/// (determinant exactly 0) gives the identity; ask determinant() first. t.Function_2415().
template <class T>
inline Transform<T> inverse(const Transform<T>& t) noexcept { return t.Function_2415(); }
/// The determinant (for float, rounded to float). t.Function_2414().
template <class T>
inline T determinant(const Transform<T>& t) noexcept { return t.Function_2414(); }
/// The adjoint: the transpose of the matrix of signed cofactors. t.Function_2412().
template <class T>
inline Transform<T> adjoint(const Transform<T>& t) noexcept { return t.Function_2412(); }
/// The transpose as a new value; t is unchanged. t.Function_2417().
template <class T>
inline Transform<T> transposed(const Transform<T>& t) noexcept { return t.Function_2417(); }
/// A copy with the translation cleared and e[3][3] set to 1. t.Function_2421().
template <class T>
inline Transform<T> withoutTranslation(const Transform<T>& t) noexcept { return t.Function_2421(); }
/// Writes the sixteen elements, row by row, to destination[0..15]; a null destination is
/// ignored. t.Function_2416(destination).
template <class T>
inline void elements(const Transform<T>& t, T* destination) noexcept { t.Function_2416(destination); }

/// @}

} // namespace quillon

#endif

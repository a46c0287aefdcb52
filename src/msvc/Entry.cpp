// SPDX-License-Identifier: MIT
// Quillon.dll's exported members of Transform<T> under the platform compiler's names and calling
// conventions (compiled by clang for the MSVC target: __thiscall on i686, class values passed
// through memory and returned through a hidden pointer). Each member hands its object and arguments
// to the library's own implementation through the C seam of bridge.h; no arithmetic happens here.
// The guard elements are built, copied and destroyed by the members imported from
// "Guard Scalars.dll", as every program built with the platform's compiler does.
#define QUILLON_MSVC_BUILDING_MODULE
#include <quillon/msvc/Quillon.h>

#include "bridge.h"

extern "C" int _fltused = 0; // the MSVC ABI's marker of floating-point use

using quillon::seam::kind;

template <class T>
Transform<T>::Transform() { quillon_bridge_identity(kind<T>, elements); }
template <class T>
Transform<T>::Transform(const Transform<T>& other) { quillon_bridge_copy(kind<T>, elements, other.elements); }
template <class T>
Transform<T>::Transform(const T* elements16) { quillon_bridge_from_array(kind<T>, elements, elements16); }
template <class T>
Transform<T>::Transform(T e0, T e1, T e2, T e3, T e4, T e5, T e6, T e7, T e8, T e9, T e10, T e11,
                        T e12, T e13, T e14, T e15)
{
    const T all[16] = {e0, e1, e2, e3, e4, e5, e6, e7, e8, e9, e10, e11, e12, e13, e14, e15};
    quillon_bridge_from_array(kind<T>, elements, all);
}
template <class T>
Transform<T>::Transform(double ax, double ay, double az) { quillon_bridge_euler(kind<T>, elements, ax, ay, az); }
template <class T>
Transform<T>::~Transform() {}

template <class T>
Transform<T> Transform<T>::operator=(const Transform<T>& other)
{
    quillon_bridge_copy(kind<T>, elements, other.elements);
    return *this;
}

template <class T>
Transform<T> Transform<T>::operator*(const Transform<T>& right) const
{
    Transform<T> product;
    quillon_bridge_compose(kind<T>, elements, right.elements, product.elements);
    return product;
}

namespace {
template <class T, class B>
ThreeDVector<B> mapped(const T (&elements)[4][4], const ThreeDVector<B>& v)
{
    ThreeDVector<B> image;
    quillon_bridge_map(kind<T>, elements, kind<B>, &v, &image);
    return image;
}
} // namespace

template <class T>
ThreeDVector<int> Transform<T>::operator*(const ThreeDVector<int>& v) const { return mapped(elements, v); }
template <class T>
ThreeDVector<float> Transform<T>::operator*(const ThreeDVector<float>& v) const { return mapped(elements, v); }
template <class T>
ThreeDVector<double> Transform<T>::operator*(const ThreeDVector<double>& v) const { return mapped(elements, v); }
template <class T>
ThreeDVector<guardint> Transform<T>::operator*(const ThreeDVector<guardint>& v) const { return mapped(elements, v); }
template <class T>
ThreeDVector<guardfloat> Transform<T>::operator*(const ThreeDVector<guardfloat>& v) const { return mapped(elements, v); }
template <class T>
ThreeDVector<guarddouble> Transform<T>::operator*(const ThreeDVector<guarddouble>& v) const { return mapped(elements, v); }

template <class T>
HRGN__* const Transform<T>::operator*(HRGN__* const region) const
{
    return static_cast<HRGN__*>(quillon_bridge_map_region(kind<T>, elements, region));
}

namespace {
template <class T>
Transform<T> transformOf(const T (&elements)[4][4], int which)
{
    Transform<T> result;
    quillon_bridge_transform_of(kind<T>, elements, which, &result);
    return result;
}
template <class T>
T elementOf(const T (&elements)[4][4], int which)
{
    T result;
    quillon_bridge_element_of(kind<T>, elements, which, &result);
    return result;
}
} // namespace

template <class T>
Transform<T> Transform<T>::Function_2412() const { return transformOf(elements, 2412); }
template <class T>
T Transform<T>::Function_2413(unsigned int row, unsigned int col) const
{
    T cofactor;
    quillon_bridge_cofactor(kind<T>, elements, row, col, &cofactor);
    return cofactor;
}
template <class T>
T Transform<T>::Function_2414() const { return elementOf(elements, 2414); }
template <class T>
Transform<T> Transform<T>::Function_2415() const { return transformOf(elements, 2415); }
template <class T>
void Transform<T>::Function_2416(const T* destination) const { quillon_bridge_copy_out(kind<T>, elements, destination); }
template <class T>
Transform<T> Transform<T>::Function_2417() const { return transformOf(elements, 2417); }
template <class T>
T Transform<T>::Function_2418() const { return elementOf(elements, 2418); }
template <class T>
T Transform<T>::Function_2419() const { return elementOf(elements, 2419); }
template <class T>
T Transform<T>::Function_2420() const { return elementOf(elements, 2420); }
template <class T>
Transform<T> Transform<T>::Function_2421() const { return transformOf(elements, 2421); }
template <class T>
void Transform<T>::Function_2422(double t) { quillon_bridge_turn(kind<T>, elements, 2422, t); }
template <class T>
void Transform<T>::Function_2423(double t) { quillon_bridge_turn(kind<T>, elements, 2423, t); }
template <class T>
void Transform<T>::Function_2424(double t) { quillon_bridge_turn(kind<T>, elements, 2424, t); }
template <class T>
void Transform<T>::Function_2425(T factor) { quillon_bridge_scale(kind<T>, elements, 2425, &factor); }
template <class T>
void Transform<T>::Function_2426(T factor) { quillon_bridge_scale(kind<T>, elements, 2426, &factor); }
template <class T>
void Transform<T>::Function_2427(T factor) { quillon_bridge_scale(kind<T>, elements, 2427, &factor); }
template <class T>
void Transform<T>::Function_2428(char axis, T amount) { quillon_bridge_move(kind<T>, elements, axis, &amount); }
template <class T>
Transform<T>& Transform<T>::Function_2429()
{
    quillon_bridge_edit(kind<T>, elements, 2429);
    return *this;
}
template <class T>
void Transform<T>::Function_2430() { quillon_bridge_edit(kind<T>, elements, 2430); }
template <class T>
void Transform<T>::Function_2431() { quillon_bridge_edit(kind<T>, elements, 2431); }

template class Transform<float>;
template class Transform<double>;
template class Transform<guarddouble>;

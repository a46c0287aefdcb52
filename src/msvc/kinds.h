// SPDX-License-Identifier: MIT
/* The six element types as the C seams between the two compilers' ABIs number them. */
#ifndef QUILLON_SCALARS_MSVC_KINDS_H
#define QUILLON_SCALARS_MSVC_KINDS_H

enum {
    QUILLON_KIND_INT,
    QUILLON_KIND_FLOAT,
    QUILLON_KIND_DOUBLE,
    QUILLON_KIND_GUARDINT,
    QUILLON_KIND_GUARDFLOAT,
    QUILLON_KIND_GUARDDOUBLE
};

#ifdef __cplusplus
/* For both sides' C++ (no standard library on the MSVC side): the number of a type, and a call of
   f(Is<T>{}) for the type that a number names. */
namespace quillon::seam {
template <class T> struct Kind;
template <> struct Kind<int> { static const int value = QUILLON_KIND_INT; };
template <> struct Kind<float> { static const int value = QUILLON_KIND_FLOAT; };
template <> struct Kind<double> { static const int value = QUILLON_KIND_DOUBLE; };
template <> struct Kind<guardint> { static const int value = QUILLON_KIND_GUARDINT; };
template <> struct Kind<guardfloat> { static const int value = QUILLON_KIND_GUARDFLOAT; };
template <> struct Kind<guarddouble> { static const int value = QUILLON_KIND_GUARDDOUBLE; };
template <class T>
constexpr int kind = Kind<T>::value;

template <class T>
struct Is {};

template <class F>
void withKind(int k, F&& f)
{
    switch (k) {
    case QUILLON_KIND_INT: f(Is<int>{}); break;
    case QUILLON_KIND_FLOAT: f(Is<float>{}); break;
    case QUILLON_KIND_DOUBLE: f(Is<double>{}); break;
    case QUILLON_KIND_GUARDINT: f(Is<guardint>{}); break;
    case QUILLON_KIND_GUARDFLOAT: f(Is<guardfloat>{}); break;
    case QUILLON_KIND_GUARDDOUBLE: f(Is<guarddouble>{}); break;
    default: break;
    }
}
} // namespace quillon::seam
#endif

#endif

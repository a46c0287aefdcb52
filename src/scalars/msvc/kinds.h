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
template <class T> struct QuillonKind;
template <> struct QuillonKind<int> { static const int value = QUILLON_KIND_INT; };
template <> struct QuillonKind<float> { static const int value = QUILLON_KIND_FLOAT; };
template <> struct QuillonKind<double> { static const int value = QUILLON_KIND_DOUBLE; };
template <> struct QuillonKind<guardint> { static const int value = QUILLON_KIND_GUARDINT; };
template <> struct QuillonKind<guardfloat> { static const int value = QUILLON_KIND_GUARDFLOAT; };
template <> struct QuillonKind<guarddouble> { static const int value = QUILLON_KIND_GUARDDOUBLE; };
#endif

#endif

// SPDX-License-Identifier: MIT
/* Quillon's C interface: the transforms, the point mappings, region mapping, the vectors'
 * operations and the guard scalars for C and for every language that calls C. Valid C99 and C++;
 * library libquillon_c.
 *
 * Every function computes exactly what the C++ members compute, bit for bit: each one builds the
 * C++ value from the plain struct, calls the member and copies the result out.
 *
 * Types. A transform is a plain struct of its 16 elements, row by row (e[4 * row + column]); the
 * matrix acts on column vectors from the left and rows 0 to 2 of column 3 are the translation. The
 * prefix names the element type:
 *
 *   f   Transform<float>        elements float
 *   d   Transform<double>       elements double
 *   gd  Transform<guarddouble>  elements double: the raw stored values of the guard scalars
 *
 * A point is three components x, y, z of one of six element types; the guard types are held as
 * their raw stored values: i (int32), f (float), d (double), gi (guardint, int32), gf (guardfloat,
 * float), gd (guarddouble, double).
 *
 * Raw guard values enter the C++ classes through the class's own conversion from its plain type:
 * guarddouble(double), guardfloat(double) and guardint(int). A value the class could hold passes
 * unchanged; a magnitude beyond a floating class's limit enters as the limit (the classes never
 * hold one), and every int32 is a guardint as it stands.
 *
 * Null pointers never crash. A null transform argument reads as the identity (as the C++
 * constructor from a null element array gives the identity); a null destination is not written;
 * an in-place operation on a null transform does nothing. The functions that report a status return
 * QUILLON_OK or one of the codes below, and write nothing else on failure. Destinations may be the
 * same object as a source. There is no global state: any thread may call any function, on distinct
 * destinations.
 *
 * The members, named for what they do (shown for the prefix d; f and gd are the same):
 *
 *   quillon_d_identity(out)                  the identity
 *   quillon_d_from_elements(e16, out)        16 elements row by row; null gives the identity
 *   quillon_d_from_angles(ax, ay, az, out)   rotation Rx(ax) Ry(ay) Rz(az), radians: turns about z
 *                                            first, then y, then x, about the fixed axes
 *   quillon_d_compose(left, right, out)      left * right: right acts first
 *   quillon_d_adjoint(t, out)                transpose of the cofactor matrix
 *   quillon_d_determinant(t)                 the determinant
 *   quillon_d_inverse(t, out)                the inverse; a singular matrix (determinant exactly 0)
 *                                            gives the identity
 *   quillon_d_copy_elements(t, dest16)       writes the 16 elements to dest16
 *   quillon_d_transpose(t, out)              the transpose
 *   quillon_d_transpose_in_place(t)          transposes t
 *   quillon_d_e10 / e20 / e30(t)             the element in row 1, 2 or 3 of column 0
 *   quillon_d_without_translation(t, out)    a copy with the translation cleared and e[15] = 1
 *   quillon_d_turn_x / turn_y / turn_z(t, a) turns t about x, y or z by a radians, multiplied on
 *                                            the left: the turn acts after everything t did before
 *   quillon_d_scale_x / y / z(t, f)          multiplies e[0], e[5] or e[10] by f
 *   quillon_d_move(t, axis, amount)          adds amount to the translation along 'x', 'y' or 'z'
 *                                            (either case; any other letter does nothing)
 *   quillon_d_reset(t) / quillon_d_clear(t)  the identity / all sixteen elements 0
 *   quillon_d_map_Q(t, p)                    maps point p of element type Q (i, f, d, gi, gf, gd):
 *                                            the translation is added, row 3 is never read, and the
 *                                            result has p's element type (int truncated toward zero,
 *                                            guardint to nearest, ...)
 *   quillon_d_map_Q_n(t, in, out, n)         the same for n points; out may be in itself
 *   quillon_d_map_rects(t, ltrb, n, &out, &out_n)
 *                                            maps the region that is the union of n rectangles
 *                                            (left, top, right, bottom; each normalised, empty ones
 *                                            add nothing): each rectangle of the region's banded
 *                                            form has its corners mapped as double points and
 *                                            truncated toward zero, and the quadrilaterals are
 *                                            joined. The rectangles of the result, in banded order,
 *                                            go to a new array of 4 * out_n values (null when
 *                                            out_n is 0) that the caller releases with
 *                                            quillon_free_rects.
 */
#ifndef QUILLON_C_H
#define QUILLON_C_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#  if defined(QUILLON_BUILDING_C)
#    define QUILLON_C_API __declspec(dllexport)
#  else
#    define QUILLON_C_API __declspec(dllimport)
#  endif
#elif defined(__GNUC__)
#  define QUILLON_C_API __attribute__((visibility("default")))
#else
#  define QUILLON_C_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Status codes. */
#define QUILLON_OK 0
#define QUILLON_NULL_ARGUMENT 1 /* a required pointer was null */
#define QUILLON_TOO_LARGE 2     /* more items than the operation can hold */
#define QUILLON_OUT_OF_MEMORY 3 /* an allocation failed */

/* The most rectangles quillon_*_map_rects accepts in one call. */
#define QUILLON_MAX_RECTS 16777216u

typedef struct quillon_f_transform { float e[16]; } quillon_f_transform;
typedef struct quillon_d_transform { double e[16]; } quillon_d_transform;
typedef struct quillon_gd_transform { double e[16]; } quillon_gd_transform;

typedef struct quillon_i_point { int32_t x, y, z; } quillon_i_point;
typedef struct quillon_f_point { float x, y, z; } quillon_f_point;
typedef struct quillon_d_point { double x, y, z; } quillon_d_point;
typedef struct quillon_gi_point { int32_t x, y, z; } quillon_gi_point;
typedef struct quillon_gf_point { float x, y, z; } quillon_gf_point;
typedef struct quillon_gd_point { double x, y, z; } quillon_gd_point;

/* A point on the screen, column x and row y: what a vector projects to. */
typedef struct quillon_screen_point { int32_t x, y; } quillon_screen_point;

/* The library's version, "major.minor.patch.build", and the same as one number
 * (major << 24 | minor << 16 | patch << 8 | build). */
QUILLON_C_API const char* quillon_version(void);
QUILLON_C_API uint32_t quillon_version_number(void);

/* Releases an array of rectangles made by quillon_*_map_rects; null does nothing. */
QUILLON_C_API void quillon_free_rects(int32_t* rects);

/* ---- Transform<float>: every operand widened to double, each stored result rounded to float ---- */
QUILLON_C_API void quillon_f_identity(quillon_f_transform* out);
QUILLON_C_API void quillon_f_from_elements(const float* elements16, quillon_f_transform* out);
QUILLON_C_API void quillon_f_from_angles(double ax, double ay, double az, quillon_f_transform* out);
QUILLON_C_API void quillon_f_compose(const quillon_f_transform* left, const quillon_f_transform* right, quillon_f_transform* out);
QUILLON_C_API void quillon_f_adjoint(const quillon_f_transform* t, quillon_f_transform* out);
QUILLON_C_API float quillon_f_determinant(const quillon_f_transform* t);
QUILLON_C_API void quillon_f_inverse(const quillon_f_transform* t, quillon_f_transform* out);
QUILLON_C_API void quillon_f_copy_elements(const quillon_f_transform* t, float* destination16);
QUILLON_C_API void quillon_f_transpose(const quillon_f_transform* t, quillon_f_transform* out);
QUILLON_C_API void quillon_f_transpose_in_place(quillon_f_transform* t);
QUILLON_C_API float quillon_f_e10(const quillon_f_transform* t);
QUILLON_C_API float quillon_f_e20(const quillon_f_transform* t);
QUILLON_C_API float quillon_f_e30(const quillon_f_transform* t);
QUILLON_C_API void quillon_f_without_translation(const quillon_f_transform* t, quillon_f_transform* out);
QUILLON_C_API void quillon_f_turn_x(quillon_f_transform* t, double angle);
QUILLON_C_API void quillon_f_turn_y(quillon_f_transform* t, double angle);
QUILLON_C_API void quillon_f_turn_z(quillon_f_transform* t, double angle);
QUILLON_C_API void quillon_f_scale_x(quillon_f_transform* t, float factor);
QUILLON_C_API void quillon_f_scale_y(quillon_f_transform* t, float factor);
QUILLON_C_API void quillon_f_scale_z(quillon_f_transform* t, float factor);
QUILLON_C_API void quillon_f_move(quillon_f_transform* t, char axis, float amount);
QUILLON_C_API void quillon_f_reset(quillon_f_transform* t);
QUILLON_C_API void quillon_f_clear(quillon_f_transform* t);
QUILLON_C_API quillon_i_point quillon_f_map_i(const quillon_f_transform* t, quillon_i_point p);
QUILLON_C_API quillon_f_point quillon_f_map_f(const quillon_f_transform* t, quillon_f_point p);
QUILLON_C_API quillon_d_point quillon_f_map_d(const quillon_f_transform* t, quillon_d_point p);
QUILLON_C_API quillon_gi_point quillon_f_map_gi(const quillon_f_transform* t, quillon_gi_point p);
QUILLON_C_API quillon_gf_point quillon_f_map_gf(const quillon_f_transform* t, quillon_gf_point p);
QUILLON_C_API quillon_gd_point quillon_f_map_gd(const quillon_f_transform* t, quillon_gd_point p);
QUILLON_C_API int quillon_f_map_i_n(const quillon_f_transform* t, const quillon_i_point* in, quillon_i_point* out, size_t n);
QUILLON_C_API int quillon_f_map_f_n(const quillon_f_transform* t, const quillon_f_point* in, quillon_f_point* out, size_t n);
QUILLON_C_API int quillon_f_map_d_n(const quillon_f_transform* t, const quillon_d_point* in, quillon_d_point* out, size_t n);
QUILLON_C_API int quillon_f_map_gi_n(const quillon_f_transform* t, const quillon_gi_point* in, quillon_gi_point* out, size_t n);
QUILLON_C_API int quillon_f_map_gf_n(const quillon_f_transform* t, const quillon_gf_point* in, quillon_gf_point* out, size_t n);
QUILLON_C_API int quillon_f_map_gd_n(const quillon_f_transform* t, const quillon_gd_point* in, quillon_gd_point* out, size_t n);
QUILLON_C_API int quillon_f_map_rects(const quillon_f_transform* t, const int32_t* ltrb, size_t n, int32_t** out, size_t* out_n);

/* ---- Transform<double>: double ---- */
QUILLON_C_API void quillon_d_identity(quillon_d_transform* out);
QUILLON_C_API void quillon_d_from_elements(const double* elements16, quillon_d_transform* out);
QUILLON_C_API void quillon_d_from_angles(double ax, double ay, double az, quillon_d_transform* out);
QUILLON_C_API void quillon_d_compose(const quillon_d_transform* left, const quillon_d_transform* right, quillon_d_transform* out);
QUILLON_C_API void quillon_d_adjoint(const quillon_d_transform* t, quillon_d_transform* out);
QUILLON_C_API double quillon_d_determinant(const quillon_d_transform* t);
QUILLON_C_API void quillon_d_inverse(const quillon_d_transform* t, quillon_d_transform* out);
QUILLON_C_API void quillon_d_copy_elements(const quillon_d_transform* t, double* destination16);
QUILLON_C_API void quillon_d_transpose(const quillon_d_transform* t, quillon_d_transform* out);
QUILLON_C_API void quillon_d_transpose_in_place(quillon_d_transform* t);
QUILLON_C_API double quillon_d_e10(const quillon_d_transform* t);
QUILLON_C_API double quillon_d_e20(const quillon_d_transform* t);
QUILLON_C_API double quillon_d_e30(const quillon_d_transform* t);
QUILLON_C_API void quillon_d_without_translation(const quillon_d_transform* t, quillon_d_transform* out);
QUILLON_C_API void quillon_d_turn_x(quillon_d_transform* t, double angle);
QUILLON_C_API void quillon_d_turn_y(quillon_d_transform* t, double angle);
QUILLON_C_API void quillon_d_turn_z(quillon_d_transform* t, double angle);
QUILLON_C_API void quillon_d_scale_x(quillon_d_transform* t, double factor);
QUILLON_C_API void quillon_d_scale_y(quillon_d_transform* t, double factor);
QUILLON_C_API void quillon_d_scale_z(quillon_d_transform* t, double factor);
QUILLON_C_API void quillon_d_move(quillon_d_transform* t, char axis, double amount);
QUILLON_C_API void quillon_d_reset(quillon_d_transform* t);
QUILLON_C_API void quillon_d_clear(quillon_d_transform* t);
QUILLON_C_API quillon_i_point quillon_d_map_i(const quillon_d_transform* t, quillon_i_point p);
QUILLON_C_API quillon_f_point quillon_d_map_f(const quillon_d_transform* t, quillon_f_point p);
QUILLON_C_API quillon_d_point quillon_d_map_d(const quillon_d_transform* t, quillon_d_point p);
QUILLON_C_API quillon_gi_point quillon_d_map_gi(const quillon_d_transform* t, quillon_gi_point p);
QUILLON_C_API quillon_gf_point quillon_d_map_gf(const quillon_d_transform* t, quillon_gf_point p);
QUILLON_C_API quillon_gd_point quillon_d_map_gd(const quillon_d_transform* t, quillon_gd_point p);
QUILLON_C_API int quillon_d_map_i_n(const quillon_d_transform* t, const quillon_i_point* in, quillon_i_point* out, size_t n);
QUILLON_C_API int quillon_d_map_f_n(const quillon_d_transform* t, const quillon_f_point* in, quillon_f_point* out, size_t n);
QUILLON_C_API int quillon_d_map_d_n(const quillon_d_transform* t, const quillon_d_point* in, quillon_d_point* out, size_t n);
QUILLON_C_API int quillon_d_map_gi_n(const quillon_d_transform* t, const quillon_gi_point* in, quillon_gi_point* out, size_t n);
QUILLON_C_API int quillon_d_map_gf_n(const quillon_d_transform* t, const quillon_gf_point* in, quillon_gf_point* out, size_t n);
QUILLON_C_API int quillon_d_map_gd_n(const quillon_d_transform* t, const quillon_gd_point* in, quillon_gd_point* out, size_t n);
QUILLON_C_API int quillon_d_map_rects(const quillon_d_transform* t, const int32_t* ltrb, size_t n, int32_t** out, size_t* out_n);

/* ---- Transform<guarddouble>: guarddouble, over the raw stored doubles: every operation saturates ---- */
QUILLON_C_API void quillon_gd_identity(quillon_gd_transform* out);
QUILLON_C_API void quillon_gd_from_elements(const double* elements16, quillon_gd_transform* out);
QUILLON_C_API void quillon_gd_from_angles(double ax, double ay, double az, quillon_gd_transform* out);
QUILLON_C_API void quillon_gd_compose(const quillon_gd_transform* left, const quillon_gd_transform* right, quillon_gd_transform* out);
QUILLON_C_API void quillon_gd_adjoint(const quillon_gd_transform* t, quillon_gd_transform* out);
QUILLON_C_API double quillon_gd_determinant(const quillon_gd_transform* t);
QUILLON_C_API void quillon_gd_inverse(const quillon_gd_transform* t, quillon_gd_transform* out);
QUILLON_C_API void quillon_gd_copy_elements(const quillon_gd_transform* t, double* destination16);
QUILLON_C_API void quillon_gd_transpose(const quillon_gd_transform* t, quillon_gd_transform* out);
QUILLON_C_API void quillon_gd_transpose_in_place(quillon_gd_transform* t);
QUILLON_C_API double quillon_gd_e10(const quillon_gd_transform* t);
QUILLON_C_API double quillon_gd_e20(const quillon_gd_transform* t);
QUILLON_C_API double quillon_gd_e30(const quillon_gd_transform* t);
QUILLON_C_API void quillon_gd_without_translation(const quillon_gd_transform* t, quillon_gd_transform* out);
QUILLON_C_API void quillon_gd_turn_x(quillon_gd_transform* t, double angle);
QUILLON_C_API void quillon_gd_turn_y(quillon_gd_transform* t, double angle);
QUILLON_C_API void quillon_gd_turn_z(quillon_gd_transform* t, double angle);
QUILLON_C_API void quillon_gd_scale_x(quillon_gd_transform* t, double factor);
QUILLON_C_API void quillon_gd_scale_y(quillon_gd_transform* t, double factor);
QUILLON_C_API void quillon_gd_scale_z(quillon_gd_transform* t, double factor);
QUILLON_C_API void quillon_gd_move(quillon_gd_transform* t, char axis, double amount);
QUILLON_C_API void quillon_gd_reset(quillon_gd_transform* t);
QUILLON_C_API void quillon_gd_clear(quillon_gd_transform* t);
QUILLON_C_API quillon_i_point quillon_gd_map_i(const quillon_gd_transform* t, quillon_i_point p);
QUILLON_C_API quillon_f_point quillon_gd_map_f(const quillon_gd_transform* t, quillon_f_point p);
QUILLON_C_API quillon_d_point quillon_gd_map_d(const quillon_gd_transform* t, quillon_d_point p);
QUILLON_C_API quillon_gi_point quillon_gd_map_gi(const quillon_gd_transform* t, quillon_gi_point p);
QUILLON_C_API quillon_gf_point quillon_gd_map_gf(const quillon_gd_transform* t, quillon_gf_point p);
QUILLON_C_API quillon_gd_point quillon_gd_map_gd(const quillon_gd_transform* t, quillon_gd_point p);
QUILLON_C_API int quillon_gd_map_i_n(const quillon_gd_transform* t, const quillon_i_point* in, quillon_i_point* out, size_t n);
QUILLON_C_API int quillon_gd_map_f_n(const quillon_gd_transform* t, const quillon_f_point* in, quillon_f_point* out, size_t n);
QUILLON_C_API int quillon_gd_map_d_n(const quillon_gd_transform* t, const quillon_d_point* in, quillon_d_point* out, size_t n);
QUILLON_C_API int quillon_gd_map_gi_n(const quillon_gd_transform* t, const quillon_gi_point* in, quillon_gi_point* out, size_t n);
QUILLON_C_API int quillon_gd_map_gf_n(const quillon_gd_transform* t, const quillon_gf_point* in, quillon_gf_point* out, size_t n);
QUILLON_C_API int quillon_gd_map_gd_n(const quillon_gd_transform* t, const quillon_gd_point* in, quillon_gd_point* out, size_t n);
QUILLON_C_API int quillon_gd_map_rects(const quillon_gd_transform* t, const int32_t* ltrb, size_t n, int32_t** out, size_t* out_n);


/* ---- The guard scalars over their raw stored values ----
 *
 * Limits: 2^1022 (guarddouble), 2^126 (guardfloat), 2147483647 (guardint), in both signs. a + b is
 * += on a copy of a; a - b is a plus the negated b; a * b is formed in double (64-bit integer for
 * guardint) and limited, a limit times any non-zero value is the limit with the product's sign and
 * anything times zero is zero; a / b is /= on a copy: LIMIT / 0 is the limit with the dividend's
 * sign and 0 / 0 is 0. nint: nearest, ties away from zero, beyond +-2147483647 gives
 * +-2147483647, NaN gives 0. RoundToWhole: nearest whole number, ties downward. The *_assign forms
 * apply the operator to *target in place (a null target is left alone). Comparisons go by the
 * stored value, IEEE for NaN, and return 0 or 1. */

QUILLON_C_API double quillon_gd_from_int(int32_t i);
QUILLON_C_API double quillon_gd_from_double(double x);
QUILLON_C_API double quillon_gd_from_gi(int32_t gi);
QUILLON_C_API double quillon_gd_add(double a, double b);
QUILLON_C_API double quillon_gd_sub(double a, double b);
QUILLON_C_API double quillon_gd_sub_double(double a, double b); /* b through guarddouble(double) */
QUILLON_C_API double quillon_gd_mul(double a, double b);
QUILLON_C_API double quillon_gd_mul_int(int32_t a, double b);
QUILLON_C_API double quillon_gd_div(double a, double b);
QUILLON_C_API void quillon_gd_add_assign(double* target, double b);
QUILLON_C_API void quillon_gd_div_assign(double* target, double b);
QUILLON_C_API int32_t quillon_gd_nint(double a);
QUILLON_C_API double quillon_gd_round_to_whole(double a);
QUILLON_C_API int quillon_gd_eq(double a, double b);
QUILLON_C_API int quillon_gd_ne(double a, double b);
QUILLON_C_API int quillon_gd_lt(double a, double b);
QUILLON_C_API int quillon_gd_gt(double a, double b);

QUILLON_C_API float quillon_gf_from_int(int32_t i);
QUILLON_C_API float quillon_gf_from_double(double x); /* a float argument is widened exactly */
QUILLON_C_API float quillon_gf_from_gi(int32_t gi);
QUILLON_C_API float quillon_gf_add(float a, float b);
QUILLON_C_API float quillon_gf_sub(float a, float b);
QUILLON_C_API float quillon_gf_mul(float a, float b);
QUILLON_C_API float quillon_gf_div(float a, float b);
QUILLON_C_API void quillon_gf_add_assign(float* target, float b);
QUILLON_C_API void quillon_gf_div_assign(float* target, float b);
QUILLON_C_API int32_t quillon_gf_nint(float a);
QUILLON_C_API int quillon_gf_eq(float a, float b);
QUILLON_C_API int quillon_gf_ne(float a, float b);
QUILLON_C_API int quillon_gf_lt(float a, float b);

QUILLON_C_API int32_t quillon_gi_from_int(int32_t i); /* as it stands, -2147483648 included */
QUILLON_C_API int32_t quillon_gi_from_double(double x);
QUILLON_C_API int32_t quillon_gi_from_float(float x);
QUILLON_C_API int32_t quillon_gi_from_gd(double gd);
QUILLON_C_API int32_t quillon_gi_from_gf(float gf);
QUILLON_C_API double quillon_gi_to_double(int32_t a);
QUILLON_C_API float quillon_gi_to_float(int32_t a);
QUILLON_C_API int32_t quillon_gi_add(int32_t a, int32_t b);
QUILLON_C_API int32_t quillon_gi_sub(int32_t a, int32_t b);
QUILLON_C_API int32_t quillon_gi_mul(int32_t a, int32_t b);
QUILLON_C_API int32_t quillon_gi_div(int32_t a, int32_t b);
QUILLON_C_API void quillon_gi_add_assign(int32_t* target, int32_t b);
QUILLON_C_API void quillon_gi_div_assign(int32_t* target, int32_t b);
QUILLON_C_API int quillon_gi_eq(int32_t a, int32_t b);
QUILLON_C_API int quillon_gi_ne(int32_t a, int32_t b);
QUILLON_C_API int quillon_gi_lt(int32_t a, int32_t b);

/* ---- The vectors: ThreeDVector<T> for the six element types ----
 *
 * A vector is three consecutive values x, y, z of its element type (the raw stored values for the
 * guard types, entering the class as above), so an array of n vectors is 3 * n values; the point
 * structs have the same layout. Shown for the prefix d; i, f, gi, gf and gd are the same with their
 * own element type. The n-vector calls return QUILLON_OK, or QUILLON_NULL_ARGUMENT with nothing
 * written when n > 0 and an array is null (n = 0 does nothing); out may be a or b itself where it
 * has their type. Sums, differences, cross and dot products keep to the element type's arithmetic:
 * int wraps around, float is formed in double and rounded once, the guard types saturate at their
 * limits.
 *
 *   quillon_d_vec_add / sub(a, b, out, n)    a[k] + b[k] / a[k] - b[k]
 *   quillon_d_vec_mul(a, b, out, n)          the component-wise product, formed in double
 *   quillon_d_vec_scale_Q(a, s, out, n)      a[k] times the scalar s of type Q: f (float), d
 *                                            (double), gf (guardfloat, raw float) or gd
 *                                            (guarddouble, raw double), each the class's own
 *                                            product with that type
 *   quillon_d_vec_cross(a, b, out, n)        a[k] x b[k], right-handed, a[k] on the left
 *   quillon_d_vec_dot(a, b, out, n)          a[k] . b[k] to out[k]: one value per vector
 *   quillon_d_vec_length(a, out, n)          the length of a[k] to out[k], stored as the element
 *                                            type (cut down for int, nearest for guardint)
 *   quillon_d_vec_unit(a, out, n)            a[k] / length as a double vector; a zero length
 *                                            gives the zero vector
 *   quillon_d_vec_unit_gd(a, out, n)         the same with guarddouble's division, as raw
 *                                            guarddouble values
 *   quillon_d_vec_normalise(a, out, n)       a[k] divided by its length in the element type's own
 *                                            division; a length that is 0 as an int leaves it
 *   quillon_d_vec_project(a, depth, origin, out, n)
 *                                            perspective projection of a[k] onto the screen plane
 *                                            at depth (the viewer at the origin looking along +y)
 *                                            plus origin; a point nearer than the plane, a zero
 *                                            depth or a zero y gives (0, 0)
 *
 * One vector at a time, where a null vector reads as zero and a null destination is not written:
 *
 *   quillon_d_vec_from_points(a, b, out)     the vector from point a to point b: b - a
 *   quillon_d_vec_add_to_axis(v, axis, amount)
 *                                            adds amount to v's component 'x', 'y' or 'z' (either
 *                                            case; any other letter does nothing), in place
 *   quillon_d_vec_equal / not_equal(a, b)    1 when every component is equal (+0.0 equals -0.0) /
 *                                            when one differs (a NaN always differs), else 0
 *
 * The components themselves are the array's: there is nothing to call to read or set them. */

/* ---- ThreeDVector<int> ---- */
QUILLON_C_API int quillon_i_vec_add(const int32_t* a, const int32_t* b, int32_t* out, size_t n);
QUILLON_C_API int quillon_i_vec_sub(const int32_t* a, const int32_t* b, int32_t* out, size_t n);
QUILLON_C_API int quillon_i_vec_mul(const int32_t* a, const int32_t* b, int32_t* out, size_t n);
QUILLON_C_API int quillon_i_vec_scale_f(const int32_t* a, float s, int32_t* out, size_t n);
QUILLON_C_API int quillon_i_vec_scale_d(const int32_t* a, double s, int32_t* out, size_t n);
QUILLON_C_API int quillon_i_vec_scale_gf(const int32_t* a, float s, int32_t* out, size_t n);
QUILLON_C_API int quillon_i_vec_scale_gd(const int32_t* a, double s, int32_t* out, size_t n);
QUILLON_C_API int quillon_i_vec_cross(const int32_t* a, const int32_t* b, int32_t* out, size_t n);
QUILLON_C_API int quillon_i_vec_dot(const int32_t* a, const int32_t* b, int32_t* out, size_t n);
QUILLON_C_API int quillon_i_vec_length(const int32_t* a, int32_t* out, size_t n);
QUILLON_C_API int quillon_i_vec_unit(const int32_t* a, double* out, size_t n);
QUILLON_C_API int quillon_i_vec_unit_gd(const int32_t* a, double* out, size_t n);
QUILLON_C_API int quillon_i_vec_normalise(const int32_t* a, int32_t* out, size_t n);
QUILLON_C_API int quillon_i_vec_project(const int32_t* a, int32_t depth, quillon_screen_point origin, quillon_screen_point* out, size_t n);
QUILLON_C_API void quillon_i_vec_from_points(const int32_t* a, const int32_t* b, int32_t* out);
QUILLON_C_API void quillon_i_vec_add_to_axis(int32_t* v, char axis, int32_t amount);
QUILLON_C_API int quillon_i_vec_equal(const int32_t* a, const int32_t* b);
QUILLON_C_API int quillon_i_vec_not_equal(const int32_t* a, const int32_t* b);

/* ---- ThreeDVector<float> ---- */
QUILLON_C_API int quillon_f_vec_add(const float* a, const float* b, float* out, size_t n);
QUILLON_C_API int quillon_f_vec_sub(const float* a, const float* b, float* out, size_t n);
QUILLON_C_API int quillon_f_vec_mul(const float* a, const float* b, float* out, size_t n);
QUILLON_C_API int quillon_f_vec_scale_f(const float* a, float s, float* out, size_t n);
QUILLON_C_API int quillon_f_vec_scale_d(const float* a, double s, float* out, size_t n);
QUILLON_C_API int quillon_f_vec_scale_gf(const float* a, float s, float* out, size_t n);
QUILLON_C_API int quillon_f_vec_scale_gd(const float* a, double s, float* out, size_t n);
QUILLON_C_API int quillon_f_vec_cross(const float* a, const float* b, float* out, size_t n);
QUILLON_C_API int quillon_f_vec_dot(const float* a, const float* b, float* out, size_t n);
QUILLON_C_API int quillon_f_vec_length(const float* a, float* out, size_t n);
QUILLON_C_API int quillon_f_vec_unit(const float* a, double* out, size_t n);
QUILLON_C_API int quillon_f_vec_unit_gd(const float* a, double* out, size_t n);
QUILLON_C_API int quillon_f_vec_normalise(const float* a, float* out, size_t n);
QUILLON_C_API int quillon_f_vec_project(const float* a, float depth, quillon_screen_point origin, quillon_screen_point* out, size_t n);
QUILLON_C_API void quillon_f_vec_from_points(const float* a, const float* b, float* out);
QUILLON_C_API void quillon_f_vec_add_to_axis(float* v, char axis, float amount);
QUILLON_C_API int quillon_f_vec_equal(const float* a, const float* b);
QUILLON_C_API int quillon_f_vec_not_equal(const float* a, const float* b);

/* ---- ThreeDVector<double> ---- */
QUILLON_C_API int quillon_d_vec_add(const double* a, const double* b, double* out, size_t n);
QUILLON_C_API int quillon_d_vec_sub(const double* a, const double* b, double* out, size_t n);
QUILLON_C_API int quillon_d_vec_mul(const double* a, const double* b, double* out, size_t n);
QUILLON_C_API int quillon_d_vec_scale_f(const double* a, float s, double* out, size_t n);
QUILLON_C_API int quillon_d_vec_scale_d(const double* a, double s, double* out, size_t n);
QUILLON_C_API int quillon_d_vec_scale_gf(const double* a, float s, double* out, size_t n);
QUILLON_C_API int quillon_d_vec_scale_gd(const double* a, double s, double* out, size_t n);
QUILLON_C_API int quillon_d_vec_cross(const double* a, const double* b, double* out, size_t n);
QUILLON_C_API int quillon_d_vec_dot(const double* a, const double* b, double* out, size_t n);
QUILLON_C_API int quillon_d_vec_length(const double* a, double* out, size_t n);
QUILLON_C_API int quillon_d_vec_unit(const double* a, double* out, size_t n);
QUILLON_C_API int quillon_d_vec_unit_gd(const double* a, double* out, size_t n);
QUILLON_C_API int quillon_d_vec_normalise(const double* a, double* out, size_t n);
QUILLON_C_API int quillon_d_vec_project(const double* a, double depth, quillon_screen_point origin, quillon_screen_point* out, size_t n);
QUILLON_C_API void quillon_d_vec_from_points(const double* a, const double* b, double* out);
QUILLON_C_API void quillon_d_vec_add_to_axis(double* v, char axis, double amount);
QUILLON_C_API int quillon_d_vec_equal(const double* a, const double* b);
QUILLON_C_API int quillon_d_vec_not_equal(const double* a, const double* b);

/* ---- ThreeDVector<guardint>: over the raw stored int32 values ---- */
QUILLON_C_API int quillon_gi_vec_add(const int32_t* a, const int32_t* b, int32_t* out, size_t n);
QUILLON_C_API int quillon_gi_vec_sub(const int32_t* a, const int32_t* b, int32_t* out, size_t n);
QUILLON_C_API int quillon_gi_vec_mul(const int32_t* a, const int32_t* b, int32_t* out, size_t n);
QUILLON_C_API int quillon_gi_vec_scale_f(const int32_t* a, float s, int32_t* out, size_t n);
QUILLON_C_API int quillon_gi_vec_scale_d(const int32_t* a, double s, int32_t* out, size_t n);
QUILLON_C_API int quillon_gi_vec_scale_gf(const int32_t* a, float s, int32_t* out, size_t n);
QUILLON_C_API int quillon_gi_vec_scale_gd(const int32_t* a, double s, int32_t* out, size_t n);
QUILLON_C_API int quillon_gi_vec_cross(const int32_t* a, const int32_t* b, int32_t* out, size_t n);
QUILLON_C_API int quillon_gi_vec_dot(const int32_t* a, const int32_t* b, int32_t* out, size_t n);
QUILLON_C_API int quillon_gi_vec_length(const int32_t* a, int32_t* out, size_t n);
QUILLON_C_API int quillon_gi_vec_unit(const int32_t* a, double* out, size_t n);
QUILLON_C_API int quillon_gi_vec_unit_gd(const int32_t* a, double* out, size_t n);
QUILLON_C_API int quillon_gi_vec_normalise(const int32_t* a, int32_t* out, size_t n);
QUILLON_C_API int quillon_gi_vec_project(const int32_t* a, int32_t depth, quillon_screen_point origin, quillon_screen_point* out, size_t n);
QUILLON_C_API void quillon_gi_vec_from_points(const int32_t* a, const int32_t* b, int32_t* out);
QUILLON_C_API void quillon_gi_vec_add_to_axis(int32_t* v, char axis, int32_t amount);
QUILLON_C_API int quillon_gi_vec_equal(const int32_t* a, const int32_t* b);
QUILLON_C_API int quillon_gi_vec_not_equal(const int32_t* a, const int32_t* b);

/* ---- ThreeDVector<guardfloat>: over the raw stored floats ---- */
QUILLON_C_API int quillon_gf_vec_add(const float* a, const float* b, float* out, size_t n);
QUILLON_C_API int quillon_gf_vec_sub(const float* a, const float* b, float* out, size_t n);
QUILLON_C_API int quillon_gf_vec_mul(const float* a, const float* b, float* out, size_t n);
QUILLON_C_API int quillon_gf_vec_scale_f(const float* a, float s, float* out, size_t n);
QUILLON_C_API int quillon_gf_vec_scale_d(const float* a, double s, float* out, size_t n);
QUILLON_C_API int quillon_gf_vec_scale_gf(const float* a, float s, float* out, size_t n);
QUILLON_C_API int quillon_gf_vec_scale_gd(const float* a, double s, float* out, size_t n);
QUILLON_C_API int quillon_gf_vec_cross(const float* a, const float* b, float* out, size_t n);
QUILLON_C_API int quillon_gf_vec_dot(const float* a, const float* b, float* out, size_t n);
QUILLON_C_API int quillon_gf_vec_length(const float* a, float* out, size_t n);
QUILLON_C_API int quillon_gf_vec_unit(const float* a, double* out, size_t n);
QUILLON_C_API int quillon_gf_vec_unit_gd(const float* a, double* out, size_t n);
QUILLON_C_API int quillon_gf_vec_normalise(const float* a, float* out, size_t n);
QUILLON_C_API int quillon_gf_vec_project(const float* a, float depth, quillon_screen_point origin, quillon_screen_point* out, size_t n);
QUILLON_C_API void quillon_gf_vec_from_points(const float* a, const float* b, float* out);
QUILLON_C_API void quillon_gf_vec_add_to_axis(float* v, char axis, float amount);
QUILLON_C_API int quillon_gf_vec_equal(const float* a, const float* b);
QUILLON_C_API int quillon_gf_vec_not_equal(const float* a, const float* b);

/* ---- ThreeDVector<guarddouble>: over the raw stored doubles ---- */
QUILLON_C_API int quillon_gd_vec_add(const double* a, const double* b, double* out, size_t n);
QUILLON_C_API int quillon_gd_vec_sub(const double* a, const double* b, double* out, size_t n);
QUILLON_C_API int quillon_gd_vec_mul(const double* a, const double* b, double* out, size_t n);
QUILLON_C_API int quillon_gd_vec_scale_f(const double* a, float s, double* out, size_t n);
QUILLON_C_API int quillon_gd_vec_scale_d(const double* a, double s, double* out, size_t n);
QUILLON_C_API int quillon_gd_vec_scale_gf(const double* a, float s, double* out, size_t n);
QUILLON_C_API int quillon_gd_vec_scale_gd(const double* a, double s, double* out, size_t n);
QUILLON_C_API int quillon_gd_vec_cross(const double* a, const double* b, double* out, size_t n);
QUILLON_C_API int quillon_gd_vec_dot(const double* a, const double* b, double* out, size_t n);
QUILLON_C_API int quillon_gd_vec_length(const double* a, double* out, size_t n);
QUILLON_C_API int quillon_gd_vec_unit(const double* a, double* out, size_t n);
QUILLON_C_API int quillon_gd_vec_unit_gd(const double* a, double* out, size_t n);
QUILLON_C_API int quillon_gd_vec_normalise(const double* a, double* out, size_t n);
QUILLON_C_API int quillon_gd_vec_project(const double* a, double depth, quillon_screen_point origin, quillon_screen_point* out, size_t n);
QUILLON_C_API void quillon_gd_vec_from_points(const double* a, const double* b, double* out);
QUILLON_C_API void quillon_gd_vec_add_to_axis(double* v, char axis, double amount);
QUILLON_C_API int quillon_gd_vec_equal(const double* a, const double* b);
QUILLON_C_API int quillon_gd_vec_not_equal(const double* a, const double* b);
#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* QUILLON_C_H */

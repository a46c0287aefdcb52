// SPDX-License-Identifier: MIT
/* The seeded battery shared by the C interface test (C99), the C++ reference program and the
 * Python tests (tests/python/battery.py follows this file step for step): a generator of inputs
 * that reach the rules' edges, and a digest of result bits.
 *
 * Each draw takes values from the generator in a fixed order; callers draw into locals, never
 * inside one argument list, whose order of evaluation C leaves open. */
#ifndef QUILLON_TEST_BATTERY_H
#define QUILLON_TEST_BATTERY_H

#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

typedef struct qb_rng { uint64_t state; } qb_rng;

/* splitmix64 */
static inline uint64_t qb_next(qb_rng* r)
{
    uint64_t z = (r->state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

/* A uniform value in [-0.5, 0.5), exact. */
static inline double qb_unit(qb_rng* r) { return (double)(qb_next(r) >> 11) * 0x1p-53 - 0.5; }

/* Doubles: one in eight a value where a rule turns (ties, int range ends, guard limits,
 * infinities, NaN), the rest of four magnitudes (small, pixels, beyond int, near the limit). */
static const double qb_double_specials[] = {
    0.0, -0.0, 1.0, -1.0, 0.5, -0.5, 2.5, -2.5, 1.5, 2147483647.0, -2147483647.0, -2147483648.0,
    2147483647.5, 2147483648.0, 0x1p1022, -0x1p1022, 0x1p1021, 0x1p126, -0x1p126, 1e308, -1e308,
    0x1p-1022, 0x1p-1074, INFINITY, -INFINITY, NAN};
static const double qb_double_scales[] = {4.0, 1000.0, 6e9, 1e308};
static inline double qb_double(qb_rng* r)
{
    const uint64_t u = qb_next(r);
    if ((u & 7) == 0) return qb_double_specials[(u >> 3) % (sizeof qb_double_specials / sizeof(double))];
    return qb_unit(r) * qb_double_scales[(u >> 3) & 3];
}

/* Floats: the same with float's own edges; every value is computed in double and rounded once. */
static const float qb_float_specials[] = {
    0.0f, -0.0f, 1.0f, -1.0f, 0.5f, -0.5f, 2.5f, -2.5f, 1.5f, 2147483648.0f, -2147483648.0f,
    0x1p126f, -0x1p126f, 0x1p125f, 0x1p127f, -0x1p127f, 0x1p-126f, INFINITY, -INFINITY, NAN};
static const double qb_float_scales[] = {4.0, 1000.0, 6e9, 3e38};
static inline float qb_float(qb_rng* r)
{
    const uint64_t u = qb_next(r);
    if ((u & 7) == 0) return qb_float_specials[(u >> 3) % (sizeof qb_float_specials / sizeof(float))];
    return (float)(qb_unit(r) * qb_float_scales[(u >> 3) & 3]);
}

/* 32-bit integers: edges, small values and the whole range. */
static const int32_t qb_int_specials[] = {0, 1, -1, 2, 2147483647, -2147483647, INT32_MIN,
                                          46341, -46341, 65536, 1073741823, -1073741824};
static inline int32_t qb_int(qb_rng* r)
{
    const uint64_t u = qb_next(r);
    const uint32_t w = (uint32_t)(u >> 32);
    switch (u & 3) {
    case 0: return qb_int_specials[(u >> 2) % (sizeof qb_int_specials / sizeof(int32_t))];
    case 1: return (int32_t)((u >> 8) % 2001) - 1000;
    default: return w < 0x80000000u ? (int32_t)w : -(int32_t)(0xFFFFFFFFu - w) - 1;
    }
}

/* Angles in radians, mostly within a few turns. */
static const double qb_angle_specials[] = {0.0, 1.5707963267948966, 3.141592653589793,
                                           -0.7853981633974483, 1e10, INFINITY, NAN};
static inline double qb_angle(qb_rng* r)
{
    const uint64_t u = qb_next(r);
    if ((u & 7) == 0) return qb_angle_specials[(u >> 3) % (sizeof qb_angle_specials / sizeof(double))];
    return qb_unit(r) * 20.0;
}

static inline char qb_axis(qb_rng* r) { return "xyzXYZw"[qb_next(r) % 7]; }

/* Pixel coordinates for rectangles, in [-50, 50]. */
static inline int32_t qb_pixel(qb_rng* r) { return (int32_t)(qb_next(r) % 101) - 50; }

/* FNV-1a over the little-endian bytes of each value; every NaN counts as the one quiet NaN, since
 * payloads are not part of the results. */
typedef struct qb_digest { uint64_t hash; uint64_t count; } qb_digest;
static inline void qb_start(qb_digest* d) { d->hash = 0xCBF29CE484222325ull; d->count = 0; }
static inline void qb_bytes(qb_digest* d, uint64_t bits, int n)
{
    int i;
    for (i = 0; i < n; ++i) {
        d->hash ^= (bits >> (8 * i)) & 0xFF;
        d->hash *= 0x100000001B3ull;
    }
    d->count += 1;
}
static inline void qb_put_double(qb_digest* d, double x)
{
    uint64_t bits;
    memcpy(&bits, &x, sizeof bits);
    if (x != x) bits = 0x7FF8000000000000ull;
    qb_bytes(d, bits, 8);
}
static inline void qb_put_float(qb_digest* d, float x)
{
    uint32_t bits;
    memcpy(&bits, &x, sizeof bits);
    if (x != x) bits = 0x7FC00000u;
    qb_bytes(d, bits, 4);
}
static inline void qb_put_int(qb_digest* d, int32_t x) { qb_bytes(d, (uint32_t)x, 4); }
static inline void qb_print(const char* family, const qb_digest* d)
{
    printf("%-16s %8llu %016llx\n", family, (unsigned long long)d->count, (unsigned long long)d->hash);
}

/* Sizes of the families. */
#define QB_SEED 0x5155494C4C4F4E31ull
#define QB_GUARD_ROUNDS 1000
#define QB_TRANSFORM_ROUNDS 60
#define QB_MAP_TRANSFORMS 8
#define QB_MAP_POINTS 24
#define QB_RECT_ROUNDS 12
#define QB_VECTOR_ROUNDS 200
#define QB_VECTORS 6

#endif

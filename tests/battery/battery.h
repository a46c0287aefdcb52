// SPDX-License-Identifier: MIT
/* The battery's generator, edge values and digest, in the common subset of C99 and C++ and with
 * no library header, so that every surface draws the same inputs and prints the same digest:
 * the conformance tool (headers), the MSVC-ABI caller (no C++ or C runtime headers), the C
 * interface's program and, through tests/battery/battery.py, which reads the edge values from
 * this file, the Python module.
 *
 * A family is a named run of results; its generator is seeded from its name, so a surface may run
 * any subset of families and adding one shifts no other. A result's hash folds each value's bits
 * (float and int zero-extended, every NaN as the one quiet NaN) as a 64-bit word; the family's
 * digest folds the results' hashes. Output: one line "<family> <results> <digest>" per family and,
 * with a dump folder, each result's hash in <folder>/<family>.txt (tools/conformance/compare.py).
 * Before this header: printf, and fopen/fprintf/fclose for the dump; QB_FILE names their handle. */
#ifndef QUILLON_TEST_BATTERY_H
#define QUILLON_TEST_BATTERY_H

#ifndef QB_FILE
#define QB_FILE FILE
#endif

typedef unsigned long long qb_u64;

#define QB_INF __builtin_inf()
#define QB_NAN __builtin_nan("")

/* The edge values, where a rule turns: ties, 2^24, the float and guard limits and their
 * neighbours, the int range's ends, tiny and non-finite values. battery.py reads the lists between
 * "edges:" and "end of edges" (numbers as C writes them, QB_INF and QB_NAN). */
/* edges: */
static const double qb_edges[] = {
    0.0, -0.0, 1.0, -1.0, 0.5, -0.5, 1.5, 2.5, -2.5, 0.75, 2.9, -2.9, 0.1, 16777216.0, 16777217.0,
    16777219.0, 0x1p1022, -0x1p1022, 0x1p1021, 0x1.8p1021, 0x1.fffffffffffffp1021, 1e308, -1e308,
    1e300, 0x1p125, 0x1p126, -0x1p126, 0x1p127, -0x1p127, 3e38, 2147483647.0, -2147483647.0,
    -2147483648.0, 2147483646.5, 2147483647.5, 2147483648.0, 2147483520.0, 6e9, 1e-300, 0x1p-1022,
    0x1p-1074, 0x1p-126, QB_INF, -QB_INF, QB_NAN};
static const int qb_int_edges[] = {
    0, 1, -1, 2, 2147483647, -2147483647, -2147483647 - 1, 2147483646, 46341, -46341, 65536,
    1073741823, -1073741824};
static const double qb_angle_edges[] = {
    0.0, 1.5707963267948966, 3.141592653589793, -0.7853981633974483, 6.283185307179586, 1e10,
    -1e22, 1e300, QB_INF, QB_NAN};
/* end of edges */
#define QB_COUNT(a) (sizeof(a) / sizeof((a)[0]))

/* ---- Inputs: splitmix64 ---- */

typedef struct qb_rng { qb_u64 state; } qb_rng;

static inline qb_u64 qb_next(qb_rng* r)
{
    qb_u64 z = (r->state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}
static inline int qb_below(qb_rng* r, int n) { return (int)(qb_next(r) % (qb_u64)n); }

/* A double from one of the classes where rules bite; one draw from the generator each. */
static inline double qb_real(qb_rng* r)
{
    const qb_u64 u = qb_next(r);
    const double sign = (u & 8) ? -1.0 : 1.0;
    double d;
    switch (u & 7) {
    case 0: return qb_edges[(u >> 4) % QB_COUNT(qb_edges)];
    case 1: return sign * (double)(u >> 20) * 0x1p-34;                     /* about +-1000, fractions */
    case 2: __builtin_memcpy(&d, &u, 8); return d;                          /* any bits */
    case 3: return (double)((int)((u >> 4) % 2001) - 1000);                 /* small whole */
    case 4: return sign * ((double)((u >> 4) % 1000) + 0.25 * (double)((u >> 20) % 4)); /* ties */
    case 5: return sign * (double)(u >> 4) * 0x1p-30;                       /* beyond int: up to 2^30 */
    case 6: return sign * 0x1p1021 * (1.0 + (double)((u >> 4) % 8) * 0.125); /* at the guarddouble limit */
    default: return sign * 0x1p125 * (1.0 + (double)((u >> 4) % 8) * 0.125); /* at the guardfloat limit */
    }
}
/* A float: the double rounded once. */
static inline float qb_float(qb_rng* r) { return (float)qb_real(r); }
static inline int qb_int(qb_rng* r)
{
    const qb_u64 u = qb_next(r);
    const unsigned w = (unsigned)(u >> 32);
    switch (u & 3) {
    case 0: return qb_int_edges[(u >> 2) % QB_COUNT(qb_int_edges)];
    case 1: return (int)((u >> 8) % 2001) - 1000;
    default: return w < 0x80000000u ? (int)w : -(int)(0xFFFFFFFFu - w) - 1;
    }
}
/* Angles in radians: mostly |a| < 8, one in eight an edge (huge, infinite, NaN). */
static inline double qb_angle(qb_rng* r)
{
    const qb_u64 u = qb_next(r);
    if ((u & 7) == 0) return qb_angle_edges[(u >> 3) % QB_COUNT(qb_angle_edges)];
    return ((u & 8) ? -1.0 : 1.0) * (double)(u >> 11) * 0x1p-50;
}
/* An axis letter: the six that name one, and others. */
static const char qb_axes[] = {'x', 'X', 'y', 'Y', 'z', 'Z', 'w', 'a', '0', '{', 0};
static inline char qb_axis(qb_rng* r) { return qb_axes[qb_next(r) % sizeof qb_axes]; }

/* ---- Digests ---- */

typedef struct qb_family {
    const char* name;
    qb_rng rng;    /* seeded from the name */
    qb_u64 digest; /* of the results' hashes */
    qb_u64 result; /* the result being hashed */
    unsigned long count;
    QB_FILE* dump;
} qb_family;

static inline qb_u64 qb_fold(qb_u64 h, qb_u64 word) { return (h ^ word) * 0x100000001B3ull; }
static inline qb_u64 qb_mix(qb_u64 z)
{
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}
static inline void qb_put_bits(qb_family* f, qb_u64 bits) { f->result = qb_fold(f->result, bits); }
static inline void qb_put_double(qb_family* f, double x)
{
    qb_u64 bits;
    __builtin_memcpy(&bits, &x, 8);
    qb_put_bits(f, x != x ? 0x7FF8000000000000ull : bits);
}
static inline void qb_put_float(qb_family* f, float x)
{
    unsigned bits;
    __builtin_memcpy(&bits, &x, 4);
    qb_put_bits(f, x != x ? 0x7FC00000u : bits);
}
static inline void qb_put_int(qb_family* f, int x) { qb_put_bits(f, (unsigned)x); }

/* Sixteen hex digits (the Windows C runtime's printf may not know %llx). */
static inline const char* qb_hex(qb_u64 v, char* text)
{
    int i;
    for (i = 15; i >= 0; --i, v >>= 4) text[i] = "0123456789abcdef"[v & 15];
    text[16] = 0;
    return text;
}

/* Ends the result being hashed and starts the next. */
static inline void qb_end(qb_family* f)
{
    const qb_u64 h = qb_mix(f->result);
    char text[17];
    f->digest = qb_fold(f->digest, h);
    f->count += 1;
    f->result = 0xCBF29CE484222325ull;
    if (f->dump) fprintf(f->dump, "%s\n", qb_hex(h, text));
}

/* Starts a family; dump is a folder or null. */
static inline void qb_begin(qb_family* f, const char* name, const char* dump)
{
    char path[600];
    const char* p;
    int at = 0;
    f->name = name;
    f->digest = f->result = 0xCBF29CE484222325ull;
    for (p = name; *p; ++p) f->digest = qb_fold(f->digest, (unsigned char)*p);
    f->rng.state = f->digest;
    f->digest = f->result;
    f->count = 0;
    f->dump = 0;
    if (!dump) return;
    for (p = dump; *p && at < 500; ++p) path[at++] = *p;
    path[at++] = dump[0] == '/' ? '/' : '\\';
    for (p = name; *p && at < 590; ++p) path[at++] = *p;
    for (p = ".txt"; *p; ++p) path[at++] = *p;
    path[at] = 0;
    f->dump = (QB_FILE*)fopen(path, "w");
}

static inline void qb_finish(qb_family* f)
{
    char text[17], number[24];
    unsigned long n = f->count;
    int at = 23;
    number[at] = 0;
    do { number[--at] = (char)('0' + n % 10); n /= 10; } while (n);
    printf("%-28s %8s %s\n", f->name, number + at, qb_hex(f->digest, text));
    if (f->dump) fclose(f->dump);
}

#endif

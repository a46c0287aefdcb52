// SPDX-License-Identifier: MIT
/* The C interface from C, what is C's own: hand-picked cases where a rule bites, null pointers and
 * sizes, destinations over the operands, raw values and rectangle arrays. (The battery's families
 * run through the C functions in battery.cpp.) Compiled as C99. Exit status 1 when a case fails. */
#include <quillon/quillon.h>

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int failures = 0;

static void check(int ok, const char* what, int line)
{
    if (!ok) {
        fprintf(stderr, "c_interface_test.c:%d: failed: %s\n", line, what);
        ++failures;
    }
}
#define CHECK(cond) check((cond) ? 1 : 0, #cond, __LINE__)

static int same_bits_d(double a, double b) { return memcmp(&a, &b, sizeof a) == 0; }

static void hand_picked(void)
{
    quillon_d_transform d;
    quillon_gd_transform gd;
    quillon_f_transform f;
    quillon_i_point ip = {1, 0, 0};
    quillon_gi_point gip = {1, 0, 0};
    quillon_d_point dp = {1.0, 2.0, 3.0};
    quillon_d_point dps[3] = {{1.0, 2.0, 3.0}, {-4.0, 0.5, 1e9}, {0.0, -0.0, 7.0}};
    quillon_d_point single;
    int32_t rect[4] = {2, 0, 3, 1};
    int32_t* out = NULL;
    size_t out_n = 99;
    double e[16];
    double raw;
    int i;

    CHECK(strcmp(quillon_version(), "1.0.0.1") == 0);
    CHECK(quillon_version_number() == 0x01000001u);

    /* Moving 0.75 along x: an int point is truncated toward zero, a guardint one goes to nearest. */
    quillon_d_identity(&d);
    quillon_d_move(&d, 'x', 0.75);
    CHECK(quillon_d_map_i(&d, ip).x == 1);
    CHECK(quillon_d_map_gi(&d, gip).x == 2);
    quillon_d_move(&d, 'w', 100.0); /* not an axis: nothing happens */
    CHECK(d.e[3] == 0.75 && d.e[7] == 0.0 && d.e[11] == 0.0);
    quillon_d_move(&d, 'Y', -2.0);
    CHECK(d.e[7] == -2.0);

    /* The turn acts after the move: (1, 0, 0) moved by 10 then turned a quarter about z. */
    quillon_d_identity(&d);
    quillon_d_move(&d, 'x', 10.0);
    quillon_d_turn_z(&d, 1.5707963267948966);
    single = quillon_d_map_d(&d, dp);
    CHECK(single.x < -1.99 && single.x > -2.01 && single.y > 10.99 && single.y < 11.01 && single.z == 3.0);

    /* Region mapping: the same scale by 1.45 in guarddouble and double. Through guarddouble a mapped
     * corner comes back by nint (2.9 gives 3), through double it is truncated (2.9 gives 2). */
    quillon_gd_identity(&gd);
    quillon_gd_scale_x(&gd, 1.45);
    CHECK(quillon_gd_map_rects(&gd, rect, 1, &out, &out_n) == QUILLON_OK);
    CHECK(out_n == 1 && out != NULL && out[0] == 3 && out[1] == 0 && out[2] == 4 && out[3] == 1);
    quillon_free_rects(out);
    quillon_d_identity(&d);
    quillon_d_scale_x(&d, 1.45);
    CHECK(quillon_d_map_rects(&d, rect, 1, &out, &out_n) == QUILLON_OK);
    CHECK(out_n == 1 && out != NULL && out[0] == 2 && out[1] == 0 && out[2] == 4 && out[3] == 1);
    quillon_free_rects(out);
    /* An inverted rectangle is normalised; an empty one adds nothing. */
    rect[0] = 3;
    rect[2] = 2;
    CHECK(quillon_d_map_rects(NULL, rect, 1, &out, &out_n) == QUILLON_OK);
    CHECK(out_n == 1 && out[0] == 2 && out[2] == 3);
    quillon_free_rects(out);
    rect[2] = 3;
    CHECK(quillon_d_map_rects(NULL, rect, 1, &out, &out_n) == QUILLON_OK && out_n == 0 && out == NULL);

    /* Null pointers and sizes. */
    CHECK(quillon_d_map_rects(&d, NULL, 1, &out, &out_n) == QUILLON_NULL_ARGUMENT && out == NULL && out_n == 0);
    CHECK(quillon_d_map_rects(&d, rect, 1, NULL, &out_n) == QUILLON_NULL_ARGUMENT);
    CHECK(quillon_d_map_rects(&d, rect, 1, &out, NULL) == QUILLON_NULL_ARGUMENT && out == NULL);
    CHECK(quillon_d_map_rects(&d, rect, (size_t)QUILLON_MAX_RECTS + 1, &out, &out_n) == QUILLON_TOO_LARGE);
    CHECK(quillon_d_map_rects(&d, NULL, 0, &out, &out_n) == QUILLON_OK && out_n == 0 && out == NULL);
    CHECK(quillon_d_map_d_n(&d, NULL, dps, 3) == QUILLON_NULL_ARGUMENT);
    CHECK(quillon_d_map_d_n(&d, dps, NULL, 3) == QUILLON_NULL_ARGUMENT);
    CHECK(quillon_d_map_d_n(&d, NULL, NULL, 0) == QUILLON_OK);
    quillon_free_rects(NULL);
    quillon_d_turn_x(NULL, 1.0);
    quillon_d_move(NULL, 'x', 1.0);
    quillon_gd_add_assign(NULL, 1.0);
    quillon_gi_div_assign(NULL, 1);
    quillon_d_identity(NULL);
    quillon_d_copy_elements(&d, NULL);
    /* A null transform is the identity: its determinant is 1, its elements the identity's. */
    CHECK(quillon_d_determinant(NULL) == 1.0);
    quillon_d_copy_elements(NULL, e);
    for (i = 0; i < 16; ++i) CHECK(e[i] == (i % 5 == 0 ? 1.0 : 0.0));
    quillon_d_from_elements(NULL, &d);
    CHECK(d.e[0] == 1.0 && d.e[1] == 0.0 && d.e[15] == 1.0);

    /* n points through the one loop equal the points one by one, also in place. */
    quillon_d_from_angles(0.1, -0.7, 2.0, &d);
    quillon_d_move(&d, 'z', 5.5);
    {
        quillon_d_point mapped[3];
        CHECK(quillon_d_map_d_n(&d, dps, mapped, 3) == QUILLON_OK);
        for (i = 0; i < 3; ++i) {
            single = quillon_d_map_d(&d, dps[i]);
            CHECK(memcmp(&single, &mapped[i], sizeof single) == 0);
        }
        CHECK(quillon_d_map_d_n(&d, dps, dps, 3) == QUILLON_OK);
        CHECK(memcmp(dps, mapped, sizeof mapped) == 0);
    }

    /* Singular: the inverse is the identity. Destinations may be the source itself. */
    quillon_f_identity(&f);
    quillon_f_scale_y(&f, 0.0f);
    CHECK(quillon_f_determinant(&f) == 0.0f);
    quillon_f_inverse(&f, &f);
    CHECK(f.e[5] == 1.0f);
    quillon_d_from_angles(0.0, 0.0, 0.0, &d);
    quillon_d_scale_x(&d, 4.0);
    quillon_d_inverse(&d, &d);
    CHECK(d.e[0] == 0.25);

    /* Guard scalars where a rule turns. */
    CHECK(quillon_gd_div(1.0, 0.0) == 0x1p1022);
    CHECK(quillon_gd_div(-0x1p1022, 0.0) == -0x1p1022);
    CHECK(quillon_gd_div(0.0, 0.0) == 0.0);
    CHECK(quillon_gd_mul(0x1p1022, -1e-300) == -0x1p1022);
    CHECK(quillon_gd_from_double(1e308) == 0x1p1022);
    CHECK(quillon_gd_add(0x1p1021, 0x1p1021) == 0x1p1022);
    CHECK(quillon_gd_nint(2.5) == 3 && quillon_gd_nint(-2.5) == -3 && quillon_gd_nint(1e300) == 2147483647);
    CHECK(quillon_gd_round_to_whole(2.5) == 2.0 && quillon_gd_round_to_whole(-2.5) == -3.0);
    CHECK(quillon_gd_nint(NAN) == 0);
    raw = 3.0;
    quillon_gd_div_assign(&raw, 2.0);
    CHECK(raw == 1.5);
    CHECK(same_bits_d(quillon_gd_sub(0.0, 0.0), 0.0));
    CHECK(quillon_gi_add(2147483000, 1000) == 2147483647);
    CHECK(quillon_gi_sub(0, INT32_MIN) == 2147483647);
    CHECK(quillon_gi_mul(65536, -65536) == -2147483647);
    CHECK(quillon_gi_div(7, 0) == 2147483647 && quillon_gi_div(-7, 2) == -3);
    CHECK(quillon_gi_from_double(2.5) == 2 && quillon_gi_from_double(-2.5) == -2 && quillon_gi_from_double(2.51) == 3);
    CHECK(quillon_gi_from_int(INT32_MIN) == INT32_MIN);
    CHECK(quillon_gf_add(0x1p126f, -1.0f) == 0x1p126f);
    CHECK(quillon_gf_from_double(1e300) == 0x1p126f);
    CHECK(quillon_gf_div(1.0f, 3.0f) == (float)(1.0 / 3.0));
    CHECK(quillon_gf_lt(1.0f, 2.0f) == 1 && quillon_gf_eq(NAN, NAN) == 0 && quillon_gf_ne(NAN, NAN) == 1);
}

/* The vectors where a rule bites: which operand comes first, which element type a letter means,
 * which scalar type a product takes, in-place calls and null pointers. */
static void hand_picked_vectors(void)
{
    const double dx[3] = {1.0, 0.0, 0.0}, dy[3] = {0.0, 1.0, 0.0};
    double d3[3], d6[6], dw[6];
    float f3[3];
    int32_t i3[3], iw[6];
    quillon_screen_point s[2], origin = {10, 20};
    int k;

    /* Cross: the first operand on the left; x cross y is z, y cross x is -z. */
    CHECK(quillon_d_vec_cross(dx, dy, d3, 1) == QUILLON_OK && d3[0] == 0.0 && d3[1] == 0.0 && d3[2] == 1.0);
    CHECK(quillon_d_vec_cross(dy, dx, d3, 1) == QUILLON_OK && d3[2] == -1.0);
    /* The vector from a to b is b - a. */
    quillon_d_vec_from_points(dx, dy, d3);
    CHECK(d3[0] == -1.0 && d3[1] == 1.0 && d3[2] == 0.0);
    {
        const double p[3] = {5.0, -2.0, 0.25}, q[3] = {1.0, 1.0, 1.0};
        CHECK(quillon_d_vec_sub(p, q, d3, 1) == QUILLON_OK && d3[0] == 4.0 && d3[1] == -3.0 && d3[2] == -0.75);
    }

    /* int wraps around, guardint stops at its limit; float goes past 2^126, guardfloat does not. */
    {
        const int32_t big[3] = {2147483647, INT32_MIN, 46341}, one[3] = {1, -1, 0};
        const float fbig[3] = {0x1p126f, -0x1p126f, 1.0f};
        CHECK(quillon_i_vec_add(big, one, i3, 1) == QUILLON_OK && i3[0] == INT32_MIN && i3[1] == 2147483647);
        CHECK(quillon_gi_vec_add(big, one, i3, 1) == QUILLON_OK && i3[0] == 2147483647 && i3[1] == -2147483647);
        CHECK(quillon_f_vec_add(fbig, fbig, f3, 1) == QUILLON_OK && f3[0] == 0x1p127f && f3[1] == -0x1p127f);
        CHECK(quillon_gf_vec_add(fbig, fbig, f3, 1) == QUILLON_OK && f3[0] == 0x1p126f && f3[1] == -0x1p126f);
        /* 46341^2 passes the int range: the int dot product wraps, guardint's saturates. */
        {
            const int32_t v[3] = {0, 0, 46341};
            CHECK(quillon_i_vec_dot(v, v, i3, 1) == QUILLON_OK && i3[0] == -2147479015);
            CHECK(quillon_gi_vec_dot(v, v, i3, 1) == QUILLON_OK && i3[0] == 2147483647);
        }
    }

    /* Length and unit: an int length is cut down, a guardint one goes to nearest; an int (1, 1, 0)
     * has length 1 and is its own unit; a zero vector's unit is zero. */
    {
        const int32_t v[6] = {1, 1, 0, 0, 0, 0}, w[3] = {1, 1, 1};
        CHECK(quillon_i_vec_length(v, i3, 2) == QUILLON_OK && i3[0] == 1 && i3[1] == 0);
        CHECK(quillon_gi_vec_length(w, i3, 1) == QUILLON_OK && i3[0] == 2);
        CHECK(quillon_i_vec_unit(v, d6, 2) == QUILLON_OK && d6[0] == 1.0 && d6[1] == 1.0 && d6[2] == 0.0);
        for (k = 3; k < 6; ++k) CHECK(d6[k] == 0.0);
        CHECK(quillon_d_vec_length(dx, d3, 1) == QUILLON_OK && d3[0] == 1.0);
    }
    /* Normalise divides in the element type: int (3, 4, 0) / 5 is zero, (10, 0, 0) is (1, 0, 0);
     * a double under 1 long is left as it is. */
    {
        const int32_t v[6] = {3, 4, 0, 10, 0, 0};
        const double small[3] = {0.5, 0.0, 0.0};
        CHECK(quillon_i_vec_normalise(v, iw, 2) == QUILLON_OK);
        CHECK(iw[0] == 0 && iw[1] == 0 && iw[2] == 0 && iw[3] == 1 && iw[4] == 0 && iw[5] == 0);
        CHECK(quillon_d_vec_normalise(small, d3, 1) == QUILLON_OK && d3[0] == 0.5);
    }

    /* The four scalar products: float's 0.1 is not double's, and a guard scalar's product comes
     * back to int through nint (1.5 gives 2) where a plain one is truncated (1.5 gives 1). */
    {
        const int32_t v[3] = {3, -3, 5};
        CHECK(quillon_d_vec_scale_f(dx, 0.1f, d3, 1) == QUILLON_OK && d3[0] == (double)0.1f);
        CHECK(quillon_d_vec_scale_d(dx, 0.1, d3, 1) == QUILLON_OK && d3[0] == 0.1);
        CHECK(quillon_i_vec_scale_d(v, 0.5, i3, 1) == QUILLON_OK && i3[0] == 1 && i3[1] == -1 && i3[2] == 2);
        CHECK(quillon_i_vec_scale_f(v, 0.5f, i3, 1) == QUILLON_OK && i3[0] == 1 && i3[1] == -1 && i3[2] == 2);
        CHECK(quillon_i_vec_scale_gd(v, 0.5, i3, 1) == QUILLON_OK && i3[0] == 2 && i3[1] == -2 && i3[2] == 3);
        CHECK(quillon_i_vec_scale_gf(v, 0.5f, i3, 1) == QUILLON_OK && i3[0] == 2 && i3[1] == -2 && i3[2] == 3);
        /* A raw guard scalar beyond the limit enters as the limit. */
        CHECK(quillon_gd_vec_scale_gd(dx, 1e308, d3, 1) == QUILLON_OK && d3[0] == 0x1p1022);
        CHECK(quillon_d_vec_mul(dx, dy, d3, 1) == QUILLON_OK && d3[0] == 0.0 && d3[1] == 0.0);
    }

    /* Projection at depth 1 with the origin (10, 20): (1, 2, 3) scales by 1/2, 0.5 and 1.5 round
     * with ties downward to 0 and 1; a point nearer than the plane gives (0, 0), not the origin. */
    {
        const double v[6] = {1.0, 2.0, 3.0, 1.0, 0.5, 3.0};
        CHECK(quillon_d_vec_project(v, 1.0, origin, s, 2) == QUILLON_OK);
        CHECK(s[0].x == 10 && s[0].y == 21 && s[1].x == 0 && s[1].y == 0);
    }

    /* Comparison: +0 equals -0, NaN differs from itself; a null vector is zero. */
    {
        const double pz[3] = {0.0, 1.0, 2.0}, nz[3] = {-0.0, 1.0, 2.0}, nan[3] = {NAN, 0.0, 0.0};
        const double zero[3] = {0.0, -0.0, 0.0};
        CHECK(quillon_d_vec_equal(pz, nz) == 1 && quillon_d_vec_not_equal(pz, nz) == 0);
        CHECK(quillon_d_vec_equal(nan, nan) == 0 && quillon_d_vec_not_equal(nan, nan) == 1);
        CHECK(quillon_d_vec_equal(NULL, zero) == 1 && quillon_d_vec_equal(pz, NULL) == 0);
        CHECK(quillon_gd_vec_equal(NULL, NULL) == 1 && quillon_gd_vec_not_equal(NULL, NULL) == 0);
    }

    /* Add to an axis, either case; any other letter does nothing; a guardint axis saturates. */
    {
        double v[3] = {1.0, 2.0, 3.0};
        int32_t g[3] = {2147483600, 0, 0};
        quillon_d_vec_add_to_axis(v, 'Y', 0.5);
        quillon_d_vec_add_to_axis(v, 'z', -3.0);
        quillon_d_vec_add_to_axis(v, 'w', 100.0);
        CHECK(v[0] == 1.0 && v[1] == 2.5 && v[2] == 0.0);
        quillon_gi_vec_add_to_axis(g, 'x', 100);
        CHECK(g[0] == 2147483647);
        quillon_i_vec_add_to_axis(i3, 'q', 1);
        quillon_i_vec_add_to_axis(NULL, 'x', 1);
    }

    /* In place: out may be either operand; each vector is read whole before it is written. */
    {
        double a[6] = {1.0, 2.0, 3.0, -4.0, 5.0, 0.5}, b[6] = {0.5, -1.0, 2.0, 3.0, 0.0, -2.0};
        double ab[6], ba[6], dots[2];
        CHECK(quillon_d_vec_cross(a, b, ab, 2) == QUILLON_OK);
        CHECK(quillon_d_vec_cross(b, a, ba, 2) == QUILLON_OK);
        CHECK(ab[0] == 7.0 && ab[1] == -0.5 && ab[2] == -2.0 && ba[0] == -7.0);
        memcpy(dw, a, sizeof dw);
        CHECK(quillon_d_vec_cross(dw, b, dw, 2) == QUILLON_OK && memcmp(dw, ab, sizeof dw) == 0);
        memcpy(dw, b, sizeof dw);
        CHECK(quillon_d_vec_cross(a, dw, dw, 2) == QUILLON_OK && memcmp(dw, ab, sizeof dw) == 0);
        CHECK(quillon_d_vec_dot(a, b, dots, 2) == QUILLON_OK && dots[0] == 4.5 && dots[1] == -13.0);
        memcpy(dw, a, sizeof dw);
        CHECK(quillon_d_vec_dot(dw, b, dw, 2) == QUILLON_OK && dw[0] == 4.5 && dw[1] == -13.0);
        memcpy(dw, a, sizeof dw);
        CHECK(quillon_d_vec_unit(a, d6, 2) == QUILLON_OK);
        CHECK(quillon_d_vec_unit(dw, dw, 2) == QUILLON_OK && memcmp(dw, d6, sizeof dw) == 0);
        memcpy(dw, a, sizeof dw);
        CHECK(quillon_gd_vec_unit_gd(a, d6, 2) == QUILLON_OK);
        CHECK(quillon_gd_vec_unit_gd(dw, dw, 2) == QUILLON_OK && memcmp(dw, d6, sizeof dw) == 0);
        memcpy(dw, a, sizeof dw);
        CHECK(quillon_d_vec_add(dw, dw, dw, 2) == QUILLON_OK && dw[0] == 2.0 && dw[5] == 1.0);
    }

    /* Null arrays: with n > 0 an error and nothing written; with n = 0 nothing to do. */
    d3[0] = 42.0;
    CHECK(quillon_d_vec_add(NULL, dx, d3, 1) == QUILLON_NULL_ARGUMENT && d3[0] == 42.0);
    CHECK(quillon_d_vec_add(dx, NULL, d3, 1) == QUILLON_NULL_ARGUMENT && d3[0] == 42.0);
    CHECK(quillon_d_vec_add(dx, dy, NULL, 1) == QUILLON_NULL_ARGUMENT);
    CHECK(quillon_gi_vec_cross(NULL, NULL, NULL, 0) == QUILLON_OK);
    CHECK(quillon_f_vec_length(NULL, f3, 1) == QUILLON_NULL_ARGUMENT);
    CHECK(quillon_gf_vec_unit(NULL, d3, 1) == QUILLON_NULL_ARGUMENT && d3[0] == 42.0);
    CHECK(quillon_gd_vec_scale_d(dx, 2.0, NULL, 1) == QUILLON_NULL_ARGUMENT);
    CHECK(quillon_i_vec_normalise(NULL, NULL, 0) == QUILLON_OK);
    CHECK(quillon_gd_vec_project(dx, 1.0, origin, NULL, 1) == QUILLON_NULL_ARGUMENT);
    CHECK(quillon_gd_vec_project(NULL, 1.0, origin, s, 1) == QUILLON_NULL_ARGUMENT);
    CHECK(quillon_d_vec_dot(dx, NULL, d3, 1) == QUILLON_NULL_ARGUMENT && d3[0] == 42.0);
    quillon_d_vec_from_points(dx, dy, NULL);
    quillon_d_vec_from_points(NULL, dy, d3);
    CHECK(d3[0] == 0.0 && d3[1] == 1.0 && d3[2] == 0.0);
    quillon_d_vec_from_points(dx, NULL, d3);
    CHECK(d3[0] == -1.0 && d3[1] == 0.0 && same_bits_d(d3[2], 0.0));
}

int main(void)
{
    hand_picked();
    hand_picked_vectors();
    if (failures) fprintf(stderr, "%d checks failed\n", failures);
    return failures ? 1 : 0;
}

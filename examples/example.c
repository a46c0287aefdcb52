// SPDX-License-Identifier: MIT
/* The C interface in a small program: a transform turned and moved, points of two element types
 * mapped, a region of two rectangles mapped, and a guard scalar division. */
#include <quillon/quillon.h>

#include <stdio.h>

int main(void)
{
    quillon_d_transform t;
    quillon_d_point p = {1.0, 0.0, 0.0};
    quillon_i_point q = {1, 0, 0};
    const int32_t rects[8] = {0, 0, 10, 10, 20, 0, 30, 5};
    int32_t* mapped = NULL;
    size_t n = 0, k;

    printf("quillon %s\n", quillon_version());
    quillon_d_identity(&t);
    quillon_d_turn_z(&t, 0.5235987755982988); /* 30 degrees about z */
    quillon_d_move(&t, 'x', 10.0);             /* then 10 along x */

    p = quillon_d_map_d(&t, p);
    q = quillon_d_map_i(&t, q); /* truncated toward zero */
    printf("double point: %.17g, %.17g, %.17g\n", p.x, p.y, p.z);
    printf("int point:    %d, %d, %d\n", (int)q.x, (int)q.y, (int)q.z);

    if (quillon_d_map_rects(&t, rects, 2, &mapped, &n) != QUILLON_OK) return 1;
    printf("the region's image has %lu rectangles; the first: %d, %d, %d, %d\n", (unsigned long)n,
           n ? (int)mapped[0] : 0, n ? (int)mapped[1] : 0, n ? (int)mapped[2] : 0, n ? (int)mapped[3] : 0);
    for (k = 0; k < n; ++k)
        if (mapped[4 * k] >= mapped[4 * k + 2] || mapped[4 * k + 1] >= mapped[4 * k + 3]) return 1;
    quillon_free_rects(mapped);

    printf("guarddouble 1 / 0 = %g (the limit, 2^1022)\n", quillon_gd_div(1.0, 0.0));
    return 0;
}

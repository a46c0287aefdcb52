// SPDX-License-Identifier: MIT
// The battery's families through the C interface: the classes of c_classes.h call the C functions,
// and the digests must equal the conformance tool's (compared by tools/conformance/compare.py).
// Exit status 1 when an in-place call or n points at once differ from the plain call.
#define QB_C_ONLY
#include "c_classes.h"

#include <cstdio>
#include <cstdlib>

#include "../battery/battery.h"

using namespace cside;

// The image of the rectangles' union: the union's own rectangles (through the identity) mapped.
template <class T>
void putRegion(qb_family& f, const Transform<T>& t, const int* ltrb, int n)
{
    int32_t *source = nullptr, *image = nullptr;
    size_t count = 0, images = 0;
    if (quillon_d_map_rects(nullptr, ltrb, static_cast<size_t>(n), &source, &count) != QUILLON_OK ||
        Transform<T>::C::map_rects(&t.t, source, count, &image, &images) != QUILLON_OK) {
        qb_put_int(&f, -1);
    } else {
        qb_put_int(&f, static_cast<int>(images));
        for (size_t k = 0; k < 4 * images; ++k) qb_put_int(&f, image[k]);
    }
    quillon_free_rects(source);
    quillon_free_rects(image);
}

#include "../battery/families.h"

int main(int argc, char** argv)
{
    battery::cFamilies(battery::dumpFolder(argc, argv));
    if (differences) std::fprintf(stderr, "%d in-place or n-point results differ from the plain call\n", differences);
    return differences ? 1 : 0;
}

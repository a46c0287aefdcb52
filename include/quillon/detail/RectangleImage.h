// SPDX-License-Identifier: MIT
// The image of one rectangle under a transform, as region mapping makes it: the rectangle
// normalised, its four corners (z = 0) through the mapping of ThreeDVector<double>, truncated toward
// zero, in the order top left, top right, bottom right, bottom left. Region mapping fills each such
// quadrilateral with the winding rule and joins them; the command's pictures draw the same ones.
#ifndef QUILLON_DETAIL_RECTANGLE_IMAGE_H
#define QUILLON_DETAIL_RECTANGLE_IMAGE_H

#include <quillon/Region>
#include <quillon/Transform>

namespace quillon {

template <class T>
void rectangleImage(const Transform<T>& t, RECT r, POINT corners[4]) noexcept
{
    if (r.left > r.right) { const LONG x = r.left; r.left = r.right; r.right = x; }
    if (r.top > r.bottom) { const LONG y = r.top; r.top = r.bottom; r.bottom = y; }
    const auto corner = [&t](LONG x, LONG y) {
        const ThreeDVector<double> v = t * ThreeDVector<double>(x, y, 0.0);
        return POINT{quillon::truncate(v.GetX()), quillon::truncate(v.GetY())};
    };
    corners[0] = corner(r.left, r.top);
    corners[1] = corner(r.right, r.top);
    corners[2] = corner(r.right, r.bottom);
    corners[3] = corner(r.left, r.bottom);
}

} // namespace quillon

#endif

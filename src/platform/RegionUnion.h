// SPDX-License-Identifier: MIT
// libquillon_region's one function beyond the platform's names, for the region mapping: the
// union of many polygons made at once.
#pragma once

#include <quillon/Region>

#if !defined(_WIN32)

extern "C" {

// A new region: base (which may be null, and is only read) joined with each polygon, every
// polygon scan-converted by itself as CreatePolygonRgn makes it, rectangle for rectangle what
// CombineRgn(result, result, piece, RGN_OR) gives piece after piece. A polygon that cannot be
// made is left out. Null when nothing was made, when base is not a region, or when the result
// would pass the rectangle limit. The work grows with the rectangles of the pieces and the result,
// not with their product.
__attribute__((visibility("default"))) HRGN quillon_region_union_polygons(
    HRGN base, const POINT* points, const INT* counts, int polygons, int mode);

} // extern "C"

#endif

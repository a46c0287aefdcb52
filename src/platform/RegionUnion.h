// SPDX-License-Identifier: MIT
// libquillon_region's functions beyond the platform's names: the union of many polygons made at
// once, for the region mapping, and the count of steps taken, for tests of what calls cost.
#pragma once

#include <quillon/Region>

#if !defined(_WIN32)

extern "C" {

// A new region: base (which may be null, and is only read) joined with each polygon, every
// polygon scan-converted by itself as CreatePolygonRgn makes it, rectangle for rectangle what
// CombineRgn(result, result, piece, RGN_OR) gives piece after piece. A polygon that
// CreatePolygonRgn cannot make is left out. Null when nothing was made, when base is not a region,
// when the pieces together would hold more than the rectangle limit (one budget for the whole
// call: pieces that must pass it are found from their edges before any is made), or when the
// result would pass it. The work grows with the polygons, the rectangles of the pieces and of the
// result.
__attribute__((visibility("default"))) HRGN quillon_region_union_polygons(
    HRGN base, const POINT* points, const INT* counts, int polygons, int mode);

// The steps the region functions have taken on the calling thread so far: rows walked and the edges
// on them, stretches of rows bounded, spans merged, compared and written. The difference across a
// call is its work, which tests hold against its input and result.
__attribute__((visibility("default"))) unsigned long long quillon_region_steps(void);

} // extern "C"

#endif

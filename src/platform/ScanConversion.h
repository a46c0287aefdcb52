// SPDX-License-Identifier: MIT
// Polygon scan conversion for libquillon_region.
#pragma once

#include <quillon/Region>

#include "RegionAlgebra.h"

namespace quillon::region_detail {

// Whether one polygon of n points is an axis-aligned rectangle (four corners, or five with the
// first repeated), which the platform takes whole.
bool isRectangle(const POINT* p, int n) noexcept;

// Scan-converts the polygons into out, as CreatePolyPolygonRgn does; false where it fails.
bool makePolygons(const POINT* points, const INT* counts, int polygons, int mode, Region& out);

} // namespace quillon::region_detail

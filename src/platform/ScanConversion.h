// SPDX-License-Identifier: MIT
// Polygon scan conversion for libquillon_region.
#pragma once

#include <quillon/Region>

#include "RegionAlgebra.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quillon::region_detail {

// Whether one polygon of n points is an axis-aligned rectangle (four corners, or five with the
// first repeated), which the platform takes whole.
bool isRectangle(const POINT* p, int n) noexcept;

// Scan-converts the polygons into out, as CreatePolyPolygonRgn does; false where it fails.
bool makePolygons(const POINT* points, const INT* counts, int polygons, int mode, Region& out);

// Working space for scan conversion, kept by a caller that makes many polygons, so that once it
// has grown a polygon allocates nothing but its rectangles.
struct ScanScratch;
struct ScanScratchDeleter {
    void operator()(ScanScratch* scratch) const noexcept;
};
using ScanScratchPtr = std::unique_ptr<ScanScratch, ScanScratchDeleter>;
ScanScratchPtr newScanScratch() noexcept; // null when memory runs out

// Appends the rectangles of one polygon, as CreatePolygonRgn makes it, to boxes (in the canonical
// form, at most limit of them, limit at most kMaxRects). Where CreatePolygonRgn fails, or where the
// rectangles would pass limit, boxes is left as it was.
enum class Piece { made, failed, tooMany };
Piece appendPolygon(const POINT* points, INT n, int mode, ScanScratch& scratch, std::vector<Box>& boxes,
                    std::size_t limit);

// A lower bound on the rectangles CreatePolygonRgn makes of one polygon, from its edges with no walk
// (1 for a rectangle taken whole, 0 where it makes nothing); 0 too, without a look at the edges,
// where no more than least rectangles could come of it.
std::int64_t polygonBound(const POINT* points, INT n, int mode, std::int64_t least);

} // namespace quillon::region_detail

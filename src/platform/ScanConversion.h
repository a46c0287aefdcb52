// SPDX-License-Identifier: MIT
// Polygon scan conversion for libquillon_region.
#pragma once

#include <quillon/Region>

#include "RegionAlgebra.h"

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
// form, at most kMaxRects of them); false where the call would fail, and then boxes is as it was.
bool appendPolygon(const POINT* points, INT n, int mode, ScanScratch& scratch, std::vector<Box>& boxes);

} // namespace quillon::region_detail

// SPDX-License-Identifier: MIT
// A lower bound on the rectangles of a polygon call, from its edges alone, for the calls whose
// result would pass the rectangle limit: they fail after work that follows their points, not
// their rows.
#pragma once

#include <quillon/Region>

#include <cstdint>

namespace quillon::region_detail {

// A lower bound on the rectangles the scan conversion makes of the polygons (each of two or more
// points counted, their heights and their sum known not to wrap), counted no further than past
// limit. Its work grows with the points (and stops early for polygons of very many edges, whose
// bound is then weaker), and, with walk, with at most about limit steps of a walk over the rows
// where steep edges move, which makes the bound of such stretches tighter.
std::int64_t provenRectangles(const POINT* points, const INT* counts, int polygons, bool winding,
                              std::int64_t limit, bool walk);

} // namespace quillon::region_detail

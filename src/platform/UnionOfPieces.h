// SPDX-License-Identifier: MIT
// The union of many regions at once: the pieces of a mapped region joined in one sweep.
#pragma once

#include <quillon/Region>

#include "RegionAlgebra.h"

#include <vector>

namespace quillon::region_detail {

// The rectangles of one region in the canonical form, held elsewhere.
struct BoxRun {
    const Box* first;
    int n;
};

// The union of many regions at once, rectangle for rectangle what joining them one by one with
// combine gives; false past the rectangle limit.
bool unionAll(const std::vector<BoxRun>& parts, Region& out);

} // namespace quillon::region_detail

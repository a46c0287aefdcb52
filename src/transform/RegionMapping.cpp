// SPDX-License-Identifier: MIT
// Region mapping: the image of a region under a transform, as the union of the images of its
// rectangles. Each rectangle's four corners (z = 0) go through the vector mapping for
// ThreeDVector<double>, are truncated toward zero to pixel coordinates and become one four-sided
// polygon, filled with the winding rule; the pieces are joined by union. No bounding box is
// taken, so a turned region is a union of turned quadrilaterals.
//
// The caller's region is only read. The result is a new region the caller owns (null when the
// region is null, unreadable or empty, or when no piece could be made); everything made on the
// way is released here.
#include <quillon/Region>
#include <quillon/Transform>
#include <quillon/detail/RectangleImage.h>

#if !defined(_WIN32)
#include "../platform/RegionUnion.h"
#endif

#include <cstddef>
#include <cstdlib>
#include <limits>

namespace {

// The platform's data must describe its rectangles inside the buffer it filled; anything else
// is treated as a failed read rather than followed out of the buffer.
bool rectanglesFit(const RGNDATA* data, DWORD size) noexcept
{
    if (size < sizeof(RGNDATAHEADER)) return false;
    const unsigned long long end = 1ull * data->rdh.dwSize + 1ull * data->rdh.nCount * sizeof(RECT);
    return data->rdh.dwSize >= sizeof(RGNDATAHEADER) && end <= size;
}

#if defined(_WIN32)
// The platform's functions: piece after piece joined to the result.
template <class T>
HRGN joinPieces(const Transform<T>& t, const RECT* rects, DWORD n) noexcept
{
    HRGN result = nullptr;
    for (DWORD i = 0; i < n; ++i) {
        POINT corners[4];
        quillon::rectangleImage(t, rects[i], corners);
        HRGN piece = CreatePolygonRgn(corners, 4, WINDING);
        if (!piece) continue; // this rectangle is left out
        if (!result)
            result = CreatePolygonRgn(corners, 4, WINDING);
        else
            CombineRgn(result, result, piece, RGN_OR);
        DeleteObject(piece);
    }
    return result;
}
#else
// The region layer joins the pieces all at once, with the same result as piece after piece, and
// with one budget of rectangles for all of them.
template <class T>
HRGN joinPieces(const Transform<T>& t, const RECT* rects, DWORD n) noexcept
{
    if (n > DWORD(std::numeric_limits<int>::max())) return nullptr;
    POINT* corners = static_cast<POINT*>(std::malloc(sizeof(POINT) * 4 * (n ? n : 1)));
    INT* counts = static_cast<INT*>(std::malloc(sizeof(INT) * (n ? n : 1)));
    HRGN result = nullptr;
    if (corners && counts) {
        for (DWORD i = 0; i < n; ++i) {
            quillon::rectangleImage(t, rects[i], corners + 4 * i);
            counts[i] = 4;
        }
        result = quillon_region_union_polygons(nullptr, corners, counts, static_cast<int>(n), WINDING);
    }
    std::free(corners);
    std::free(counts);
    return result;
}
#endif

} // namespace

template <class T>
HRGN Transform<T>::operator*(HRGN const region) const noexcept
{
    if (!region) return nullptr;
    HRGN result = nullptr;
    const DWORD size = GetRegionData(region, 0, nullptr);
    auto* data = static_cast<RGNDATA*>(std::malloc(size ? size : 1));
    if (!data) return nullptr;
    if (GetRegionData(region, size, data) != 0 && rectanglesFit(data, size) &&
        data->rdh.iType == RDH_RECTANGLES) {
        const auto* rects = reinterpret_cast<const RECT*>(reinterpret_cast<const char*>(data) + data->rdh.dwSize);
        result = joinPieces(*this, rects, data->rdh.nCount);
    }
    std::free(data);
    return result;
}

template HRGN Transform<float>::operator*(HRGN const) const noexcept;
template HRGN Transform<double>::operator*(HRGN const) const noexcept;
template HRGN Transform<guarddouble>::operator*(HRGN const) const noexcept;

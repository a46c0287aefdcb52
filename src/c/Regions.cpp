// SPDX-License-Identifier: MIT
// Region mapping for the C interface: an array of rectangles in, an array of rectangles out. The
// rectangles become one region (their union) through the region layer, the region is mapped by
// Transform<T>::operator*(HRGN), and the result's rectangles are copied to a new array. No region
// outlives the call.
#include "Interface.h"

#include <quillon/detail/RegionRectangles.h>

#include <quillon/Region>

#include <cstdlib>
#include <cstring>

namespace quillon::c {
namespace {

// Releases a region when the call ends, on every path.
struct OwnedRegion {
    HRGN handle = nullptr;
    ~OwnedRegion()
    {
        if (handle) DeleteObject(handle);
    }
};

// The union of n rectangles, each normalised first (as CreateRectRgn does); empty ones add
// nothing. Null when the region cannot be made.
HRGN regionOf(const std::int32_t* ltrb, std::size_t n) noexcept
{
    // n <= QUILLON_MAX_RECTS: the size fits a DWORD with room to spare.
    const std::size_t size = sizeof(RGNDATAHEADER) + n * sizeof(RECT);
    auto* data = static_cast<RGNDATA*>(std::malloc(size));
    if (!data) return nullptr;
    RGNDATAHEADER header{};
    header.dwSize = sizeof(RGNDATAHEADER);
    header.iType = RDH_RECTANGLES;
    header.nCount = static_cast<DWORD>(n);
    header.nRgnSize = static_cast<DWORD>(n * sizeof(RECT));
    std::memcpy(data, &header, sizeof header);
    char* at = reinterpret_cast<char*>(data) + sizeof(RGNDATAHEADER);
    for (std::size_t i = 0; i < n; ++i) {
        const std::int32_t l = ltrb[4 * i], t = ltrb[4 * i + 1], r = ltrb[4 * i + 2], b = ltrb[4 * i + 3];
        const RECT rect{l < r ? l : r, t < b ? t : b, l < r ? r : l, t < b ? b : t};
        std::memcpy(at + i * sizeof(RECT), &rect, sizeof rect);
    }
    HRGN region = ExtCreateRegion(nullptr, static_cast<DWORD>(size), data);
    std::free(data);
    return region;
}

} // namespace

template <class T>
int mapRects(const Transform<T>& t, const std::int32_t* ltrb, std::size_t n, std::int32_t** out,
             std::size_t* outCount) noexcept
{
    if (out) *out = nullptr;
    if (outCount) *outCount = 0;
    if (!out || !outCount || (n > 0 && !ltrb)) return QUILLON_NULL_ARGUMENT;
    if (n > QUILLON_MAX_RECTS) return QUILLON_TOO_LARGE;
    if (n == 0) return QUILLON_OK;

    OwnedRegion source{regionOf(ltrb, n)};
    if (!source.handle) return QUILLON_OUT_OF_MEMORY;
    OwnedRegion image{t * source.handle};
    if (!image.handle) return QUILLON_OK; // nothing of the region is left: no rectangles

    const RegionRectangles read(image.handle);
    if (!read.ok()) return QUILLON_OUT_OF_MEMORY;
    const std::size_t count = read.size();
    if (count == 0) return QUILLON_OK;
    auto* rects = static_cast<std::int32_t*>(std::malloc(count * sizeof(RECT)));
    if (!rects) return QUILLON_OUT_OF_MEMORY;
    for (std::size_t i = 0; i < count; ++i) {
        const RECT r = read[i];
        rects[4 * i] = r.left;
        rects[4 * i + 1] = r.top;
        rects[4 * i + 2] = r.right;
        rects[4 * i + 3] = r.bottom;
    }
    *out = rects;
    *outCount = count;
    return QUILLON_OK;
}

template int mapRects(const Transform<float>&, const std::int32_t*, std::size_t, std::int32_t**, std::size_t*) noexcept;
template int mapRects(const Transform<double>&, const std::int32_t*, std::size_t, std::int32_t**, std::size_t*) noexcept;
template int mapRects(const Transform<guarddouble>&, const std::int32_t*, std::size_t, std::int32_t**, std::size_t*) noexcept;

} // namespace quillon::c

extern "C" void quillon_free_rects(int32_t* rects) { std::free(rects); }

// SPDX-License-Identifier: MIT
// Quillon regions: the platform's region handles and functions.
//
// On Windows this is the platform's own API. Everywhere else libquillon_region stands in its
// place with the same names, types and signatures, so that code which makes, combines, reads and
// deletes regions compiles on both and gets the same rectangles back:
//
//   HRGN r = CreateRectRgn(10, 20, 30, 40);
//   DWORD size = GetRegionData(r, 0, nullptr);        // bytes for header and rectangles
//   ...
//   DeleteObject(r);
//
// A region is a set of pixels, held as y-x banded rectangles; GetRegionData returns them in
// the platform's order. A handle is an opaque token: a null, deleted or made-up handle makes
// every function fail with its failure value, and any thread may use any handle.
#ifndef QUILLON_REGION
#define QUILLON_REGION

#if defined(_WIN32)
#  include <windows.h>
#else

#include <cstdint>

#if defined(QUILLON_BUILDING_REGION)
#  define QUILLON_REGION_API __attribute__((visibility("default")))
#else
#  define QUILLON_REGION_API
#endif

/// Integer types with the widths they have on Windows: DWORD and LONG are 32 bits there.
typedef int BOOL;
typedef int INT;
typedef unsigned int UINT;
typedef std::uint8_t BYTE;
typedef std::uint32_t DWORD;
typedef std::int32_t LONG;
typedef float FLOAT;
typedef void* HANDLE;
typedef void* HGDIOBJ;

struct HRGN__;
typedef HRGN__* HRGN;

/// A rectangle of pixels: left <= x < right, top <= y < bottom.
struct RECT {
    LONG left;   ///< first column
    LONG top;    ///< first row
    LONG right;  ///< one past the last column
    LONG bottom; ///< one past the last row
};
typedef RECT* PRECT;
typedef RECT* LPRECT;
typedef const RECT* LPCRECT;

/// A point in pixel coordinates, y downward.
struct POINT {
    LONG x; ///< column
    LONG y; ///< row
};
typedef POINT* PPOINT;
typedef POINT* LPPOINT;

/// The header of GetRegionData's result.
struct RGNDATAHEADER {
    DWORD dwSize;   ///< bytes from the start of the data to the first rectangle
    DWORD iType;    ///< RDH_RECTANGLES
    DWORD nCount;   ///< number of rectangles
    DWORD nRgnSize; ///< bytes of the rectangles
    RECT rcBound;   ///< the bounding box of the region
};
typedef RGNDATAHEADER* PRGNDATAHEADER;

/// A region's data as GetRegionData writes it: the header, then the rectangles.
struct RGNDATA {
    RGNDATAHEADER rdh; ///< the header
    char Buffer[1]; ///< the rectangles, nCount of them
};
typedef RGNDATA* PRGNDATA;
typedef RGNDATA* LPRGNDATA;

/// A 2D affine transform, as ExtCreateRegion takes it (here only a null one is accepted).
struct XFORM {
    FLOAT eM11; ///< x' = eM11 * x + eM21 * y + eDx
    FLOAT eM12; ///< y' = eM12 * x + eM22 * y + eDy
    FLOAT eM21; ///< see eM11
    FLOAT eM22; ///< see eM12
    FLOAT eDx;  ///< the move along x
    FLOAT eDy;  ///< the move along y
};

#ifndef FALSE
#  define FALSE 0
#endif
#ifndef TRUE
#  define TRUE 1
#endif

#define RDH_RECTANGLES 1

// Polygon fill modes.
#define ALTERNATE 1
#define WINDING 2

// CombineRgn modes.
#define RGN_AND 1
#define RGN_OR 2
#define RGN_XOR 3
#define RGN_DIFF 4
#define RGN_COPY 5

// Region kinds returned by CombineRgn, OffsetRgn and GetRgnBox.
#define ERROR 0
#define RGN_ERROR ERROR
#define NULLREGION 1
#define SIMPLEREGION 2
#define COMPLEXREGION 3

// GetGuiResources: the number of regions the process holds.
#define GR_GDIOBJECTS 0
#define GR_USEROBJECTS 1

extern "C" {

QUILLON_REGION_API HRGN CreateRectRgn(int left, int top, int right, int bottom);
QUILLON_REGION_API HRGN CreateRectRgnIndirect(const RECT* rect);
QUILLON_REGION_API BOOL SetRectRgn(HRGN region, int left, int top, int right, int bottom);
QUILLON_REGION_API HRGN CreatePolygonRgn(const POINT* points, int count, int mode);
QUILLON_REGION_API HRGN CreatePolyPolygonRgn(const POINT* points, const INT* counts, int polygons,
                                             int mode);
/// Only without a transform: a non-null xform fails.
QUILLON_REGION_API HRGN ExtCreateRegion(const XFORM* xform, DWORD size, const RGNDATA* data);
QUILLON_REGION_API int CombineRgn(HRGN destination, HRGN source1, HRGN source2, int mode);
QUILLON_REGION_API DWORD GetRegionData(HRGN region, DWORD size, LPRGNDATA data);
QUILLON_REGION_API int GetRgnBox(HRGN region, LPRECT rect);
QUILLON_REGION_API BOOL PtInRegion(HRGN region, int x, int y);
QUILLON_REGION_API BOOL RectInRegion(HRGN region, const RECT* rect);
QUILLON_REGION_API BOOL EqualRgn(HRGN region1, HRGN region2);
QUILLON_REGION_API int OffsetRgn(HRGN region, int x, int y);
QUILLON_REGION_API BOOL DeleteObject(HGDIOBJ object);

/// With GetCurrentProcess() and GR_GDIOBJECTS: how many regions are live, for leak checks.
QUILLON_REGION_API HANDLE GetCurrentProcess(void);
QUILLON_REGION_API DWORD GetGuiResources(HANDLE process, DWORD flags);

} // extern "C"

/// The rectangle class of the Windows application framework, as far as regions need it.
class CRect : public RECT {
public:
    CRect() noexcept : RECT{0, 0, 0, 0} {} ///< all four sides 0
    CRect(int l, int t, int r, int b) noexcept : RECT{l, t, r, b} {} ///< the sides as given, not normalised
    CRect(const RECT& other) noexcept : RECT(other) {} ///< a copy of a RECT
    CRect(LPCRECT other) noexcept : RECT(*other) {} ///< a copy of *other, which must not be null

    int Width() const noexcept { return right - left; }   ///< right - left, negative if they are swapped
    int Height() const noexcept { return bottom - top; }  ///< bottom - top, negative if they are swapped
    /// TRUE when it holds no pixel (a side swapped or width or height 0).
    BOOL IsRectEmpty() const noexcept { return left >= right || top >= bottom; }
    BOOL IsRectNull() const noexcept { return left == 0 && top == 0 && right == 0 && bottom == 0; } ///< TRUE when all sides are 0

    /// Swaps left with right and top with bottom where needed, so that left <= right and
    /// top <= bottom.
    void NormalizeRect() noexcept
    {
        if (left > right) {
            LONG t = left;
            left = right;
            right = t;
        }
        if (top > bottom) {
            LONG t = top;
            top = bottom;
            bottom = t;
        }
    }

    operator LPRECT() noexcept { return this; }            ///< this, for functions that take a RECT*
    operator LPCRECT() const noexcept { return this; }     ///< this, for functions that take a const RECT*
    /// TRUE when all four sides are equal (two empty rectangles may differ).
    BOOL operator==(const RECT& r) const noexcept
    {
        return left == r.left && top == r.top && right == r.right && bottom == r.bottom;
    }
    BOOL operator!=(const RECT& r) const noexcept { return !(*this == r); } ///< !(*this == r)
};

#undef QUILLON_REGION_API

#endif // _WIN32
#endif // QUILLON_REGION

// SPDX-License-Identifier: MIT
/* libquillon_region: regions and region handles where the platform has none. The functions of
 * the platform's region API, each a call into the region algebra (RegionAlgebra.h), the scan
 * conversion (ScanConversion.h) and the handle table (HandleTable.h).
 *
 * Handles are tokens of a slot index and a generation, looked up in one table guarded by a
 * reader-writer lock; a region lives in its slot until DeleteObject. No exception leaves a
 * function: each runs guarded, and a failure inside gives the function's failure value.
 */
#define QUILLON_BUILDING_REGION
#include <quillon/Region>

#include "HandleTable.h"
#include "RegionAlgebra.h"
#include "RegionUnion.h"
#include "ScanConversion.h"
#include "UnionOfPieces.h"
#include "WorkSteps.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <utility>
#include <vector>

static_assert(sizeof(RECT) == 16, "RECT is four 32-bit integers");
static_assert(sizeof(POINT) == 8, "POINT is two 32-bit integers");
static_assert(sizeof(RGNDATAHEADER) == 32, "RGNDATAHEADER is 32 bytes");
static_assert(offsetof(RGNDATA, Buffer) == 32, "the rectangles follow the header");

using namespace quillon::region_detail;

namespace {

bool boxTouches(const Box& b, const RECT& r) noexcept
{
    return b.x2 > r.left && b.x1 < r.right && b.y2 > r.top && b.y1 < r.bottom;
}

// ----- handles ---------------------------------------------------------------------------------

using Table = quillon::region_detail::HandleTable<Region>;

// Never destroyed: handles stay usable from threads that outlive static destruction.
Table& table()
{
    static Table* t = new Table;
    return *t;
}

HRGN publish(std::unique_ptr<Region> region, const char* operation)
{
    checkForm(*region, operation);
    return static_cast<HRGN>(table().insert(std::move(region)));
}

// Runs f and returns what it returns; an exception from anywhere inside gives the failure value
// instead, so that none leaves a region function.
template <class R, class F>
R guarded(R failure, F&& f) noexcept
{
    try {
        return f();
    } catch (...) {
        return failure;
    }
}

std::unique_ptr<Region> newRegion() { return std::unique_ptr<Region>(new (std::nothrow) Region); }

// Pieces of a union that could make no more rectangles than this are not measured beforehand.
constexpr std::int64_t kUnmeasured = 4096;

} // namespace

// ----- the functions -----------------------------------------------------------------------------

extern "C" {

HRGN CreateRectRgn(int left, int top, int right, int bottom)
{
    return guarded(HRGN(nullptr), [&]() -> HRGN {
        auto region = newRegion();
        if (!region) return nullptr;
        setRect(*region, normalized(left, top, right, bottom));
        return publish(std::move(region), "CreateRectRgn");
    });
}

HRGN CreateRectRgnIndirect(const RECT* rect)
{
    if (!rect) return nullptr;
    return CreateRectRgn(rect->left, rect->top, rect->right, rect->bottom);
}

BOOL SetRectRgn(HRGN handle, int left, int top, int right, int bottom)
{
    return guarded(static_cast<BOOL>(FALSE), [&]() -> BOOL {
        return table().write(handle, [&](Region& r) {
            setRect(r, normalized(left, top, right, bottom));
            checkForm(r, "SetRectRgn");
            return true;
        });
    });
}

HRGN CreatePolyPolygonRgn(const POINT* points, const INT* counts, int polygons, int mode)
{
    return guarded(HRGN(nullptr), [&]() -> HRGN {
        auto region = newRegion();
        if (!region) return nullptr;
        if (!makePolygons(points, counts, polygons, mode, *region)) return nullptr;
        return publish(std::move(region), "CreatePolyPolygonRgn");
    });
}

HRGN CreatePolygonRgn(const POINT* points, int count, int mode)
{
    return CreatePolyPolygonRgn(points, &count, 1, mode);
}

HRGN ExtCreateRegion(const XFORM* xform, DWORD size, const RGNDATA* data)
{
    return guarded(HRGN(nullptr), [&]() -> HRGN {
        // The header and the nCount rectangles after it must lie inside the size bytes given;
        // nothing past them is read.
        if (xform || !data || size < sizeof(RGNDATAHEADER)) return nullptr;
        if (data->rdh.dwSize < sizeof(RGNDATAHEADER)) return nullptr;
        const DWORD n = data->rdh.nCount;
        if (n > kMaxRects || sizeof(RGNDATAHEADER) + std::uint64_t(n) * sizeof(RECT) > size)
            return nullptr;
        auto region = newRegion();
        if (!region) return nullptr;
        std::vector<Box> boxes;
        boxes.reserve(n);
        const char* at = reinterpret_cast<const char*>(data) + sizeof(RGNDATAHEADER);
        for (DWORD i = 0; i < n; ++i) {
            RECT r;
            std::memcpy(&r, at + std::size_t(i) * sizeof(RECT), sizeof r);
            if (r.left < r.right && r.top < r.bottom)
                boxes.push_back(Box{r.left, r.top, r.right, r.bottom});
        }
        if (!boxes.empty()) {
            pixman_region32_fini(region->get());
            if (!pixman_region32_init_rects(region->get(), boxes.data(),
                                            static_cast<int>(boxes.size()))) {
                pixman_region32_init(region->get());
                return nullptr;
            }
            if (static_cast<std::size_t>(region->count()) > kMaxRects) return nullptr;
        }
        return publish(std::move(region), "ExtCreateRegion");
    });
}

int CombineRgn(HRGN destination, HRGN source1, HRGN source2, int mode)
{
    return guarded(static_cast<int>(ERROR), [&]() -> int {
        if (mode < RGN_AND || mode > RGN_COPY) return ERROR;
        int kind = ERROR;
        table().writeWith(destination, source1, source2, mode != RGN_COPY,
                          [&](Region& d, const Region& a, const Region& b) {
                              if (!combine(d, a, b, mode)) return false;
                              checkForm(d, "CombineRgn");
                              kind = d.kind();
                              return true;
                          });
        return kind;
    });
}

int OffsetRgn(HRGN handle, int x, int y)
{
    return guarded(static_cast<int>(ERROR), [&]() -> int {
        int kind = ERROR;
        table().write(handle, [&](Region& r) {
            if (!offset(r, x, y)) return false;
            checkForm(r, "OffsetRgn");
            kind = r.kind();
            return true;
        });
        return kind;
    });
}

DWORD GetRegionData(HRGN handle, DWORD size, LPRGNDATA data)
{
    return guarded(static_cast<DWORD>(0), [&]() -> DWORD {
        DWORD result = 0;
        table().read(handle, [&](const Region& r) {
            int n = 0;
            const Box* boxes = r.boxes(n);
            const std::uint64_t need = sizeof(RGNDATAHEADER) + std::uint64_t(n) * sizeof(RECT);
            if (need > std::numeric_limits<DWORD>::max()) return;
            if (!data) {
                result = static_cast<DWORD>(need);
                return;
            }
            if (size < need) return;
            const Box bound = r.bound();
            data->rdh.dwSize = sizeof(RGNDATAHEADER);
            data->rdh.iType = RDH_RECTANGLES;
            data->rdh.nCount = static_cast<DWORD>(n);
            data->rdh.nRgnSize = static_cast<DWORD>(n * sizeof(RECT));
            data->rdh.rcBound = RECT{bound.x1, bound.y1, bound.x2, bound.y2};
            char* at = reinterpret_cast<char*>(data) + sizeof(RGNDATAHEADER);
            for (int i = 0; i < n; ++i) {
                const RECT rc{boxes[i].x1, boxes[i].y1, boxes[i].x2, boxes[i].y2};
                std::memcpy(at + i * sizeof(RECT), &rc, sizeof rc);
            }
            result = static_cast<DWORD>(need);
        });
        return result;
    });
}

int GetRgnBox(HRGN handle, LPRECT rect)
{
    return guarded(static_cast<int>(ERROR), [&]() -> int {
        if (!rect) return ERROR;
        int kind = ERROR;
        table().read(handle, [&](const Region& r) {
            const Box b = r.bound();
            *rect = RECT{b.x1, b.y1, b.x2, b.y2};
            kind = r.kind();
        });
        return kind;
    });
}

BOOL PtInRegion(HRGN handle, int x, int y)
{
    return guarded(static_cast<BOOL>(FALSE), [&]() -> BOOL {
        BOOL in = FALSE;
        table().read(handle, [&](const Region& r) {
            int n = 0;
            const Box* b = r.boxes(n);
            const Box e = r.bound();
            if (n == 0 || x < e.x1 || x >= e.x2 || y < e.y1 || y >= e.y2) return;
            for (int i = 0; i < n && !in; ++i)
                in = x >= b[i].x1 && x < b[i].x2 && y >= b[i].y1 && y < b[i].y2;
        });
        return in;
    });
}

BOOL RectInRegion(HRGN handle, const RECT* rect)
{
    return guarded(static_cast<BOOL>(FALSE), [&]() -> BOOL {
        if (!rect) return FALSE;
        const Box nb = normalized(rect->left, rect->top, rect->right, rect->bottom);
        const RECT rc{nb.x1, nb.y1, nb.x2, nb.y2};
        BOOL in = FALSE;
        table().read(handle, [&](const Region& r) {
            int n = 0;
            const Box* b = r.boxes(n);
            if (n == 0 || !boxTouches(r.bound(), rc)) return;
            // As on the platform: the rectangle's top left pixel counts, so an empty rectangle
            // whose corner lies in the region is in it.
            for (int i = 0; i < n && !in; ++i)
                in = boxTouches(b[i], rc) || (rc.left >= b[i].x1 && rc.left < b[i].x2 &&
                                              rc.top >= b[i].y1 && rc.top < b[i].y2);
        });
        return in;
    });
}

BOOL EqualRgn(HRGN region1, HRGN region2)
{
    return guarded(static_cast<BOOL>(FALSE), [&]() -> BOOL {
        BOOL equal = FALSE;
        table().readTwo(region1, region2, [&](const Region& a, const Region& b) {
            int na = 0, nb = 0;
            const Box* ba = a.boxes(na);
            const Box* bb = b.boxes(nb);
            if (na != nb) return;
            const Box ea = a.bound(), eb = b.bound();
            if (ea.x1 != eb.x1 || ea.y1 != eb.y1 || ea.x2 != eb.x2 || ea.y2 != eb.y2) return;
            for (int i = 0; i < na; ++i)
                if (ba[i].x1 != bb[i].x1 || ba[i].y1 != bb[i].y1 || ba[i].x2 != bb[i].x2 ||
                    ba[i].y2 != bb[i].y2)
                    return;
            equal = TRUE;
        });
        return equal;
    });
}

BOOL DeleteObject(HGDIOBJ object)
{
    return guarded(static_cast<BOOL>(FALSE), [&]() -> BOOL {
        return table().erase(static_cast<HRGN>(object)) ? TRUE : FALSE;
    });
}

HANDLE GetCurrentProcess(void)
{
    return reinterpret_cast<HANDLE>(std::intptr_t(-1));
}

DWORD GetGuiResources(HANDLE process, DWORD flags)
{
    return guarded(static_cast<DWORD>(0), [&]() -> DWORD {
        if (process != GetCurrentProcess() || flags != GR_GDIOBJECTS) return 0;
        return static_cast<DWORD>(table().live());
    });
}
unsigned long long quillon_region_steps(void)
{
    return stepsTaken;
}

HRGN quillon_region_union_polygons(HRGN base, const POINT* points, const INT* counts, int polygons,
                                   int mode)
{
    return guarded(HRGN(nullptr), [&]() -> HRGN {
        if (polygons < 0 || (polygons > 0 && (!points || !counts))) return nullptr;
        auto result = newRegion();
        if (!result) return nullptr;
        bool made = false;
        if (base) {
            const bool read = table().read(base, [&](const Region& r) { made = result->copyFrom(r); });
            if (!read || !made) return nullptr;
        }
        // One budget for the call: the pieces together make at most kMaxRects rectangles. Each
        // piece's bound from its edges is set aside first, so that pieces that must pass the budget
        // together fail the call before any is made, and a piece is made with what the others leave.
        std::vector<std::int64_t> bounds(static_cast<std::size_t>(polygons));
        std::int64_t reserved = 0;
        const POINT* p = points;
        for (int i = 0; i < polygons; ++i) {
            if (counts[i] < 0) return nullptr;
            bounds[i] = polygonBound(p, counts[i], mode, kUnmeasured);
            reserved += bounds[i];
            if (reserved > std::int64_t(kMaxRects)) return nullptr;
            p += counts[i];
        }
        // The pieces' rectangles go one after another into one array, made with one scratch space:
        // nothing is allocated per piece once these have grown.
        const ScanScratchPtr scratch = newScanScratch();
        if (!scratch) return nullptr;
        std::vector<Box> boxes;
        std::vector<BoxRun> parts;
        std::vector<std::size_t> starts; // where each piece made begins in boxes
        boxes.reserve(std::min<std::size_t>(8 * static_cast<std::size_t>(polygons), kMaxRects)); // a few bands a piece
        starts.reserve(static_cast<std::size_t>(polygons));
        p = points;
        for (int i = 0; i < polygons; ++i) {
            reserved -= bounds[i];
            const std::size_t start = boxes.size();
            const std::size_t limit = kMaxRects - start - static_cast<std::size_t>(reserved);
            switch (appendPolygon(p, counts[i], mode, *scratch, boxes, limit)) {
            case Piece::made: starts.push_back(start); break;
            case Piece::failed: break; // left out, as the platform leaves out a piece it cannot make
            case Piece::tooMany: return nullptr;
            }
            p += counts[i];
        }
        if (starts.empty()) return made ? publish(std::move(result), "quillon_region_union_polygons") : nullptr;
        parts.reserve(starts.size() + 1);
        if (made) {
            int n = 0;
            const Box* first = result->boxes(n);
            parts.push_back(BoxRun{first, n});
        }
        for (std::size_t k = 0; k < starts.size(); ++k) {
            const std::size_t end = k + 1 < starts.size() ? starts[k + 1] : boxes.size();
            parts.push_back(BoxRun{boxes.data() + starts[k], static_cast<int>(end - starts[k])});
        }
        Region joined;
        if (!unionAll(parts, joined)) return nullptr;
        result->swap(joined);
        return publish(std::move(result), "quillon_region_union_polygons");
    });
}

} // extern "C"

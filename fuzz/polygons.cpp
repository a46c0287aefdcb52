// SPDX-License-Identifier: MIT
// CreatePolygonRgn and CreatePolyPolygonRgn with arbitrary points, counts (negative ones too) and
// fill modes. Counts never claim more points than are given: that would be the caller's fault.
// Nothing is left out for the size of its result: a polygon past the rectangle limit must fail at
// once, and one under it costs its rectangles.
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider in(bytes, size);
    const DWORD before = liveRegions();
    const int mode = in.ConsumeIntegralInRange<int>(0, 3);
    const bool one = in.ConsumeBool();
    const int polygons = in.ConsumeIntegralInRange<int>(-1, 12);
    std::vector<INT> counts;
    for (int i = 0; i < polygons; ++i) counts.push_back(in.ConsumeIntegralInRange<INT>(-2, 16));
    std::vector<POINT> points;
    // Small coordinates reach the shapes; large ones the limits: x anywhere, and y within 4096
    // rows of anywhere, at the heights where the rules change (2^27 rows, 32-bit wrap-around), or
    // anywhere below 2^27 rows.
    const int scale = in.ConsumeIntegralInRange<int>(0, 2);
    const LONG base = in.ConsumeIntegral<LONG>();
    const std::int64_t heights[] = {0, 1, 4095, (1 << 27) - 1, 1 << 27, 0x80000000LL, 0xFFFFFFFFLL};
    while (in.remaining_bytes() >= 2) {
        if (scale == 0) {
            points.push_back(POINT{in.ConsumeIntegralInRange<LONG>(-40, 40), in.ConsumeIntegralInRange<LONG>(-40, 40)});
        } else if (scale == 1) {
            const LONG x = in.ConsumeIntegral<LONG>();
            points.push_back(POINT{x, static_cast<LONG>(std::uint32_t(base) + in.ConsumeIntegralInRange<std::uint32_t>(0, 4095))});
        } else {
            // Tall ones: slivers a few pixels wide, or anything across their rows.
            const std::int64_t h = heights[in.ConsumeIntegralInRange<int>(0, 6)];
            const std::uint32_t across = in.ConsumeBool() ? in.ConsumeIntegralInRange<std::uint32_t>(0, 3)
                                                          : in.ConsumeIntegral<std::uint32_t>();
            const std::uint32_t down = in.ConsumeBool() ? std::uint32_t(h) : in.ConsumeIntegralInRange<std::uint32_t>(0, (1u << 27) - 1);
            points.push_back(POINT{static_cast<LONG>(std::uint32_t(base) + across), static_cast<LONG>(std::uint32_t(base) + down)});
        }
    }
    std::int64_t claimed = 0;
    for (INT c : counts) claimed += c > 0 ? c : 0;
    HRGN h = nullptr;
    if (one) {
        h = CreatePolygonRgn(points.empty() ? nullptr : points.data(), static_cast<int>(points.size()), mode);
    } else if (claimed <= static_cast<std::int64_t>(points.size())) {
        h = CreatePolyPolygonRgn(points.empty() ? nullptr : points.data(),
                                 counts.empty() ? nullptr : counts.data(), polygons, mode);
    }
    readBack(h);
    if (h) {
        HRGN copy = CreateRectRgn(0, 0, 0, 0);
        CombineRgn(copy, h, nullptr, RGN_COPY);
        if (!EqualRgn(copy, h)) std::abort();
        DeleteObject(copy);
        DeleteObject(h);
    }
    if (liveRegions() != before) std::abort();
    return 0;
}

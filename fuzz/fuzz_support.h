// SPDX-License-Identifier: MIT
// Shared by the fuzz targets: regions read back and checked against what their data says.
#pragma once

#include <quillon/Region>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

// The rectangles of the regions read back or counted since the count was last cleared: what an
// input made, which a slow input's time is held against (fuzz/replay.sh).
inline std::uint64_t& rectanglesRead()
{
    static std::uint64_t count = 0;
    return count;
}

// Reads a region back and checks what any reader relies on: the sizes agree, a buffer one byte
// short is refused, and every rectangle is inside the bounding box. Aborts otherwise.
inline void readBack(HRGN h)
{
    if (!h) return;
    const DWORD size = GetRegionData(h, 0, nullptr);
    if (size < sizeof(RGNDATAHEADER)) std::abort();
    std::vector<std::uint32_t> store(size / 4 + 1, 0);
    auto* data = reinterpret_cast<RGNDATA*>(store.data());
    if (GetRegionData(h, size - 1, data) != 0) std::abort();
    if (GetRegionData(h, size, data) != size) std::abort();
    if (data->rdh.nCount * 16u + 32u != size) std::abort();
    rectanglesRead() += data->rdh.nCount;
    RECT box;
    const int kind = GetRgnBox(h, &box);
    if (kind == ERROR || (kind == NULLREGION) != (data->rdh.nCount == 0)) std::abort();
    if (std::memcmp(&box, &data->rdh.rcBound, sizeof box) != 0) std::abort();
}

inline DWORD liveRegions() { return GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS); }

// Counts a region's rectangles among those made, without reading them.
inline void countMade(HRGN h)
{
    const DWORD size = GetRegionData(h, 0, nullptr);
    if (size >= sizeof(RGNDATAHEADER)) rectanglesRead() += (size - sizeof(RGNDATAHEADER)) / sizeof(RECT);
}

// SPDX-License-Identifier: MIT
// Region mapping with arbitrary matrices (any bits: NaNs, infinities, huge stretches) over small
// arbitrary regions: never a crash, never a region left behind, the argument never changed.
#include "fuzz_support.h"

#include <quillon/Transform>

namespace {

template <class T>
void mapWith(FuzzedDataProvider& in, HRGN region)
{
    T e[16];
    for (T& x : e) {
        if (in.ConsumeBool()) {
            const std::uint64_t b = in.ConsumeIntegral<std::uint64_t>();
            double d;
            std::memcpy(&d, &b, 8);
            x = T(d);
        } else {
            x = T(in.ConsumeFloatingPointInRange<double>(-64.0, 64.0));
        }
    }
    const Transform<T> t(e);
    HRGN mapped = t * region;
    readBack(mapped);
    if (mapped) DeleteObject(mapped);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider in(bytes, size);
    const DWORD before = liveRegions();
    const int type = in.ConsumeIntegralInRange<int>(0, 2);
    HRGN region = CreateRectRgn(0, 0, 0, 0);
    const int rects = in.ConsumeIntegralInRange<int>(0, 12);
    for (int i = 0; i < rects; ++i) {
        const int l = in.ConsumeIntegralInRange<int>(-300, 300), t = in.ConsumeIntegralInRange<int>(-300, 300);
        HRGN r = CreateRectRgn(l, t, l + in.ConsumeIntegralInRange<int>(0, 60), t + in.ConsumeIntegralInRange<int>(0, 60));
        CombineRgn(region, region, r, RGN_OR);
        DeleteObject(r);
    }
    const DWORD n = GetRegionData(region, 0, nullptr);
    std::vector<std::uint32_t> was(n / 4 + 1), now(n / 4 + 1);
    GetRegionData(region, n, reinterpret_cast<RGNDATA*>(was.data()));
    switch (type) {
    case 0: mapWith<float>(in, region); break;
    case 1: mapWith<double>(in, region); break;
    default: mapWith<guarddouble>(in, region); break;
    }
    GetRegionData(region, n, reinterpret_cast<RGNDATA*>(now.data()));
    if (was != now) std::abort();
    DeleteObject(region);
    if (liveRegions() != before) std::abort();
    return 0;
}

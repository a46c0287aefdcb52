// SPDX-License-Identifier: MIT
// Arbitrary sequences of region calls on four slots: makes, combines with any slots as
// destination and sources (the same one included), offsets, reads, deletes, and calls on deleted
// and made-up handles. At the end every live region is deleted and none may be left. Nothing is
// left out for the size of its result: a call past the rectangle limit must fail at once, and one
// under it costs its operands and its result.
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider in(bytes, size);
    const DWORD before = liveRegions();
    HRGN slot[4] = {nullptr, nullptr, nullptr, nullptr};
    bool live[4] = {false, false, false, false};
    auto pick = [&] { return in.ConsumeIntegralInRange<int>(0, 3); };
    auto coord = [&] { return in.ConsumeBool() ? in.ConsumeIntegralInRange<int>(-50, 50) : in.ConsumeIntegral<int>(); };
    auto handle = [&]() -> HRGN {
        switch (in.ConsumeIntegralInRange<int>(0, 7)) {
        case 0: return nullptr;
        case 1: return reinterpret_cast<HRGN>(in.ConsumeIntegral<std::uintptr_t>());
        default: return slot[pick()];
        }
    };
    auto put = [&](int s, HRGN h) {
        countMade(h);
        if (live[s]) DeleteObject(slot[s]);
        slot[s] = h;
        live[s] = h != nullptr;
    };
    for (int step = 0; step < 64 && in.remaining_bytes() > 0; ++step) {
        switch (in.ConsumeIntegralInRange<int>(0, 12)) {
        case 0: {
            const int s = pick();
            const int l = coord(), t = coord(), r = coord(), b = coord();
            put(s, CreateRectRgn(l, t, r, b));
            break;
        }
        case 1: {
            const int s = pick();
            POINT p[6];
            const int n = in.ConsumeIntegralInRange<int>(0, 6);
            for (int i = 0; i < n; ++i) p[i] = POINT{coord(), coord()};
            put(s, CreatePolygonRgn(p, n, in.ConsumeIntegralInRange<int>(1, 2)));
            break;
        }
        case 2: {
            HRGN d = handle(), a = handle(), b = handle();
            const int mode = in.ConsumeIntegralInRange<int>(0, 6);
            CombineRgn(d, a, b, mode);
            countMade(d);
            break;
        }
        case 3: {
            HRGN h = handle();
            const int dx = coord(), dy = coord();
            OffsetRgn(h, dx, dy);
            countMade(h);
            break;
        }
        case 4: {
            const int s = pick();
            if (live[s]) readBack(slot[s]);
            break;
        }
        case 5: { // delete, keeping the stale handle in the slot
            const int s = pick();
            const BOOL deleted = DeleteObject(slot[s]);
            if (deleted != (live[s] ? TRUE : FALSE)) std::abort();
            live[s] = false;
            break;
        }
        case 6: {
            HRGN h = handle();
            const int l = coord(), t = coord(), r = coord(), b = coord();
            SetRectRgn(h, l, t, r, b);
            break;
        }
        case 7: {
            HRGN h = handle();
            const int x = coord(), y = coord();
            PtInRegion(h, x, y);
            RECT r{coord(), coord(), coord(), coord()};
            RectInRegion(h, &r);
            break;
        }
        case 8: {
            HRGN a = handle(), b = handle();
            EqualRgn(a, b);
            break;
        }
        case 9: { // a region rebuilt from another's data
            const int from = pick(), to = pick();
            if (!live[from]) break;
            const DWORD n = GetRegionData(slot[from], 0, nullptr);
            std::vector<std::uint32_t> store(n / 4 + 1);
            if (GetRegionData(slot[from], n, reinterpret_cast<RGNDATA*>(store.data())) != n) std::abort();
            HRGN copy = ExtCreateRegion(nullptr, n, reinterpret_cast<const RGNDATA*>(store.data()));
            if (!copy) std::abort();
            put(to, copy);
            break;
        }
        case 10: {
            HRGN h = handle();
            RECT box;
            GetRgnBox(h, &box);
            GetRegionData(h, in.ConsumeIntegral<DWORD>() & 255, nullptr);
            break;
        }
        case 11: {
            const int s = pick();
            put(s, nullptr);
            break;
        }
        default: {
            const int s = pick();
            HRGN h = CreateRectRgn(0, 0, 0, 0);
            HRGN a = slot[pick()], b = slot[pick()];
            CombineRgn(h, a, b, RGN_XOR);
            put(s, h);
            break;
        }
        }
    }
    for (int s = 0; s < 4; ++s) put(s, nullptr);
    if (liveRegions() != before) std::abort();
    return 0;
}

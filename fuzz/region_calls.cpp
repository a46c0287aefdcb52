// SPDX-License-Identifier: MIT
// Arbitrary sequences of region calls on four slots: makes, combines with any slots as
// destination and sources (the same one included), offsets, reads, deletes, and calls on deleted
// and made-up handles. At the end every live region is deleted and none may be left.
#include "fuzz_support.h"

#include <algorithm>

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
        if (live[s]) DeleteObject(slot[s]);
        slot[s] = h;
        live[s] = h != nullptr;
    };
    // Every call costs in proportion to its operands and its result, but 64 steps that each double
    // a region (a region joined with itself moved) make millions of rectangles that are slow only
    // for their number. A region past 2^16 rectangles is let go after the step that made it.
    auto large = [&](int s) { return live[s] && GetRegionData(slot[s], 0, nullptr) > 32 + 16 * 65536; };
    // And one combine of regions of thousands of bands can make millions: each stretch between the
    // operands' band edges holds at most the rectangles of both bands there. A combine whose bound
    // passes 2^18 is left out.
    auto shape = [](HRGN h, std::int64_t& bands, std::int64_t& widest) {
        bands = widest = 0;
        const DWORD n = GetRegionData(h, 0, nullptr);
        if (n < 32) return;
        std::vector<std::uint32_t> store(n / 4 + 1);
        if (GetRegionData(h, n, reinterpret_cast<RGNDATA*>(store.data())) != n) return;
        const auto* r = reinterpret_cast<const RECT*>(store.data() + 8);
        for (std::uint32_t i = 0, start = 0; i < store[2]; ++i) {
            if (i > 0 && r[i].top != r[i - 1].top) start = i;
            if (start == i) ++bands;
            widest = std::max<std::int64_t>(widest, i - start + 1);
        }
    };
    auto smallResult = [&](HRGN a, HRGN b) {
        std::int64_t ba, wa, bb, wb;
        shape(a, ba, wa);
        shape(b, bb, wb);
        return (ba + bb) * (wa + wb) <= (std::int64_t(1) << 18);
    };
    for (int step = 0; step < 64 && in.remaining_bytes() > 0; ++step) {
        for (int s = 0; s < 4; ++s)
            if (large(s)) put(s, nullptr);
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
            // Rows kept few: a polygon of millions of distinct rows is a result that size.
            for (int i = 0; i < n; ++i) p[i] = POINT{coord(), in.ConsumeIntegralInRange<int>(-50, 50)};
            put(s, CreatePolygonRgn(p, n, in.ConsumeIntegralInRange<int>(1, 2)));
            break;
        }
        case 2: {
            HRGN d = handle(), a = handle(), b = handle();
            const int mode = in.ConsumeIntegralInRange<int>(0, 6);
            if (smallResult(a, b)) CombineRgn(d, a, b, mode);
            break;
        }
        case 3: {
            HRGN h = handle();
            const int dx = coord(), dy = coord();
            OffsetRgn(h, dx, dy);
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
            if (smallResult(a, b)) CombineRgn(h, a, b, RGN_XOR);
            put(s, h);
            break;
        }
        }
    }
    for (int s = 0; s < 4; ++s) put(s, nullptr);
    if (liveRegions() != before) std::abort();
    return 0;
}

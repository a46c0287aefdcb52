// SPDX-License-Identifier: MIT
// The region layer's own promises, beyond the platform's results that the corpus checks: handles
// that cannot be abused, no region left behind, many threads at once, and the CRect helper.
#include <quillon/Region>

#if !defined(_WIN32) // on Windows these are the platform's own functions

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

bool operator==(const RECT& a, const RECT& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

namespace {

DWORD liveRegions() { return GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS); }

std::vector<RECT> rectsOf(HRGN h)
{
    const DWORD size = GetRegionData(h, 0, nullptr);
    std::vector<std::uint64_t> store(size / 8 + 1);
    auto* data = reinterpret_cast<RGNDATA*>(store.data());
    if (size == 0 || GetRegionData(h, size, data) != size) return {};
    const auto* first = reinterpret_cast<const RECT*>(data->Buffer);
    return {first, first + data->rdh.nCount};
}

// Every function given a handle that names no region fails with its failure value, and the
// region passed beside it is left as it was.
void expectRejected(HRGN bad, const char* what)
{
    SCOPED_TRACE(what);
    HRGN good = CreateRectRgn(0, 0, 10, 10);
    ASSERT_NE(good, nullptr);
    std::vector<std::uint64_t> store(8, 0);
    auto* data = reinterpret_cast<RGNDATA*>(store.data());
    EXPECT_EQ(GetRegionData(bad, 0, nullptr), 0u);
    EXPECT_EQ(GetRegionData(bad, 64, data), 0u);
    RECT box{-7, -7, -7, -7};
    EXPECT_EQ(GetRgnBox(bad, &box), ERROR);
    EXPECT_EQ(box.left, -7);
    EXPECT_EQ(PtInRegion(bad, 1, 1), FALSE);
    RECT probe{0, 0, 5, 5};
    EXPECT_EQ(RectInRegion(bad, &probe), FALSE);
    EXPECT_EQ(EqualRgn(bad, good), FALSE);
    EXPECT_EQ(EqualRgn(good, bad), FALSE);
    EXPECT_EQ(EqualRgn(bad, bad), FALSE);
    EXPECT_EQ(OffsetRgn(bad, 1, 1), ERROR);
    EXPECT_EQ(SetRectRgn(bad, 1, 1, 2, 2), FALSE);
    EXPECT_EQ(CombineRgn(bad, good, good, RGN_OR), ERROR);
    EXPECT_EQ(CombineRgn(good, bad, good, RGN_OR), ERROR);
    EXPECT_EQ(CombineRgn(good, good, bad, RGN_AND), ERROR);
    EXPECT_EQ(CombineRgn(good, bad, nullptr, RGN_COPY), ERROR);
    EXPECT_EQ(DeleteObject(bad), FALSE);
    EXPECT_EQ(rectsOf(good), (std::vector<RECT>{RECT{0, 0, 10, 10}}));
    EXPECT_EQ(DeleteObject(good), TRUE);
}

TEST(RegionHandles, NullDeletedAndMadeUpHandlesAreRejected)
{
    const DWORD before = liveRegions();
    expectRejected(nullptr, "null");

    HRGN deleted = CreateRectRgn(1, 2, 3, 4);
    ASSERT_NE(deleted, nullptr);
    EXPECT_EQ(DeleteObject(deleted), TRUE);
    EXPECT_EQ(DeleteObject(deleted), FALSE) << "a second delete";
    expectRejected(deleted, "deleted");

    // Its slot is taken again, by a region that the old handle must not reach.
    HRGN successor = CreateRectRgn(5, 5, 6, 6);
    ASSERT_NE(successor, nullptr);
    EXPECT_NE(successor, deleted);
    expectRejected(deleted, "deleted, slot reused");
    EXPECT_EQ(PtInRegion(successor, 5, 5), TRUE);

    const auto token = reinterpret_cast<std::uintptr_t>(successor);
    const std::uintptr_t madeUp[] = {1, 2, 0x1000, 0xFFFFFFFFu, ~std::uintptr_t(0),
                                     token + 1, token - 1, token ^ (std::uintptr_t(1) << 20),
                                     token ^ (std::uintptr_t(1) << (sizeof(token) * 8 - 1)),
                                     reinterpret_cast<std::uintptr_t>(&token)};
    for (std::uintptr_t v : madeUp) expectRejected(reinterpret_cast<HRGN>(v), "made up");

    EXPECT_EQ(PtInRegion(successor, 5, 5), TRUE) << "misuse must not touch a live region";
    EXPECT_EQ(DeleteObject(successor), TRUE);
    EXPECT_EQ(liveRegions(), before);
}

TEST(RegionHandles, NullPointersAndBadArgumentsFailCleanly)
{
    const DWORD before = liveRegions();
    HRGN r = CreateRectRgn(0, 0, 4, 4);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(CreateRectRgnIndirect(nullptr), nullptr);
    EXPECT_EQ(GetRgnBox(r, nullptr), ERROR);
    EXPECT_EQ(RectInRegion(r, nullptr), FALSE);
    EXPECT_EQ(CreatePolygonRgn(nullptr, 3, ALTERNATE), nullptr);
    const POINT tri[3] = {{0, 0}, {4, 0}, {0, 4}};
    const INT counts[2] = {3, -1};
    EXPECT_EQ(CreatePolyPolygonRgn(tri, nullptr, 1, WINDING), nullptr);
    EXPECT_EQ(CreatePolyPolygonRgn(tri, counts, 2, WINDING), nullptr);
    EXPECT_EQ(ExtCreateRegion(nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(CombineRgn(r, r, r, 0), ERROR);
    EXPECT_EQ(CombineRgn(r, r, r, 6), ERROR);

    // A transform is not supported: the data alone makes the region.
    std::vector<std::uint64_t> store(8, 0);
    auto* data = reinterpret_cast<RGNDATA*>(store.data());
    ASSERT_EQ(GetRegionData(r, 48, data), 48u);
    const XFORM identity{1, 0, 0, 1, 0, 0};
    EXPECT_EQ(ExtCreateRegion(&identity, 48, data), nullptr);
    HRGN copy = ExtCreateRegion(nullptr, 48, data);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(EqualRgn(copy, r), TRUE);

    EXPECT_EQ(DeleteObject(copy), TRUE);
    EXPECT_EQ(DeleteObject(r), TRUE);
    EXPECT_EQ(liveRegions(), before);
}

TEST(RegionHandles, EveryRegionLivesUntilDeleted)
{
    const DWORD before = liveRegions();
    const POINT star[5] = {{10, 0}, {16, 20}, {0, 8}, {20, 8}, {4, 20}};
    std::vector<HRGN> made;
    for (int i = 0; i < 50; ++i) {
        made.push_back(CreatePolygonRgn(star, 5, i % 2 ? WINDING : ALTERNATE));
        made.push_back(CreateRectRgn(i, i, i + 3, i + 3));
    }
    EXPECT_EQ(liveRegions(), before + 100);
    for (std::size_t i = 0; i < made.size(); ++i) {
        RECT box{0, 0, 0, 0};
        EXPECT_EQ(GetRgnBox(made[i], &box), i % 2 ? SIMPLEREGION : COMPLEXREGION);
        EXPECT_EQ(box.right, i % 2 ? LONG(i / 2 + 3) : 20);
    }
    for (HRGN h : made) EXPECT_EQ(DeleteObject(h), TRUE);
    EXPECT_EQ(liveRegions(), before);
    EXPECT_EQ(GetGuiResources(nullptr, GR_GDIOBJECTS), 0u) << "another process";
}

// Threads make, combine, offset, read and delete their own regions, read one shared region,
// and delete each other's: every result must be the one a single thread gets.
TEST(RegionHandles, ManyThreadsAtOnce)
{
    const DWORD before = liveRegions();
    const POINT star[5] = {{10, 0}, {16, 20}, {0, 8}, {20, 8}, {4, 20}};
    HRGN shared = CreatePolygonRgn(star, 5, WINDING);
    ASSERT_NE(shared, nullptr);
    const std::vector<RECT> sharedRects = rectsOf(shared);
    ASSERT_GT(sharedRects.size(), 10u);

    // What one thread's round gives when nothing else runs.
    auto round = [&](int i, HRGN& handed) {
        HRGN a = CreateRectRgn(i % 7, 0, i % 7 + 12, 9);
        HRGN b = CreatePolygonRgn(star, 5, ALTERNATE);
        int kind = CombineRgn(a, a, b, RGN_XOR);
        kind = kind * 10 + CombineRgn(b, b, shared, RGN_AND);
        kind = kind * 10 + OffsetRgn(a, 3, -2);
        std::vector<RECT> rects = rectsOf(a);
        rects.push_back(RECT{kind, PtInRegion(shared, 10, 5), EqualRgn(b, shared), 0});
        DeleteObject(b);
        handed = a; // someone else deletes it
        return rects;
    };
    std::vector<std::vector<RECT>> expected(7);
    for (int i = 0; i < 7; ++i) {
        HRGN h = nullptr;
        expected[i] = round(i, h);
        DeleteObject(h);
    }

    constexpr int kThreads = 4, kRounds = 10000;
    std::atomic<int> wrong{0}, staleAccepted{0};
    std::vector<std::atomic<HRGN>> mailbox(kThreads); // all null
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kRounds; ++i) {
                HRGN handed = nullptr;
                if (round(i, handed) != expected[i % 7]) ++wrong;
                if (rectsOf(shared) != sharedRects) ++wrong;
                // Pass the region on to the next thread, and delete what the previous left.
                HRGN old = mailbox[(t + 1) % kThreads].exchange(handed);
                if (old) {
                    if (DeleteObject(old) != TRUE) ++wrong;
                    if (DeleteObject(old) != FALSE || PtInRegion(old, 4, 4) != FALSE) ++staleAccepted;
                }
            }
        });
    }
    for (std::thread& th : threads) th.join();
    for (auto& m : mailbox)
        if (HRGN h = m.load()) {
            EXPECT_EQ(DeleteObject(h), TRUE);
        }
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(staleAccepted.load(), 0);
    EXPECT_TRUE(rectsOf(shared) == sharedRects);
    EXPECT_EQ(DeleteObject(shared), TRUE);
    EXPECT_EQ(liveRegions(), before);
}

TEST(RegionTypes, LayoutMatchesTheWindowsStructuresAndCRectNormalizes)
{
    EXPECT_EQ((std::vector<std::size_t>{sizeof(RECT), sizeof(POINT), sizeof(RGNDATAHEADER), offsetof(RGNDATA, Buffer),
                                        offsetof(RGNDATAHEADER, rcBound), sizeof(DWORD), sizeof(LONG)}),
              (std::vector<std::size_t>{16, 8, 32, 32, 16, 4, 4}));
    // NormalizeRect swaps only what is turned.
    const RECT upright{10, 20, 30, 40}, extreme{-2147483647 - 1, 0, 2147483647, 1};
    const struct { CRect in; RECT want; } cases[] = {
        {{30, 40, 10, 20}, upright}, {{30, 20, 10, 40}, upright}, {{10, 40, 30, 20}, upright},
        {{-5, 7, -5, 7}, {-5, 7, -5, 7}}, {{2147483647, 0, -2147483647 - 1, 1}, extreme}};
    for (auto c : cases) {
        c.in.NormalizeRect();
        EXPECT_TRUE(c.in == c.want) << c.in.left << ' ' << c.in.top << ' ' << c.in.right << ' ' << c.in.bottom;
    }
    EXPECT_TRUE(CRect(-5, 7, -5, 7).IsRectEmpty());
    EXPECT_EQ(CRect(1, 2, 11, 32).Width(), 10);
    EXPECT_EQ(CRect(1, 2, 11, 32).Height(), 30);
}

} // namespace

#endif // !_WIN32

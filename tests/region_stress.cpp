// SPDX-License-Identifier: MIT
// Region calls from several threads at once, for ThreadSanitizer: threads make, combine, read,
// offset and delete private regions, combine into and read shared ones, and delete regions that
// other threads made. Exits non-zero when a result differs from the one a single thread gets.
#include <quillon/Region>

#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

int roundKind(int i, HRGN shared)
{
    const POINT star[5] = {{10, 0}, {16, 20}, {0, 8}, {20, 8}, {4, 20}};
    HRGN a = CreateRectRgn(i % 7, 0, i % 7 + 12, 9);
    HRGN b = CreatePolygonRgn(star, 5, i % 2 ? WINDING : ALTERNATE);
    int kind = CombineRgn(a, a, b, RGN_XOR);
    kind = kind * 10 + CombineRgn(b, b, shared, RGN_AND);
    kind = kind * 10 + OffsetRgn(a, 3, -2);
    kind = kind * 10 + PtInRegion(shared, 10, 5) + EqualRgn(a, b);
    DeleteObject(a);
    DeleteObject(b);
    return kind;
}

} // namespace

int main()
{
    const POINT star[5] = {{10, 0}, {16, 20}, {0, 8}, {20, 8}, {4, 20}};
    HRGN shared = CreatePolygonRgn(star, 5, WINDING);
    HRGN scratch = CreateRectRgn(0, 0, 1, 1); // all threads write into it
    int expected[14];
    for (int i = 0; i < 14; ++i) expected[i] = roundKind(i, shared);
    const DWORD before = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    constexpr int kThreads = 4, kRounds = 2000;
    std::atomic<int> wrong{0};
    std::vector<std::atomic<HRGN>> mailbox(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < kRounds; ++i) {
                if (roundKind(i, shared) != expected[i % 14]) ++wrong;
                if (CombineRgn(scratch, shared, scratch, i % 2 ? RGN_OR : RGN_AND) == ERROR) ++wrong;
                if (GetRegionData(scratch, 0, nullptr) < 32) ++wrong;
                HRGN mine = CreateRectRgn(t, i, t + 5, i + 5);
                if (HRGN old = mailbox[(t + 1) % kThreads].exchange(mine))
                    if (DeleteObject(old) != TRUE) ++wrong;
            }
        });
    for (auto& th : threads) th.join();
    for (auto& m : mailbox)
        if (HRGN h = m.load()) DeleteObject(h);
    const DWORD after = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    DeleteObject(scratch);
    DeleteObject(shared);
    std::printf("region stress: %d threads x %d rounds, %d wrong, %d regions left\n", kThreads, kRounds,
                wrong.load(), int(after - before));
    return wrong.load() == 0 && after == before ? 0 : 1;
}

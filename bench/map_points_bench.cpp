// SPDX-License-Identifier: MIT
// Mapping 10,000,000 double points in C++: the yardstick for the same call from Python
// (bench/python_vs_cpp.py). Each run maps into fresh storage, as the Python call returns a new
// array, and asks for huge pages for it as numpy does for large arrays, so that the two differ in
// the binding and not in how the memory is first touched.
#include <quillon/Batch>
#include <quillon/Transform>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <new>
#include <random>
#include <vector>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace {

constexpr std::size_t kPoints = 10'000'000;
constexpr std::size_t kBytes = kPoints * sizeof(ThreeDVector<double>);
constexpr std::align_val_t kHugePage{std::size_t(1) << 21};

void MapTenMillionDoublePoints(benchmark::State& state)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> coordinate(-1000.0, 1000.0);
    std::vector<ThreeDVector<double>> points(kPoints);
    for (auto& p : points) {
        const double x = coordinate(random), y = coordinate(random), z = coordinate(random);
        p = ThreeDVector<double>(x, y, z);
    }
    Transform<double> t;
    t.Function_2424(0.5235987755982988);
    t.Function_2428('x', 40.0);
    for (auto _ : state) {
        auto* mapped = static_cast<ThreeDVector<double>*>(::operator new(kBytes, kHugePage));
#if defined(__linux__)
        madvise(mapped, kBytes, MADV_HUGEPAGE);
#endif
        quillon::mapPoints(t, points.data(), mapped, kPoints);
        benchmark::DoNotOptimize(mapped);
        benchmark::ClobberMemory();
        ::operator delete(mapped, kHugePage);
    }
}
BENCHMARK(MapTenMillionDoublePoints)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

// Mapping 10,000,000 double points in C++: the yardstick for the same call from Python
// (bench/python_vs_cpp.py). The output array is made for each run, as the Python call makes one.
#include <quillon/Transform>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <new>
#include <random>

namespace {

constexpr std::size_t kPoints = 10'000'000;

void MapTenMillionDoublePoints(benchmark::State& state)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> coordinate(-1000.0, 1000.0);
    std::unique_ptr<ThreeDVector<double>[]> points(new ThreeDVector<double>[kPoints]);
    for (std::size_t i = 0; i < kPoints; ++i) {
        const double x = coordinate(random), y = coordinate(random), z = coordinate(random);
        points[i] = ThreeDVector<double>(x, y, z);
    }
    Transform<double> t;
    t.Function_2424(0.5235987755982988);
    t.Function_2428('x', 40.0);
    for (auto _ : state) {
        // Storage left unwritten until each image lands in it, as numpy.empty leaves it.
        auto* mapped = static_cast<ThreeDVector<double>*>(::operator new(kPoints * sizeof(ThreeDVector<double>)));
        for (std::size_t i = 0; i < kPoints; ++i) new (&mapped[i]) ThreeDVector<double>(t * points[i]);
        benchmark::DoNotOptimize(mapped);
        benchmark::ClobberMemory();
        ::operator delete(mapped);
    }
}
BENCHMARK(MapTenMillionDoublePoints)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

// SPDX-License-Identifier: MIT
// Mapping many points: quillon::mapPoints against Eigen's per-point loop over points in cache,
// and over ten million points against a memcpy of the same bytes (the bound of a job that reads
// and writes each byte once). One point at a time for float: the inlined operator and the
// module's exported member against Eigen and against the same arithmetic written by hand.
#include <quillon/Batch>

#include "sample.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <vector>

#include <dlfcn.h>

#ifdef QUILLON_BENCH_EIGEN
#include <Eigen/Geometry>
#endif

namespace {

constexpr std::size_t kInCache = 100000;     // 2.4 MB in, 2.4 MB out
constexpr std::size_t kBeyondCache = 10000000; // 240 MB in, 240 MB out
constexpr std::size_t kSinglePoints = 1024;

template <class T>
std::vector<ThreeDVector<T>> points(std::size_t n)
{
    std::vector<ThreeDVector<T>> p(n);
    for (std::size_t i = 0; i < n; ++i)
        p[i] = ThreeDVector<T>(T(std::sin(i * 0.37) * 1000), T(std::sin(i * 0.37 + 1) * 1000), T(std::sin(i * 0.37 + 2) * 1000));
    return p;
}

// ---- Many double points ----

void runBatch(benchmark::State& state, std::size_t n)
{
    const Transform<double> t = sampleTransform<double>();
    const auto in = points<double>(n);
    std::vector<ThreeDVector<double>> out(n);
    for (auto _ : state) {
        quillon::mapPoints(t, in.data(), out.data(), n);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long long>(n));
    state.SetBytesProcessed(state.iterations() * static_cast<long long>(n * sizeof(ThreeDVector<double>)));
}
void MapBatch(benchmark::State& state) { runBatch(state, static_cast<std::size_t>(state.range(0))); }
BENCHMARK(MapBatch)->Arg(kInCache)->Arg(kBeyondCache)->Unit(benchmark::kMicrosecond);

// The same on each kernel path this processor has (every path gives the same bits).
void MapBatchOnPath(benchmark::State& state)
{
    const auto path = static_cast<quillon::batch::Path>(state.range(0));
    const quillon::batch::Path saved = quillon::batch::currentPath();
    if (!quillon::batch::forcePath(path)) {
        state.SkipWithError("path not supported here");
        return;
    }
    runBatch(state, static_cast<std::size_t>(state.range(1)));
    quillon::batch::forcePath(saved);
}
BENCHMARK(MapBatchOnPath)
    ->ArgNames({"path", "n"})
    ->ArgsProduct({{0, 1, 2, 3}, {kInCache, kBeyondCache}})
    ->Unit(benchmark::kMicrosecond);

// The operator point by point, inlined.
void MapPointByPoint(benchmark::State& state)
{
    const std::size_t n = static_cast<std::size_t>(state.range(0));
    const Transform<double> t = sampleTransform<double>();
    const auto in = points<double>(n);
    std::vector<ThreeDVector<double>> out(n);
    for (auto _ : state) {
        for (std::size_t i = 0; i < n; ++i) out[i] = t * in[i];
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long long>(n));
}
BENCHMARK(MapPointByPoint)->Arg(kInCache)->Unit(benchmark::kMicrosecond);

#ifdef QUILLON_BENCH_EIGEN
void MapEigenLoop(benchmark::State& state)
{
    const std::size_t n = static_cast<std::size_t>(state.range(0));
    double e[16];
    sampleTransform<double>().Function_2416(e);
    Eigen::Affine3d t;
    t.matrix() = Eigen::Map<const Eigen::Matrix<double, 4, 4, Eigen::RowMajor>>(e);
    const auto raw = points<double>(n);
    std::vector<Eigen::Vector3d> in(n), out(n);
    for (std::size_t i = 0; i < n; ++i) in[i] = {raw[i].GetX(), raw[i].GetY(), raw[i].GetZ()};
    for (auto _ : state) {
        for (std::size_t i = 0; i < n; ++i) out[i] = t * in[i];
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long long>(n));
}
BENCHMARK(MapEigenLoop)->Arg(kInCache)->Unit(benchmark::kMicrosecond);
#endif

void CopyBytes(benchmark::State& state)
{
    const std::size_t n = static_cast<std::size_t>(state.range(0));
    const auto in = points<double>(n);
    std::vector<ThreeDVector<double>> out(n);
    for (auto _ : state) {
        std::memcpy(static_cast<void*>(out.data()), in.data(), n * sizeof(ThreeDVector<double>));
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long long>(n));
    state.SetBytesProcessed(state.iterations() * static_cast<long long>(n * sizeof(ThreeDVector<double>)));
}
BENCHMARK(CopyBytes)->Arg(kBeyondCache)->Unit(benchmark::kMicrosecond);

// ---- One float point at a time ----

void MapFloatInline(benchmark::State& state)
{
    const Transform<float> t = sampleTransform<float>();
    const auto in = points<float>(kSinglePoints);
    std::vector<ThreeDVector<float>> out(kSinglePoints);
    for (auto _ : state) {
        for (std::size_t i = 0; i < kSinglePoints; ++i) out[i] = t * in[i];
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSinglePoints);
}
BENCHMARK(MapFloatInline);

// The member as the module exports it, the copy in libquillon.so.1 that a program in another
// language, or built without the headers, calls: found by its exported name. (A C++ caller
// instantiates the member from the header and inlines it, as MapFloatInline does.)
void MapFloatExported(benchmark::State& state)
{
    using Exported = ThreeDVector<float> (*)(const Transform<float>*, const ThreeDVector<float>&);
    void* module = dlopen("libquillon.so.1", RTLD_LAZY); // kept open: the call is benchmarked
    void* symbol = module ? dlsym(module, "_ZNK9TransformIfEmlERK12ThreeDVectorIfE") : nullptr;
    if (!symbol) {
        state.SkipWithError("libquillon.so.1 or its float mapping not found");
        return;
    }
    // The x86-64 calling convention passes the object as the first argument of a member.
    const Exported map = reinterpret_cast<Exported>(symbol);
    const Transform<float> t = sampleTransform<float>();
    const auto in = points<float>(kSinglePoints);
    std::vector<ThreeDVector<float>> out(kSinglePoints);
    for (auto _ : state) {
        for (std::size_t i = 0; i < kSinglePoints; ++i) out[i] = map(&t, in[i]);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSinglePoints);
}
BENCHMARK(MapFloatExported);

// The same arithmetic by hand: operands widened to double, one rounding to float per component.
void MapFloatByHand(benchmark::State& state)
{
    float e[16];
    sampleTransform<float>().Function_2416(e);
    const auto raw = points<float>(kSinglePoints);
    std::vector<float> in(3 * kSinglePoints), out(3 * kSinglePoints);
    for (std::size_t i = 0; i < kSinglePoints; ++i) {
        in[3 * i] = raw[i].GetX(), in[3 * i + 1] = raw[i].GetY(), in[3 * i + 2] = raw[i].GetZ();
    }
    double m[12];
    for (int k = 0; k < 12; ++k) m[k] = e[k];
    for (auto _ : state) {
        for (std::size_t i = 0; i < kSinglePoints; ++i) {
            const double x = in[3 * i], y = in[3 * i + 1], z = in[3 * i + 2];
            out[3 * i] = static_cast<float>(((m[0] * x + m[1] * y) + m[2] * z) + m[3]);
            out[3 * i + 1] = static_cast<float>(((m[4] * x + m[5] * y) + m[6] * z) + m[7]);
            out[3 * i + 2] = static_cast<float>(((m[8] * x + m[9] * y) + m[10] * z) + m[11]);
        }
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSinglePoints);
}
BENCHMARK(MapFloatByHand);

// The same arithmetic by hand in a function of the exported member's shape (the sixteen elements
// and the point by address, the point back by value), called through a pointer: what any mapping
// called out of line costs, since a call cannot keep the widened elements from one point to the next.
struct FloatPoint {
    float x, y, z;
};
[[gnu::noinline]] FloatPoint mapFloatCalled(const float* e, const FloatPoint& p)
{
    const double x = p.x, y = p.y, z = p.z;
    const auto row = [&](int r) {
        return static_cast<float>(((double(e[4 * r]) * x + double(e[4 * r + 1]) * y) + double(e[4 * r + 2]) * z) +
                                  double(e[4 * r + 3]));
    };
    return FloatPoint{row(0), row(1), row(2)};
}

void MapFloatByHandCalled(benchmark::State& state)
{
    float e[16];
    sampleTransform<float>().Function_2416(e);
    const auto raw = points<float>(kSinglePoints);
    std::vector<FloatPoint> in(kSinglePoints), out(kSinglePoints);
    for (std::size_t i = 0; i < kSinglePoints; ++i) in[i] = {raw[i].GetX(), raw[i].GetY(), raw[i].GetZ()};
    FloatPoint (*map)(const float*, const FloatPoint&) = mapFloatCalled;
    benchmark::DoNotOptimize(map); // the compiler no longer knows which function it calls
    for (auto _ : state) {
        for (std::size_t i = 0; i < kSinglePoints; ++i) out[i] = map(e, in[i]);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSinglePoints);
}
BENCHMARK(MapFloatByHandCalled);

// The same 1024 float points in one call: what a caller with many points uses instead.
void MapFloatBatch(benchmark::State& state)
{
    const Transform<float> t = sampleTransform<float>();
    const auto in = points<float>(kSinglePoints);
    std::vector<ThreeDVector<float>> out(kSinglePoints);
    for (auto _ : state) {
        quillon::mapPoints(t, in.data(), out.data(), kSinglePoints);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSinglePoints);
}
BENCHMARK(MapFloatBatch);

#ifdef QUILLON_BENCH_EIGEN
void MapFloatEigen(benchmark::State& state)
{
    float e[16];
    sampleTransform<float>().Function_2416(e);
    Eigen::Affine3f t;
    t.matrix() = Eigen::Map<const Eigen::Matrix<float, 4, 4, Eigen::RowMajor>>(e);
    const auto raw = points<float>(kSinglePoints);
    std::vector<Eigen::Vector3f> in(kSinglePoints), out(kSinglePoints);
    for (std::size_t i = 0; i < kSinglePoints; ++i) in[i] = {raw[i].GetX(), raw[i].GetY(), raw[i].GetZ()};
    for (auto _ : state) {
        for (std::size_t i = 0; i < kSinglePoints; ++i) out[i] = t * in[i];
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSinglePoints);
}
BENCHMARK(MapFloatEigen);
#endif

} // namespace

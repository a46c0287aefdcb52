// SPDX-License-Identifier: MIT
// How fast the exact members are next to plain code and to Eigen and glm doing the same job.
// Quillon maps a point with the translation added last in a fixed order and no fused
// multiply-add; the plain versions below are written the same way, so they compute the same
// bits, and the comparison shows what the library's own code costs on top of that.
#include <quillon/Transform>

#include "sample.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#ifdef QUILLON_BENCH_EIGEN
#include <Eigen/Geometry>
#endif
#ifdef QUILLON_BENCH_GLM
#include <glm/glm.hpp>
#endif

namespace {

constexpr int kPoints = 1024;

#ifdef QUILLON_BENCH_EIGEN
Eigen::Matrix4d eigenMatrix()
{
    double e[16];
    sampleTransform<double>().Function_2416(e);
    return Eigen::Map<const Eigen::Matrix<double, 4, 4, Eigen::RowMajor>>(e);
}
#endif
#ifdef QUILLON_BENCH_GLM
glm::dmat4 glmMatrix()
{
    double e[16];
    sampleTransform<double>().Function_2416(e);
    glm::dmat4 t;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) t[c][r] = e[4 * r + c]; // glm is column-major
    return t;
}
#endif

std::vector<double> samplePoints()
{
    std::vector<double> p(3 * kPoints);
    for (int i = 0; i < 3 * kPoints; ++i) p[i] = std::sin(i * 0.37) * 1000.0;
    return p;
}

// ---- Mapping points ----

template <class A, class B>
void MapPoints(benchmark::State& state)
{
    const Transform<A> t = sampleTransform<A>();
    const std::vector<double> raw = samplePoints();
    std::vector<ThreeDVector<B>> points;
    for (int i = 0; i < kPoints; ++i) points.emplace_back(B(raw[3 * i]), B(raw[3 * i + 1]), B(raw[3 * i + 2]));
    std::vector<ThreeDVector<B>> out(kPoints);
    for (auto _ : state) {
        for (int i = 0; i < kPoints; ++i) out[i] = t * points[i];
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(MapPoints<double, double>);
BENCHMARK(MapPoints<float, float>);
BENCHMARK(MapPoints<double, int>);
BENCHMARK(MapPoints<guarddouble, guarddouble>);

// The same mapping written out by hand over plain arrays.
void MapPointsPlain(benchmark::State& state)
{
    double e[16];
    sampleTransform<double>().Function_2416(e);
    const std::vector<double> in = samplePoints();
    std::vector<double> out(3 * kPoints);
    for (auto _ : state) {
        for (int i = 0; i < kPoints; ++i) {
            const double x = in[3 * i], y = in[3 * i + 1], z = in[3 * i + 2];
            for (int r = 0; r < 3; ++r)
                out[3 * i + r] = ((e[4 * r] * x + e[4 * r + 1] * y) + e[4 * r + 2] * z) + e[4 * r + 3];
        }
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(MapPointsPlain);

#ifdef QUILLON_BENCH_EIGEN
void MapPointsEigen(benchmark::State& state)
{
    Eigen::Affine3d t;
    t.matrix() = eigenMatrix();
    const std::vector<double> raw = samplePoints();
    std::vector<Eigen::Vector3d> in(kPoints), out(kPoints);
    for (int i = 0; i < kPoints; ++i) in[i] = {raw[3 * i], raw[3 * i + 1], raw[3 * i + 2]};
    for (auto _ : state) {
        for (int i = 0; i < kPoints; ++i) out[i] = t * in[i];
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(MapPointsEigen);
#endif

#ifdef QUILLON_BENCH_GLM
void MapPointsGlm(benchmark::State& state)
{
    const glm::dmat4 t = glmMatrix();
    const std::vector<double> raw = samplePoints();
    std::vector<glm::dvec4> in(kPoints), out(kPoints);
    for (int i = 0; i < kPoints; ++i) in[i] = {raw[3 * i], raw[3 * i + 1], raw[3 * i + 2], 1.0};
    for (auto _ : state) {
        for (int i = 0; i < kPoints; ++i) out[i] = t * in[i];
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(MapPointsGlm);
#endif

// ---- Composition and inverse ----

template <class T>
void Compose(benchmark::State& state)
{
    const Transform<T> a = sampleTransform<T>();
    Transform<T> b = a.Function_2417();
    for (auto _ : state) {
        b = a * b;
        benchmark::DoNotOptimize(&b);
    }
}
BENCHMARK(Compose<float>);
BENCHMARK(Compose<double>);
BENCHMARK(Compose<guarddouble>);

#ifdef QUILLON_BENCH_EIGEN
void ComposeEigen(benchmark::State& state)
{
    const Eigen::Matrix4d a = eigenMatrix();
    Eigen::Matrix4d b = a.transpose();
    for (auto _ : state) {
        b = (a * b).eval();
        benchmark::DoNotOptimize(b.data());
    }
}
BENCHMARK(ComposeEigen);
#endif

#ifdef QUILLON_BENCH_GLM
void ComposeGlm(benchmark::State& state)
{
    const glm::dmat4 a = glmMatrix();
    glm::dmat4 b = glm::transpose(a);
    for (auto _ : state) {
        b = a * b;
        benchmark::DoNotOptimize(&b);
    }
}
BENCHMARK(ComposeGlm);
#endif

template <class T>
void Inverse(benchmark::State& state)
{
    Transform<T> a = sampleTransform<T>();
    for (auto _ : state) {
        a = a.Function_2415();
        benchmark::DoNotOptimize(&a);
    }
}
BENCHMARK(Inverse<double>);
BENCHMARK(Inverse<guarddouble>);

#ifdef QUILLON_BENCH_EIGEN
void InverseEigen(benchmark::State& state)
{
    Eigen::Matrix4d a = eigenMatrix();
    for (auto _ : state) {
        a = a.inverse().eval();
        benchmark::DoNotOptimize(a.data());
    }
}
BENCHMARK(InverseEigen);
#endif

} // namespace

// SPDX-License-Identifier: MIT
// The library's correctly rounded sine and cosine against the C library's (glibc's, which may
// misround and differs between platforms): throughput over independent arguments, latency along a
// chain where each argument waits for the previous result, and a rotation built from three angles
// against the same formula fed by the C library, as rotations were built before.
#include <quillon/Transform>

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

namespace {
constexpr int kArguments = 1024;

std::vector<double> arguments(double range)
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> pick(-range, range);
    std::vector<double> v(kArguments);
    for (double& x : v) x = pick(random);
    return v;
}

double ourSin(double x) { return quillon::sine(x); }
double ourCos(double x) { return quillon::cosine(x); }
double ourSinCos(double x)
{
    const quillon::SineCosine sc = quillon::sineCosine(x);
    return sc.sin + sc.cos;
}
double libSin(double x) { return std::sin(x); }
double libCos(double x) { return std::cos(x); }
double libSinCos(double x) { return std::sin(x) + std::cos(x); }

template <double (*F)(double)>
void Throughput(benchmark::State& state)
{
    const std::vector<double> v = arguments(static_cast<double>(state.range(0)) == 0 ? M_PI : 1e6);
    for (auto _ : state)
        for (double x : v) benchmark::DoNotOptimize(F(x));
    state.SetItemsProcessed(state.iterations() * kArguments);
}

// Each call's argument depends on the previous result (0 * y is not folded without -ffast-math).
template <double (*F)(double)>
void Latency(benchmark::State& state)
{
    const std::vector<double> v = arguments(static_cast<double>(state.range(0)) == 0 ? M_PI : 1e6);
    double y = 0;
    for (auto _ : state)
        for (double x : v) y = F(x + 0.0 * y);
    benchmark::DoNotOptimize(y);
    state.SetItemsProcessed(state.iterations() * kArguments);
}

// The Euler constructor's formula, element for element, with the C library's sin and cos.
Transform<double> libraryRotation(double ax, double ay, double az)
{
    const double cx = std::cos(ax), cy = std::cos(ay), cz = std::cos(az);
    const double sx = std::sin(ax), sy = std::sin(ay), sz = std::sin(az);
    const double e[16] = {cy * cz, (-cy) * sz, sy, 0,
                          ((sy * cz) * sx) + (sz * cx), (cx * cz) - ((sx * sy) * sz), (-sx) * cy, 0,
                          (sx * sz) - ((cz * cx) * sy), ((sz * cx) * sy) + (sx * cz), cx * cy, 0,
                          0, 0, 0, 1};
    return Transform<double>(e);
}

template <bool Ours>
void Rotation(benchmark::State& state)
{
    const std::vector<double> v = arguments(M_PI);
    for (auto _ : state)
        for (int i = 0; i + 2 < kArguments; i += 3) {
            Transform<double> t = Ours ? Transform<double>(v[i], v[i + 1], v[i + 2]) : libraryRotation(v[i], v[i + 1], v[i + 2]);
            benchmark::DoNotOptimize(t);
        }
    state.SetItemsProcessed(state.iterations() * (kArguments / 3));
}
} // namespace

// Argument 0: [-pi, pi]; 1: [-10^6, 10^6].
BENCHMARK(Throughput<ourSin>)->Arg(0)->Arg(1);
BENCHMARK(Throughput<libSin>)->Arg(0)->Arg(1);
BENCHMARK(Throughput<ourCos>)->Arg(0)->Arg(1);
BENCHMARK(Throughput<libCos>)->Arg(0)->Arg(1);
BENCHMARK(Throughput<ourSinCos>)->Arg(0)->Arg(1);
BENCHMARK(Throughput<libSinCos>)->Arg(0)->Arg(1);
BENCHMARK(Latency<ourSin>)->Arg(0)->Arg(1);
BENCHMARK(Latency<libSin>)->Arg(0)->Arg(1);
BENCHMARK(Latency<ourCos>)->Arg(0)->Arg(1);
BENCHMARK(Latency<libCos>)->Arg(0)->Arg(1);
BENCHMARK(Rotation<true>);
BENCHMARK(Rotation<false>);

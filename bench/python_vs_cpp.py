# SPDX-License-Identifier: MIT
"""Mapping 10,000,000 double points from Python (quillon.Transform.map) against the same job in
C++ (quillon_map_bench): prints both times and their ratio.

    cmake --preset release && cmake --build --preset release
    PYTHONPATH=build/release/python/site python3 bench/python_vs_cpp.py build/release/bench/quillon_map_bench
"""
import json
import subprocess
import sys
import time

import numpy as np

import quillon

POINTS = 10_000_000


def python_seconds(runs=7):
    points = np.random.default_rng(1).uniform(-1000.0, 1000.0, size=(POINTS, 3))
    t = quillon.Transform("float64").turn_z(0.5235987755982988).move("x", 40.0)
    best = float("inf")
    for _ in range(runs):
        start = time.process_time()
        mapped = t.map(points)
        best = min(best, time.process_time() - start)
        del mapped
    return best


def cpp_seconds(program):
    out = subprocess.run([program, "--benchmark_format=json", "--benchmark_repetitions=7"],
                         check=True, capture_output=True, text=True).stdout
    runs = [b for b in json.loads(out)["benchmarks"] if b.get("run_type") == "iteration"]
    return min(b["cpu_time"] for b in runs) / 1000.0  # reported in milliseconds


def main():
    program = sys.argv[1] if len(sys.argv) > 1 else "build/release/bench/quillon_map_bench"
    py, cpp = python_seconds(), cpp_seconds(program)
    print(f"map 10,000,000 float64 points: Python {py * 1000:.1f} ms, C++ {cpp * 1000:.1f} ms "
          f"(CPU time, best of 7), ratio {py / cpp:.2f}")


if __name__ == "__main__":
    main()

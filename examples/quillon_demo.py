# SPDX-License-Identifier: MIT
"""Maps a million points through a turned and moved transform with the quillon module, and prints
the time it took.

    PYTHONPATH=build/release/python/site python3 examples/quillon_demo.py
"""
import time

import numpy as np

import quillon

t = quillon.Transform("float64").turn_z(0.5235987755982988).move("x", 40.0)
print(t)

points = np.random.default_rng(1).uniform(-1000.0, 1000.0, size=(1_000_000, 3))
start = time.perf_counter()
mapped = t.map(points)
elapsed = time.perf_counter() - start
print(f"mapped {len(points):,} float64 points in {elapsed * 1000:.1f} ms")
print("first point:", points[0], "->", mapped[0])

pixels = t.map(points[:5].astype(np.int32))  # int32 points: truncated toward zero
print("as int32:", pixels[0])
region = t.map_rects(np.array([[0, 0, 100, 100]], dtype=np.int32))
print(f"a 100 x 100 square, turned: {len(region)} rectangles")

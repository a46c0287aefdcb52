# SPDX-License-Identifier: MIT
"""The seeded battery of tests/bindings/battery.h, step for step in Python: the same generator
draws the same inputs, and the same digest of result bits is printed per family, so the module's
results can be held against the C++ reference program's."""
import math
import struct

import numpy as np

MASK = (1 << 64) - 1
SEED = 0x5155494C4C4F4E31
GUARD_ROUNDS = 1000
TRANSFORM_ROUNDS = 60
MAP_TRANSFORMS = 8
MAP_POINTS = 24
RECT_ROUNDS = 12
VECTOR_ROUNDS = 200
VECTORS = 6

DOUBLE_SPECIALS = [0.0, -0.0, 1.0, -1.0, 0.5, -0.5, 2.5, -2.5, 1.5, 2147483647.0, -2147483647.0,
                   -2147483648.0, 2147483647.5, 2147483648.0, 2.0**1022, -2.0**1022, 2.0**1021,
                   2.0**126, -2.0**126, 1e308, -1e308, 2.0**-1022, 2.0**-1074, math.inf, -math.inf,
                   math.nan]
DOUBLE_SCALES = [4.0, 1000.0, 6e9, 1e308]
FLOAT_SPECIALS = [0.0, -0.0, 1.0, -1.0, 0.5, -0.5, 2.5, -2.5, 1.5, 2147483648.0, -2147483648.0,
                  2.0**126, -2.0**126, 2.0**125, 2.0**127, -2.0**127, 2.0**-126, math.inf,
                  -math.inf, math.nan]
FLOAT_SCALES = [4.0, 1000.0, 6e9, 3e38]
INT_SPECIALS = [0, 1, -1, 2, 2147483647, -2147483647, -2147483648, 46341, -46341, 65536,
                1073741823, -1073741824]
ANGLE_SPECIALS = [0.0, 1.5707963267948966, 3.141592653589793, -0.7853981633974483, 1e10,
                  math.inf, math.nan]


class Rng:
    def __init__(self, index):
        self.state = (SEED + index) & MASK

    def next(self):
        self.state = (self.state + 0x9E3779B97F4A7C15) & MASK
        z = self.state
        z = ((z ^ (z >> 30)) * 0xBF58476D1CE4E5B9) & MASK
        z = ((z ^ (z >> 27)) * 0x94D049BB133111EB) & MASK
        return z ^ (z >> 31)

    def unit(self):
        return float(self.next() >> 11) * 2.0**-53 - 0.5

    def double(self):
        u = self.next()
        if u & 7 == 0:
            return DOUBLE_SPECIALS[(u >> 3) % len(DOUBLE_SPECIALS)]
        return self.unit() * DOUBLE_SCALES[(u >> 3) & 3]

    def float(self):
        """A float32 value, as a Python float holding it exactly."""
        u = self.next()
        if u & 7 == 0:
            return FLOAT_SPECIALS[(u >> 3) % len(FLOAT_SPECIALS)]
        return float(np.float32(self.unit() * FLOAT_SCALES[(u >> 3) & 3]))

    def int(self):
        u = self.next()
        w = u >> 32
        if u & 3 == 0:
            return INT_SPECIALS[(u >> 2) % len(INT_SPECIALS)]
        if u & 3 == 1:
            return (u >> 8) % 2001 - 1000
        return w if w < 0x80000000 else w - (1 << 32)

    def angle(self):
        u = self.next()
        if u & 7 == 0:
            return ANGLE_SPECIALS[(u >> 3) % len(ANGLE_SPECIALS)]
        return self.unit() * 20.0

    def axis(self):
        return "xyzXYZw"[self.next() % 7]

    def pixel(self):
        return self.next() % 101 - 50


class Digest:
    def __init__(self):
        self.hash = 0xCBF29CE484222325
        self.count = 0

    def _bytes(self, data):
        h = self.hash
        for b in data:
            h = ((h ^ b) * 0x100000001B3) & MASK
        self.hash = h
        self.count += 1

    def double(self, x):
        x = float(x)
        self._bytes(b"\x00\x00\x00\x00\x00\x00\xf8\x7f" if x != x else struct.pack("<d", x))

    def float(self, x):
        x = float(x)
        self._bytes(b"\x00\x00\xc0\x7f" if x != x else struct.pack("<f", x))

    def int(self, x):
        self._bytes(struct.pack("<i", int(x)))

    def line(self, family):
        return f"{family:<16} {self.count:8d} {self.hash:016x}"

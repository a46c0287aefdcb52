#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The battery's families through the Python module: the generator and digest of battery.h, its
edge values read from that file, and the steps of families.h, draw for draw. Prints the digests
as the C++ surfaces do; --dump DIR writes each result's hash (tools/conformance/compare.py).

usage: battery.py [--dump DIR]   (with the module on PYTHONPATH)"""
import math
import os
import re
import struct
import sys

import numpy as np

import quillon

gd, gf, gi, vec = quillon.guarddouble, quillon.guardfloat, quillon.guardint, quillon.vec
MASK = (1 << 64) - 1
BASIS, PRIME = 0xCBF29CE484222325, 0x100000001B3


def _edges():
    text = open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "battery.h")).read()
    block = text[text.index("/* edges: */"):text.index("/* end of edges */")]
    lists = {}
    for name, body in re.findall(r"(qb_\w+)\[\] = \{(.*?)\};", block, re.S):
        values = []
        for token in body.replace("\n", " ").split(","):
            token = token.strip()
            sign = -1.0 if token.startswith("-") else 1.0
            bare = token.lstrip("-").strip()
            if bare in ("QB_INF", "QB_NAN"):
                values.append(sign * (math.inf if bare == "QB_INF" else math.nan))
            elif name == "qb_int_edges":
                values.append(eval(token))  # whole numbers and "-2147483647 - 1"
            else:
                values.append(sign * (float.fromhex(bare) if "0x" in bare else float(bare)))
        lists[name] = values
    return lists["qb_edges"], lists["qb_int_edges"], lists["qb_angle_edges"]


EDGES, INT_EDGES, ANGLE_EDGES = _edges()
AXES = ["x", "X", "y", "Y", "z", "Z", "w", "a", "0", "{", "\0"]


def mix(z):
    z = ((z ^ (z >> 30)) * 0xBF58476D1CE4E5B9) & MASK
    z = ((z ^ (z >> 27)) * 0x94D049BB133111EB) & MASK
    return z ^ (z >> 31)


def f32(x):
    with np.errstate(over="ignore"):  # past float's range is infinity, as in C
        return float(np.float32(x))


class Family:
    """A family's generator (seeded from its name) and digest."""

    def __init__(self, name, dump):
        self.name, self.count, self.digest = name, 0, BASIS
        for c in name.encode():
            self.digest = ((self.digest ^ c) * PRIME) & MASK
        self.state, self.digest, self.result = self.digest, BASIS, BASIS
        self.dump = open(os.path.join(dump, name + ".txt"), "w") if dump else None

    # ---- draws ----
    def next(self):
        self.state = (self.state + 0x9E3779B97F4A7C15) & MASK
        return mix(self.state)

    def below(self, n):
        return self.next() % n

    def real(self):
        u = self.next()
        sign = -1.0 if u & 8 else 1.0
        kind = u & 7
        if kind == 0:
            return EDGES[(u >> 4) % len(EDGES)]
        if kind == 1:
            return sign * float(u >> 20) * 2.0**-34
        if kind == 2:
            return struct.unpack("<d", struct.pack("<Q", u))[0]
        if kind == 3:
            return float((u >> 4) % 2001 - 1000)
        if kind == 4:
            return sign * (float((u >> 4) % 1000) + 0.25 * float((u >> 20) % 4))
        if kind == 5:
            return sign * float(u >> 4) * 2.0**-30
        return sign * (2.0**1021 if kind == 6 else 2.0**125) * (1.0 + float((u >> 4) % 8) * 0.125)

    def float(self):
        return f32(self.real())

    def int(self):
        u = self.next()
        w = u >> 32
        if u & 3 == 0:
            return INT_EDGES[(u >> 2) % len(INT_EDGES)]
        if u & 3 == 1:
            return (u >> 8) % 2001 - 1000
        return w if w < 0x80000000 else w - (1 << 32)

    def angle(self):
        u = self.next()
        if u & 7 == 0:
            return ANGLE_EDGES[(u >> 3) % len(ANGLE_EDGES)]
        return (-1.0 if u & 8 else 1.0) * float(u >> 11) * 2.0**-50

    def axis(self):
        return AXES[self.next() % len(AXES)]

    # ---- digest ----
    def bits(self, word):
        self.result = ((self.result ^ word) * PRIME) & MASK

    def double(self, x):
        x = float(x)
        self.bits(0x7FF8000000000000 if x != x else struct.unpack("<Q", struct.pack("<d", x))[0])

    def single(self, x):
        x = float(x)
        self.bits(0x7FC00000 if x != x else struct.unpack("<I", struct.pack("<f", x))[0])

    def integer(self, x):
        self.bits(int(x) & 0xFFFFFFFF)

    def end(self):
        h = mix(self.result)
        self.digest = ((self.digest ^ h) * PRIME) & MASK
        self.count += 1
        self.result = BASIS
        if self.dump:
            self.dump.write(f"{h:016x}\n")

    def finish(self):
        print(f"{self.name:<28} {self.count:8d} {self.digest:016x}")
        if self.dump:
            self.dump.close()


# Per element type: how a value is drawn (as its stored value), how it is hashed, numpy's type,
# and the dtype the module names it by.
TYPES = {
    "int": (Family.int, Family.integer, np.int32, None),
    "float": (Family.float, Family.single, np.float32, "float32"),
    "double": (Family.real, Family.double, np.float64, "float64"),
    "guardint": (lambda f: gi(f.int()).value if f.next() & 1 else gi(f.real()).value, Family.integer, np.int32,
                 "guardint"),
    "guardfloat": (lambda f: gf(f.real()).value, Family.single, np.float32, "guardfloat"),
    "guarddouble": (lambda f: gd(f.real()).value, Family.double, np.float64, "guarddouble"),
}


def put_all(f, values, put):
    for v in np.asarray(values).ravel():
        put(f, v)


def result(f, *groups):
    """Ends one result of (values, how each is hashed) groups."""
    for values, put in groups:
        put_all(f, values, put)
    f.end()


def draw_transform(f, t):
    draw, _, raw, dtype = TYPES[t]
    e = [draw(f) for _ in range(16)]
    if f.next() & 1:
        e[12:16] = [0.0, 0.0, 0.0, 1.0]
    return quillon.Transform(dtype, np.array(e, dtype=raw))


def guards(f):
    for _ in range(400):
        a, b = gd(f.real()), gd(f.real())
        plain, whole, single = f.real(), f.int(), f.float()
        p, q = gf(f.real()), gf(f.real())
        k = gi(f.int()) if f.next() & 1 else gi(f.real())
        m = gi(f.int()) if f.next() & 1 else gi(f.real())
        for v in (a + b, a - b, a * b, a / b, a + b, a / b, a - plain, whole * b, gd(plain), gd(whole), gd(k)):
            f.double(v.value)
        for v in (a == b, a != b, a < b, a > b, a.nint()):
            f.integer(v)
        f.end()
        for v in (p + q, p - q, p * q, p + q, p / q, gf(plain), gf(whole), gf(k)):
            f.single(v.value)
        for v in (p == q, p != q, p < q, p.nint()):
            f.integer(v)
        f.end()
        for v in (k + m, k - m, k * m, k + m, gi(plain), gi.from_float32(single), gi(whole), gi(a), gi(p)):
            f.integer(v.value)
        for v in (k == m, k != m, k < m):
            f.integer(v)
        f.double(float(k))
        f.single(m.to_float32())
        f.end()


def guard_more(f):
    for _ in range(200):
        a = gd(f.real())
        k = gi(f.int()) if f.next() & 1 else gi(f.real())
        m = gi(f.int()) if f.next() & 1 else gi(f.real())
        f.double(a.round_to_whole().value)
        f.integer((k / m).value)
        f.end()


def algebra(f, t):
    put = TYPES[t][1]
    for _ in range(150):
        a, b = draw_transform(f, t), draw_transform(f, t)
        result(f, (a @ b, put))
        result(f, (b @ a, put))
        result(f, (a.adjoint(), put), (a.determinant(), put))
        result(f, (a.inverse(), put))
        result(f, (a.transpose(), put), (a.without_translation(), put), ([a.e10, a.e20, a.e30], put))
        result(f, (a.copy(), put), (b.copy(), put))


def edits(f, t):
    draw, put = TYPES[t][:2]
    for _ in range(150):
        m = draw_transform(f, t)
        s1, s2, s3 = draw(f), draw(f), draw(f)
        axis1, m1 = f.axis(), draw(f)
        axis2, m2 = f.axis(), draw(f)
        result(f, (m.scale_x(s1).scale_y(s2).scale_z(s3), put))
        result(f, (m.move(axis1, m1).move(axis2, m2), put))
        result(f, (m.transpose_in_place(), put))
        result(f, (m.reset(), put))
        result(f, (m.clear(), put))


def turns(f, t):
    put, dtype = TYPES[t][1], TYPES[t][3]
    for _ in range(150):
        ax, ay, az = f.angle(), f.angle(), f.angle()
        result(f, (quillon.Transform.from_angles(ax, ay, az, dtype=dtype), put))
        m = draw_transform(f, t)
        t1, t2, t3 = f.angle(), f.angle(), f.angle()
        result(f, (m.turn_x(t1).turn_y(t2).turn_z(t3), put))
        result(f, (m.map(np.array([[f.real(), f.real(), f.real()]])), Family.double))


def mapping(f, t, v):
    draw, put, raw, dtype = TYPES[v]
    for _ in range(60):
        m = draw_transform(f, t)
        point = np.array([[draw(f), draw(f), draw(f)]], dtype=raw)
        result(f, (m.map(point, dtype=dtype if dtype in ("guardint", "guardfloat", "guarddouble") else None), put))


def put_region(f, t, pieces):
    source = quillon.Transform().map_rects(np.array(pieces, dtype=np.int32).reshape(-1, 4))
    image = t.map_rects(source)
    f.integer(len(image))
    put_all(f, image, Family.integer)
    f.end()


def draw_pieces(f, reach, size, least):
    pieces = []
    for _ in range(1 + f.below(4)):
        left, top = f.below(2 * reach) - reach, f.below(2 * reach) - reach
        width, height = least + f.below(size), least + f.below(size)
        pieces += [left, top, left + width, top + height]
    return pieces


def regions(f, t):
    dtype, raw = TYPES[t][3], TYPES[t][2]
    for _ in range(40):
        pieces = draw_pieces(f, 200, 120, 0)
        steps = [f.below(41) - 20 for _ in range(16)]
        e = [1.0 + s / 16.0 if k % 5 == 0 else s / 8.0 for k, s in enumerate(steps)]
        put_region(f, quillon.Transform(dtype, np.array(e, dtype=raw)), pieces)


def turned_regions(f, t):
    for _ in range(40):
        pieces = draw_pieces(f, 100, 60, 1)
        angle, move = f.angle(), f.below(100)
        put_region(f, quillon.Transform(TYPES[t][3]).turn_z(angle).move("x", move + 0.5), pieces)


def far_regions(f, t):
    dtype, raw = TYPES[t][3], TYPES[t][2]
    for _ in range(30):
        pieces = draw_pieces(f, 32, 16, 1)
        kind = f.below(5)
        mantissa, power, shear = f.below(8), f.below(11), f.below(13)
        move, tall, tilt, back = f.below(100), f.below(6), f.below(5), f.below(3)
        sign = -1.0 if f.next() & 1 else 1.0
        side = -1.0 if f.next() & 1 else 1.0
        stretch = (1.0 + mantissa / 8.0) * 2.0**(20 + power)
        toward = side * 2.0**31 - back * 2.0**20
        e = [1.0 if k % 5 == 0 else 0.0 for k in range(16)]
        if kind == 0:
            e[0] = sign * stretch
        elif kind == 1:
            e[1] = sign * 2.0**(10 + shear)
        elif kind == 2:
            e[3], e[7] = toward, move - 50.0
        elif kind == 3:
            e[5] = sign * 2.0**(22 + tall)
        else:
            e[0], e[3], e[4] = sign * stretch, toward / 2, tilt - 2.0
        put_region(f, quillon.Transform(dtype, np.array(e, dtype=raw)), pieces)


def vectors(f, t):
    draw, put, raw, _ = TYPES[t]
    dtype = {"int": "int32", "float": "float32", "double": "float64"}.get(t, t)
    for _ in range(150):
        a = np.array([[draw(f), draw(f), draw(f)]], dtype=raw)
        b = a.copy() if f.below(4) == 0 else np.array([[draw(f), draw(f), draw(f)]], dtype=raw)
        sf, sd, sgf, sgd = f.float(), f.real(), gf(f.real()).value, gd(f.real()).value
        depth = draw(f)
        origin = (f.int(), f.int())
        axis, amount = f.axis(), draw(f)
        result(f, (vec.add(a, b, dtype=dtype), put), (vec.sub(a, b, dtype=dtype), put),
               (vec.mul(a, b, dtype=dtype), put), (vec.from_points(a, b, dtype=dtype), put),
               (vec.equal(a, b, dtype=dtype), Family.integer), (vec.not_equal(a, b, dtype=dtype), Family.integer))
        result(f, *[(vec.scale(a, s, dtype=dtype, scalar=kind), put) for s, kind in
                    ((sf, "float32"), (sd, "float64"), (sgf, "guardfloat"), (sgd, "guarddouble"))])
        result(f, (vec.add_to_axis(a, axis, amount, dtype=dtype), put), (vec.normalise(a, dtype=dtype), put),
               (vec.cross(a, b, dtype=dtype), put), (vec.cross(b, a, dtype=dtype), put),
               (vec.dot(a, b, dtype=dtype), put), (vec.length(a, dtype=dtype), put))
        result(f, (vec.unit(a, dtype=dtype), Family.double), (vec.unit_gd(a, dtype=dtype), Family.double))
        result(f, (vec.project(a, depth, origin, dtype=dtype), Family.integer))


def main():
    dump = sys.argv[sys.argv.index("--dump") + 1] if "--dump" in sys.argv else None

    def run(name, body, *args):
        f = Family(name, dump)
        body(f, *args)
        f.finish()

    run("guards", guards)
    for t in ("float", "double", "guarddouble"):
        run(f"{t}-algebra", algebra, t)
        run(f"{t}-edits", edits, t)
        run(f"{t}-trig-turns", turns, t)
        for v in ("int", "float", "double", "guardint", "guardfloat", "guarddouble"):
            run(f"{t}-map-{v}", mapping, t, v)
        run(f"{t}-regions", regions, t)
        run(f"{t}-trig-regions", turned_regions, t)
        run(f"{t}-regions-far", far_regions, t)
    run("guards-more", guard_more)
    for v in ("int", "float", "double", "guardint", "guardfloat", "guarddouble"):
        run(f"vector-{v}", vectors, v)


if __name__ == "__main__":
    main()

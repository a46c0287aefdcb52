# SPDX-License-Identifier: MIT
"""quillon.vec and quillon.guard: the cases where a plausible mistake (a wrong dtype mapping, the
wrong operand broadcast, the cross product's order, int wrap-around taken for guardint saturation)
gives a different answer, large arrays against small ones, and bad input raising."""
import numpy as np
import pytest

import quillon

vec, guard = quillon.vec, quillon.guard
gd, gf, gi = quillon.guarddouble, quillon.guardfloat, quillon.guardint
I32 = np.int32


def ints(*values):
    return np.array(values, dtype=I32)


# ---- Vectors ----

def test_cross_order_and_types():
    x, y = np.array([1.0, 0.0, 0.0]), np.array([0.0, 1.0, 0.0])
    assert vec.cross(x, y).tolist() == [0.0, 0.0, 1.0]
    assert vec.cross(y, x).tolist() == [0.0, 0.0, -1.0]
    assert vec.cross(x, y).shape == (3,) and vec.dot(x, y).shape == ()
    assert vec.cross(x.astype(np.float32), y.astype(np.float32)).dtype == np.float32


def test_a_single_vector_pairs_with_every_row_on_its_own_side():
    one = np.array([10.0, 20.0, 30.0])
    rows = np.array([[1.0, 2.0, 3.0], [4.0, 5.0, 6.0]])
    assert vec.sub(one, rows).tolist() == [[9.0, 18.0, 27.0], [6.0, 15.0, 24.0]]
    assert vec.sub(rows, one).tolist() == [[-9.0, -18.0, -27.0], [-6.0, -15.0, -24.0]]
    axes = np.array([[1.0, 0.0, 0.0], [0.0, 1.0, 0.0]])
    assert vec.cross(one, axes).tolist() == [[0.0, 30.0, -20.0], [-30.0, 0.0, 10.0]]
    assert vec.cross(axes, one).tolist() == [[0.0, -30.0, 20.0], [30.0, 0.0, -10.0]]
    # A (1, 3) array pairs too, and keeps the result two-dimensional.
    assert vec.add(one.reshape(1, 3), one).shape == (1, 3)
    assert vec.from_points(one, rows).tolist() == [[-9.0, -18.0, -27.0], [-6.0, -15.0, -24.0]]


def test_int_wraps_around_where_guardint_saturates():
    big, one = ints(2147483647, -2147483647, 0), ints(1, -2, 0)
    assert vec.add(big, one).tolist() == [-2147483648, 2147483647, 0]
    assert vec.add(big, one, dtype="guardint").tolist() == [2147483647, -2147483647, 0]
    v = ints(46341, 0, 0)
    assert vec.dot(v, v) == -2147479015
    assert vec.dot(v, v, dtype="guardint") == 2147483647
    # float32 beyond 2**127 overflows; guardfloat stops at 2**126.
    f = np.array([2.0**127, -(2.0**127), 0.0], dtype=np.float32)
    assert vec.add(f, f).tolist() == [np.inf, -np.inf, 0.0]
    assert vec.add(f, f, dtype="guardfloat").tolist() == [2.0**126, -(2.0**126), 0.0]


def test_the_element_type_decides_rounding():
    v = ints(3, -3, 5)
    assert vec.scale(v, 0.5).tolist() == [1, -1, 2]  # plain scalar: cut toward zero
    assert vec.scale(v, 0.5, scalar="guarddouble").tolist() == [2, -2, 3]  # guard scalar: nint
    assert vec.scale(v, 0.5, scalar="guardfloat").tolist() == [2, -2, 3]
    x = np.array([1.0, 0.0, 0.0])
    assert vec.scale(x, 0.1, scalar="float32")[0] == float(np.float32(0.1)) != 0.1
    assert vec.scale(x, 0.1)[0] == 0.1
    assert vec.scale(x, 1e308, dtype="guarddouble", scalar="guarddouble")[0] == 2.0**1022
    # Lengths: int cut down, guardint to nearest.
    assert vec.length(ints(1, 1, 1)) == 1 and vec.length(ints(1, 1, 1), dtype="guardint") == 2
    assert vec.length(ints(1, 1, 0)).dtype == I32
    # Normalise divides in the element type; unit is double.
    assert vec.normalise(ints(3, 4, 0)).tolist() == [0, 0, 0]
    assert vec.unit(ints(3, 4, 0)).tolist() == [0.6, 0.8, 0.0]
    assert vec.unit(np.zeros(3)).tolist() == [0.0, 0.0, 0.0]
    assert vec.unit_gd(ints(0, 0, 2)).tolist() == [0.0, 0.0, 1.0]


def test_projection_and_axes():
    pts = np.array([[1.0, 2.0, 3.0], [1.0, 0.5, 3.0]])
    assert vec.project(pts, 1.0, (10, 20)).tolist() == [[10, 21], [0, 0]]
    assert vec.project(pts[0], 1.0, (10, 20)).tolist() == [10, 21]
    assert vec.project(ints(1, 2, 3), 1).dtype == I32
    v = np.array([[1.0, 2.0, 3.0]])
    assert vec.add_to_axis(v, "Y", 0.5).tolist() == [[1.0, 2.5, 3.0]]
    assert vec.add_to_axis(v, "w", 0.5).tolist() == [[1.0, 2.0, 3.0]]
    assert vec.add_to_axis(ints(2147483647, 0, 0), "x", 1, dtype="guardint").tolist() == [2147483647, 0, 0]
    assert vec.add_to_axis(ints(2147483647, 0, 0), "x", 1).tolist() == [-2147483648, 0, 0]


def test_comparison_by_value():
    a = np.array([[0.0, 1.0, 2.0], [np.nan, 0.0, 0.0]])
    b = np.array([[-0.0, 1.0, 2.0], [np.nan, 0.0, 0.0]])
    assert vec.equal(a, b).tolist() == [True, False]
    assert vec.not_equal(a, b).tolist() == [False, True]


def test_large_arrays_match_small_ones_and_inputs_are_untouched():
    rng = np.random.default_rng(11)
    a = rng.normal(scale=1e3, size=(9000, 3))
    b = rng.normal(scale=1e3, size=(9000, 3))
    before = a.copy(), b.copy()
    for f in (vec.add, vec.cross, vec.dot, vec.equal):
        whole = f(a, b)  # without the interpreter lock
        pieces = np.concatenate([f(a[k:k + 100], b[k:k + 100]) for k in range(0, len(a), 100)])
        assert whole.tobytes() == pieces.tobytes()
    whole = vec.project(a, 2.0, (3, 4))
    pieces = np.concatenate([vec.project(a[k:k + 100], 2.0, (3, 4)) for k in range(0, len(a), 100)])
    assert whole.tobytes() == pieces.tobytes()
    assert np.array_equal(a, before[0]) and np.array_equal(b, before[1])
    # Strided input is read as its values.
    wide = np.zeros((9000, 6))
    wide[:, ::2] = a
    assert vec.normalise(wide[:, ::2]).tobytes() == vec.normalise(a).tobytes()
    assert vec.add_to_axis(a, "z", 1.0) is not a and np.array_equal(a, before[0])


def test_empty_arrays():
    assert vec.add(np.zeros((0, 3)), np.zeros((0, 3))).shape == (0, 3)
    assert vec.dot(np.zeros((0, 3)), np.zeros(3)).shape == (0,)
    assert guard.add(np.zeros(0), np.zeros(0)).shape == (0,)


@pytest.mark.parametrize("call, error, message", [
    (lambda: vec.add(np.zeros((4, 2)), np.zeros((4, 2))), ValueError, r"\(n, 3\)"),
    (lambda: vec.add(np.zeros((2, 3, 3)), np.zeros(3)), ValueError, r"\(n, 3\)"),
    (lambda: vec.length(np.zeros(4)), ValueError, r"\(n, 3\)"),
    (lambda: vec.add(np.zeros((3, 3)), np.zeros((2, 3))), ValueError, "3 vectors with 2"),
    (lambda: vec.add(np.zeros((3, 3)), np.zeros((3, 3), dtype=I32)), TypeError, "int32"),
    (lambda: vec.add(np.zeros((3, 3), dtype=np.int64), np.zeros((3, 3), dtype=np.int64)), TypeError, "int64"),
    (lambda: vec.add(np.zeros((3, 3)), np.zeros((3, 3)), dtype="guardint"), TypeError, "int32"),
    (lambda: vec.add(np.zeros((3, 3)), np.zeros((3, 3)), dtype="guardquad"), TypeError, "guardquad"),
    (lambda: vec.dot(np.zeros((3, 3), dtype=">f8"), np.zeros(3)), TypeError, "vec.dot"),
    (lambda: vec.unit("points"), TypeError, "vec.unit"),
    (lambda: vec.scale(np.zeros(3), 1.0, scalar="int32"), TypeError, "scalar"),
    (lambda: vec.scale(np.zeros(3), "two"), TypeError, "scale factor"),
    (lambda: vec.project(ints(1, 2, 3), 1.5), TypeError, "integer"),
    (lambda: vec.project(ints(1, 2, 3), 2**40), ValueError, "int32"),
    (lambda: vec.add_to_axis(np.zeros(3), "xy", 1.0), ValueError, "axis"),
    (lambda: guard.add(np.zeros(3), np.zeros(2)), ValueError, "broadcast"),
    (lambda: guard.add(np.zeros(3), np.zeros(3, dtype=np.float32)), TypeError, "float64"),
    (lambda: guard.add(np.zeros(3), np.zeros(3), dtype="guardint"), TypeError, "int32"),
    (lambda: guard.add(np.zeros(3), np.zeros(3), dtype="float64"), TypeError, "dtype"),
    (lambda: guard.nint(ints(1), dtype="guardint"), TypeError, "guarddouble or guardfloat"),
    (lambda: guard.round_to_whole(np.zeros(2, dtype=np.float32), dtype="guardfloat"), TypeError, "guarddouble"),
    (lambda: guard.to_float64(np.zeros(2)), TypeError, "int32"),
])
def test_bad_input_raises(call, error, message):
    with pytest.raises(error, match=message):
        call()


# ---- Guard arithmetic over arrays ----

def test_guard_arrays_are_the_operators_elementwise():
    rng = np.random.default_rng(5)
    specials = [0.0, -0.0, 1.0, -2.5, 2.5, 1e308, -1e308, 2.0**1022, np.inf, np.nan, 1e-320]
    a = np.concatenate([specials, rng.normal(scale=1e6, size=20)])
    b = np.concatenate([specials[::-1], rng.normal(scale=1e3, size=20)])
    pairs = list(zip(a.tolist(), b.tolist()))

    def same(got, expected):  # bit for bit: -0.0 is not 0.0
        return np.array(expected, dtype=got.dtype).tobytes() == got.tobytes()

    assert same(guard.add(a, b), [(gd(x) + gd(y)).value for x, y in pairs])
    assert same(guard.sub(a, b), [(gd(x) - gd(y)).value for x, y in pairs])
    assert same(guard.mul(a, b), [(gd(x) * gd(y)).value for x, y in pairs])
    assert same(guard.div(a, b), [(gd(x) / gd(y)).value for x, y in pairs])
    assert guard.nint(a).tolist() == [gd(x).nint() for x in a.tolist()]
    assert same(guard.round_to_whole(a), [gd(x).round_to_whole().value for x in a.tolist()])
    assert guard.less(a, b).tolist() == [gd(x) < gd(y) for x, y in pairs]
    assert guard.greater(a, b).tolist() == [gd(x) > gd(y) for x, y in pairs]

    with np.errstate(over="ignore"):  # 1e308 becomes inf in float32, as wanted
        f32 = a.astype(np.float32)
        g32 = b.astype(np.float32)
    fpairs = list(zip(f32.tolist(), g32.tolist()))
    assert guard.add(f32, g32, dtype="guardfloat").dtype == np.float32
    assert same(guard.div(f32, g32, dtype="guardfloat"), [(gf(x) / gf(y)).value for x, y in fpairs])
    assert guard.nint(f32, dtype="guardfloat").tolist() == [gf(x).nint() for x in f32.tolist()]

    i = ints(0, 7, -7, 2147483647, -2147483648, 46341, 3)
    j = ints(0, 0, 2, 1, -1, 46341, -1)
    ipairs = list(zip(i.tolist(), j.tolist()))
    for name, op in (("add", lambda x, y: x + y), ("sub", lambda x, y: x - y), ("mul", lambda x, y: x * y),
                     ("div", lambda x, y: x / y)):
        assert getattr(guard, name)(i, j, dtype="guardint").tolist() == [op(gi(x), gi(y)).value for x, y in ipairs]


def test_guard_saturation_and_rounding_rules():
    assert guard.div(np.array([1.0, -1.0, 0.0]), np.float64(0.0)).tolist() == [2.0**1022, -(2.0**1022), 0.0]
    assert guard.add(ints(2147483000), ints(1000), dtype="guardint").tolist() == [2147483647]
    assert (ints(2147483000) + ints(1000)).tolist() == [-2147483296]  # numpy's int32 wraps
    assert guard.nint(np.array([2.5, -2.5, 1e300, np.nan])).tolist() == [3, -3, 2147483647, 0]
    assert guard.round_to_whole(np.array([2.5, -2.5])).tolist() == [2.0, -3.0]


def test_guard_broadcasting():
    column = np.array([[1.0], [2.0]])
    row = np.array([10.0, 20.0, 30.0])
    assert guard.sub(column, row).tolist() == [[-9.0, -19.0, -29.0], [-8.0, -18.0, -28.0]]
    assert guard.sub(row, column).tolist() == [[9.0, 19.0, 29.0], [8.0, 18.0, 28.0]]
    assert guard.mul(np.float64(2.0), row).shape == (3,)
    assert guard.add(np.float64(1.0), np.float64(2.0)).shape == ()


def test_guard_conversions():
    i = ints(0, 1, -7, 2147483647, -2147483648, 16777217)
    assert guard.from_int(i).tolist() == [gd(x).value for x in i.tolist()]
    assert guard.from_int(i, dtype="guardfloat").tolist() == [gf(x).value for x in i.tolist()]
    assert guard.from_int(i, dtype="guardint").tolist() == i.tolist()
    x = np.array([2.5, 2.51, -2.5, 1e300, np.nan, 0.1])
    assert guard.from_float64(x, dtype="guardint").tolist() == [gi(v).value for v in x.tolist()]
    assert guard.from_float64(x, dtype="guardint")[:2].tolist() == [2, 3]
    assert guard.from_float64(np.array([1e308]))[0] == 2.0**1022
    f = np.array([2.5, 2.0**31, -(2.0**40), 0.75], dtype=np.float32)
    assert guard.from_float32(f).tolist() == [gi.from_float32(v).value for v in f.tolist()]
    assert guard.from_guardint(i).tolist() == [gd(gi(v)).value for v in i.tolist()]
    assert guard.from_guardint(i, dtype="guardfloat").dtype == np.float32
    assert guard.to_guardint(x).tolist() == [gi(gd(v)).value for v in x.tolist()]
    assert guard.to_guardint(f, dtype="guardfloat").tolist() == [gi(gf(v)).value for v in f.tolist()]
    assert guard.to_float64(i).tolist() == [float(gi(v)) for v in i.tolist()]
    assert guard.to_float32(i).tolist() == [gi(v).to_float32() for v in i.tolist()]
    assert guard.to_float32(i).dtype == np.float32
    assert guard.sub_float64(np.array([1e308]), np.array([1.0]))[0] == (gd(1e308) - 1.0).value
    assert guard.mul_int(ints(3, -2), np.array([2.0**1022, 0.5])).tolist() == [2.0**1022, -1.0]


def test_large_guard_arrays_match_small_ones():
    rng = np.random.default_rng(3)
    a = rng.normal(scale=1e300, size=10000)
    b = rng.normal(scale=1e-10, size=10000)
    whole = guard.mul(a, b)  # without the interpreter lock
    pieces = np.concatenate([guard.mul(a[k:k + 64], b[k:k + 64]) for k in range(0, len(a), 64)])
    assert whole.tobytes() == pieces.tobytes()
